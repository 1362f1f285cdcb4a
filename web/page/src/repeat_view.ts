// The repetition as the reader sees it: progress, one line for each game, its positions inside, and a last sentence.
import { parsePosition, words, type Answer, type Game } from './analysis';
import { button, el } from './dom';
import { answered, repeat, type Repeated } from './repeat';
import type { Session } from './session';
import { duration, numbered, plural, playerName, scoreText, startOf } from './text';

const REDRAW_MS = 100;

interface Part {
  element: HTMLDetailsElement;
  state: HTMLElement;
  positions: HTMLElement;
  /** In the order of the game, whichever search ended first. */
  repeated: Repeated[];
}

function answerText(answer: Answer | null): string {
  if (answer === null) {
    return 'no answer';
  }
  return answer === 'over' ? 'the game is over'
    : `${scoreText(answer[0])}, depth ${answer[1]}, ${answer[2].toLocaleString('en')} nodes, ${answer[3]}`;
}

function positionRow(one: Repeated): HTMLElement {
  const { ply, extra } = parsePosition(one.position);
  const san = words(one.game.sans)[ply - 1];
  const place = san ? `After ${numbered(ply, startOf(one.game.fen))} ${san}` : 'At the start';
  const where = `${[place, ...extra].join(' ')}, depth ${one.depth}: `;
  const outcome = { equal: 'equal', different: 'different', timed: 'ended by its time' }[one.outcome];
  const both = one.outcome === 'equal' ? answerText(one.was) : `was ${answerText(one.was)}; is ${answerText(one.is)}`;
  return el('li', {}, where, el('b', { class: one.outcome }, outcome), ` – ${both}`);
}

export class RepeatView {
  readonly element: HTMLElement;
  private readonly parts = new Map<Game, Part>();
  private readonly bar = el('progress', { max: '1', value: '0', 'aria-label': 'Searches repeated' });
  private readonly status = el('p', { class: 'status' });
  private readonly sentence = el('p', { class: 'sentence', role: 'status' });
  private readonly list = el('div', { class: 'repeated' });
  private readonly stop = new AbortController();
  private readonly total: number;
  private readonly counts = { equal: 0, different: 0, timed: 0 };
  private nextDraw = 0;

  constructor(private readonly session: Session, private readonly games: Game[], onClose: () => void) {
    this.total = answered(games).length;
    this.element = el('section', { class: 'repeat card', 'aria-label': 'Repetition' },
      el('h2', {}, 'Every search again, on this computer'), this.bar, this.status, this.sentence, this.list,
      button('Close', () => {
        this.cancel();
        onClose();
      }));
  }

  cancel(): void {
    this.stop.abort();
  }

  async run(): Promise<void> {
    const begin = performance.now();
    const complete = await repeat(this.games, this.session.analysis.options, this.session.search, this.session.jobs,
      this.stop.signal, (one) => this.take(one, begin));
    this.draw(begin);
    this.sentence.textContent = complete ? this.conclusion((performance.now() - begin) / 1000) : 'Stopped.';
    this.sentence.classList.add(this.counts.different ? 'different' : 'equal');
  }

  private take(one: Repeated, begin: number): void {
    this.counts[one.outcome]++;
    const part = this.part(one.game);
    const next = part.repeated.findIndex((other) => other.index > one.index);
    const place = next < 0 ? part.repeated.length : next;
    part.repeated.splice(place, 0, one);
    if (part.element.open) {
      part.positions.insertBefore(positionRow(one), part.positions.children[place] ?? null);
    }
    if (performance.now() > this.nextDraw) {
      this.nextDraw = performance.now() + REDRAW_MS;
      this.draw(begin);
    }
  }

  private part(game: Game): Part {
    let part = this.parts.get(game);
    if (!part) {
      const state = el('span');
      const positions = el('ol');
      const name = `${game.number}. ${playerName(game, 'White')} – ${playerName(game, 'Black')}: `;
      const element = el('details', {}, el('summary', {}, name, state), positions);
      part = { element, state, positions, repeated: [] };
      this.parts.set(game, part);
      // Positions are drawn when they are asked for: there can be a hundred thousand.
      const { repeated } = part;
      element.addEventListener('toggle', () =>
        positions.replaceChildren(...element.open ? repeated.map(positionRow) : []));
      this.list.append(element);
    }
    return part;
  }

  private draw(begin: number): void {
    const done = this.counts.equal + this.counts.different + this.counts.timed;
    const seconds = (performance.now() - begin) / 1000;
    const left = done && done < this.total ? `, about ${duration(seconds * (this.total - done) / done)} left` : '';
    this.bar.value = this.total ? done / this.total : 1;
    this.status.textContent = `${done.toLocaleString('en')} of ${plural(this.total, 'search', 'searches')}${left}`;
    for (const part of this.parts.values()) {
      const other = part.repeated.filter((one) => one.outcome !== 'equal').length;
      part.state.textContent = `${part.repeated.length - other} equal${other ? `, ${other} not` : ''}`;
      part.state.className = other ? 'different' : 'equal';
    }
  }

  private conclusion(seconds: number): string {
    const { equal, different, timed } = this.counts;
    const ended = timed
      ? ` ${plural(timed, 'search', 'searches')} had been ended by the time limit, and may differ.` : '';
    if (different) {
      return `${plural(different, 'search comes', 'searches come')} out otherwise: see the games marked below.${ended}`;
    }
    return `All ${plural(equal, 'search', 'searches')} came out equal in ${duration(seconds)}: `
      + `score, depth, nodes and line.${ended}`;
  }
}
