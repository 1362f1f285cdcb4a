// The games as a table: sorted by a click on a heading, filtered by player.
import { tag, type Game } from './analysis';
import { el } from './dom';
import { percent } from './game_head';
import type { SideVerdict } from './judge';
import { MARKS, threshold } from './marks';
import type { Session } from './session';
import { occasion, plural, playerName, site } from './text';

const POINTS: Record<string, [string, string]> = { '1-0': ['1', '0'], '0-1': ['0', '1'], '1/2-1/2': ['½', '½'] };

// Rows are drawn as the reader comes to them: so many at a time.
const AT_ONCE = 60;

type Key = 'number' | 'players' | 'event' | 'result' | 'accuracy' | 'mark0' | 'mark1' | 'mark2'

interface Row {
  game: Game;
  values: Record<Key, string | number>;
  /** Drawn when it is first shown. */
  element?: HTMLTableRowElement;
}

interface Column {
  key: Key;
  text: string;
  title: string;
  /** Whether the first click puts the largest value on top. */
  down: boolean;
}

function columns(session: Session): Column[] {
  const column = (key: Key, text: string, title: string, down = false) => ({ key, text, title, down });
  return [
    column('number', '#', 'Number in the file'), column('players', 'Players', 'White’s name'),
    column('event', 'Event', 'Event'), column('result', 'Result', 'Result'),
    column('accuracy', 'Accuracy', 'Accuracy in per cent, by winning chances kept; sorted by the mean of both sides'),
    ...MARKS.map((mark, kind) => column(`mark${kind}` as Key, mark.sign,
      `${mark.names}: moves that lose ${threshold(session.analysis.options, kind)}`, true))];
}

function pair(white: string, black: string, attributes = {}): HTMLElement {
  return el('td', attributes, el('div', {}, white), el('div', {}, black));
}

function players(game: Game): HTMLElement {
  const side = (name: 'White' | 'Black') => el('div', { title: playerName(game, name) },
    el('span', { class: name, role: 'img', 'aria-label': name }), playerName(game, name));
  const sides = [side('White'), side('Black')];
  return el('td', { class: 'players' },
    ...game.moves ? [el('a', { href: `#game-${game.number}` }, ...sides)] : sides,
    el('div', { class: 'soft narrow' }, tag(game, 'Event')));
}

function markCell(kind: number, sides: [SideVerdict, SideVerdict]): HTMLElement {
  const count = (side: SideVerdict) => {
    const n = side.accuracy === null ? 0 : side.counts[kind as 0 | 1 | 2];
    return el('div', { class: n ? `m${kind}` : 'none' }, side.accuracy === null ? '–' : String(n));
  };
  return el('td', { class: 'count' }, count(sides[0]), count(sides[1]));
}

export class ListView {
  readonly element: HTMLElement;
  private readonly body = el('tbody');
  private readonly count = el('p', { class: 'soft', role: 'status' });
  private readonly headings = new Map<Key, HTMLElement>();
  private readonly rows: Row[];
  private sorted: { key: Key, down: boolean } = { key: 'number', down: false };
  private filter = '';
  // What is not drawn yet, and the element below the table that asks for it when it comes near.
  private waiting: Row[] = [];
  private readonly end = el('div', { class: 'end' });

  /** `isDone` says which games have their verdict. */
  constructor(private readonly session: Session, private readonly isDone: (game: Game) => boolean) {
    this.rows = session.analysis.games.map((game) => this.row(game));
    const head = el('tr', {}, ...columns(session).map((column) => this.heading(column)));
    const input = el('input', { type: 'search', placeholder: 'A player’s name', autocomplete: 'off' });
    input.addEventListener('input', () => {
      this.filter = input.value.trim().toLowerCase();
      this.arrange();
    });
    this.element = el('section', { class: 'list', 'aria-label': 'Games' },
      el('div', { class: 'filter' }, el('label', {}, 'Filter ', input), this.count),
      el('table', {}, el('thead', {}, head), this.body), this.end);
    new IntersectionObserver(([entry]) => {
      if (entry?.isIntersecting) {
        this.drawMore(AT_ONCE);
      }
    }, { rootMargin: '1200px' }).observe(this.end);
    addEventListener('beforeprint', () => this.drawMore(Infinity));
    this.body.addEventListener('click', (event) => {
      // The whole row leads to its game, as its link does for the keyboard.
      const link = (event.target as Element).closest('tr')?.querySelector<HTMLAnchorElement>('a');
      if (link && !(event.target as Element).closest('a') && !getSelection()?.toString()) {
        link.click();
      }
    });
    this.arrange();
  }

  /** Draws a game's row again, which has changed. */
  update(game: Game): void {
    const row = this.rows.find((one) => one.game === game);
    if (row) {
      row.values = this.row(game).values;
      const old = row.element;
      old?.replaceWith(this.draw(row));
    }
  }

  /** The games in the order of the table, without those filtered away. */
  shown(): Game[] {
    return this.order().map((row) => row.game);
  }

  private heading(column: Column): HTMLElement {
    const control = el('button', { type: 'button', title: column.title }, column.text);
    const kind = MARKS.findIndex((mark) => mark.sign === column.text);
    if (kind >= 0) {
      control.classList.add(`m${kind}`);
      control.setAttribute('aria-label', MARKS[kind]?.names ?? '');
    }
    control.addEventListener('click', () => {
      const same = this.sorted.key === column.key;
      this.sorted = { key: column.key, down: same ? !this.sorted.down : column.down };
      this.arrange();
    });
    const cell = el('th', { scope: 'col', class: column.key }, control);
    this.headings.set(column.key, cell);
    return cell;
  }

  private row(game: Game): Row {
    const values = {
      number: game.number, players: playerName(game, 'White').toLowerCase(), event: occasion(game).toLowerCase(),
      result: game.result, accuracy: Infinity, mark0: -1, mark1: -1, mark2: -1,
    };
    if (this.isJudged(game)) {
      const { White: white, Black: black } = this.session.verdict(game).sides;
      values.accuracy = ((white.accuracy ?? black.accuracy ?? Infinity) + (black.accuracy ?? white.accuracy ?? 0)) / 2;
      for (const kind of [0, 1, 2] as const) {
        values[`mark${kind}`] = white.counts[kind] + black.counts[kind];
      }
    }
    return { game, values };
  }

  private isJudged(game: Game): boolean {
    return game.problem === '' && this.isDone(game);
  }

  private draw(row: Row): HTMLTableRowElement {
    const { game } = row;
    const points = POINTS[game.result] ?? ['', ''];
    const cells = [el('td', { class: 'number' }, String(game.number)), players(game),
      el('td', { class: 'event soft' }, el('div', {}, tag(game, 'Event')), el('div', {}, this.place(game))),
      pair(points[0], points[1], { class: 'points' })];
    if (this.isJudged(game)) {
      const { White: white, Black: black } = this.session.verdict(game).sides;
      cells.push(pair(percent(white.accuracy), percent(black.accuracy), { class: 'accuracy' }),
        ...[0, 1, 2].map((kind) => markCell(kind, [white, black])));
    } else {
      cells.push(el('td', { colspan: '4', class: 'problem' }, game.problem && `Not analysed: ${game.problem}`));
    }
    return row.element = el('tr', game.moves ? { class: 'open' } : {}, ...cells);
  }

  private place(game: Game): string {
    return [site(game), tag(game, 'Date').replace(/(\.\?\?)+$/, '')]
      .filter(Boolean).join(', ');
  }

  private order(): Row[] {
    const { key, down } = this.sorted;
    const compare = (a: Row, b: Row) => {
      const [x, y] = [a.values[key], b.values[key]];
      return x === y ? a.game.number - b.game.number : (x < y ? -1 : 1) * (down ? -1 : 1);
    };
    return this.rows.filter(({ game }) => this.filter === ''
      || playerName(game, 'White').toLowerCase().includes(this.filter)
      || playerName(game, 'Black').toLowerCase().includes(this.filter)).sort(compare);
  }

  private drawMore(count: number): void {
    this.body.append(...this.waiting.splice(0, count).map((row) => row.element ?? this.draw(row)));
    this.end.hidden = this.waiting.length === 0;
  }

  private arrange(): void {
    const rows = this.order();
    this.waiting = [...rows];
    this.body.replaceChildren();
    this.drawMore(AT_ONCE);
    for (const [key, cell] of this.headings) {
      cell.setAttribute('aria-sort', key !== this.sorted.key ? 'none' : this.sorted.down ? 'descending' : 'ascending');
    }
    const all = plural(this.rows.length, 'game');
    this.count.textContent = rows.length === this.rows.length ? all : `${rows.length} of ${all}`;
  }
}
