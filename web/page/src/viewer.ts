// An analysis on the page: the list or a game, as the address says, and what runs beside them.
import { Analyser } from './analyser';
import { toJson, type Analysis, type Game } from './analysis';
import { button, el } from './dom';
import type { Search } from './engine';
import { GameView } from './game_view';
import { header } from './header';
import { ListView } from './list_view';
import { pageWith } from './page_source';
import { annotated } from './pgn_out';
import { ProgressView } from './progress_view';
import { RepeatView } from './repeat_view';
import { nameFor, save } from './save';
import { Session } from './session';

export class Viewer {
  private readonly session: Session;
  private readonly analyser: Analyser;
  private readonly list: ListView;
  private progress: ProgressView | null = null;
  private view: GameView | null = null;
  private repeated: RepeatView | null = null;
  private scroll = 0;

  /** Searches `jobs` positions of games side by side. `onLeave` shows something else when the reader asks for it. */
  constructor(
    private readonly main: HTMLElement, private readonly analysis: Analysis, search: Search, jobs: number,
    private readonly onLeave: () => void) {
    this.session = new Session(analysis, search, jobs);
    this.analyser = new Analyser(analysis.games, analysis.options, search, jobs, {
      answered: () => this.progress?.update(), finished: (game) => this.finished(game),
    });
    if (this.analyser.gamesDone < this.analyser.gamesToDo) {
      this.progress = new ProgressView(this.analyser, () => this.ended());
    }
    this.list = new ListView(this.session, (game) => this.analyser.isDone(game));
    document.title = `${analysis.source} – analysis`;
  }

  /** The game that is shown, if it is not the list. */
  get game(): GameView | null {
    return this.view;
  }

  /** Whether games are being analysed. */
  get busy(): boolean {
    return this.progress?.running ?? false;
  }

  /** Analyses what is not analysed yet. */
  analyse(): void {
    void this.progress?.run();
  }

  /** Ends all that runs. */
  close(): void {
    this.progress?.stop();
    this.repeated?.cancel();
    this.view?.close();
  }

  /** Shows what the address names: a game, or the list. */
  route(): void {
    const number = Number(/^#game-(\d+)$/.exec(location.hash)?.[1]);
    const game = this.session.game(number);
    const from = this.view;
    from?.close();
    this.view = game && game.moves !== '' ? new GameView(this.session, game) : null;
    this.scroll = from ? this.scroll : scrollY;
    document.documentElement.classList.toggle('showing-game', this.view !== null);
    this.main.replaceChildren(...this.view ? this.gameScreen(this.view) : this.listScreen());
    if (from && from.game === this.view?.game) {
      this.view.go(from.ply);
    } else {
      scrollTo(0, this.view ? 0 : this.scroll);
    }
  }

  private finished(game: Game): void {
    this.list.update(game);
    if (this.view?.game === game) {
      this.route();
    }
  }

  private ended(): void {
    this.progress = null;
    if (!this.view) {
      this.route();
    }
  }

  private running(): HTMLElement[] {
    return [this.progress, this.repeated].flatMap((view) => view ? [view.element] : []);
  }

  private listScreen(): HTMLElement[] {
    const { analysis } = this;
    return [header(analysis, {
      savePgn: () => save(nameFor(analysis.source, 'pgn'), 'application/x-chess-pgn',
        analysis.games.map((game) => annotated(game, this.session.verdict(game), analysis)).join('')),
      savePage: () => save(nameFor(analysis.source, 'html'), 'text/html', pageWith(toJson(analysis))),
      repeat: () => this.repeat(analysis.games), leave: this.onLeave,
    }), ...this.running(), this.list.element];
  }

  private gameScreen(view: GameView): HTMLElement[] {
    const games = this.list.shown().filter((game) => game.moves !== '');
    const at = games.indexOf(view.game);
    const link = (game: Game | undefined, text: string) =>
      game ? [el('a', { href: `#game-${game.number}` }, text)] : [];
    const bar = el('nav', { class: 'bar-top', 'aria-label': 'Games' }, el('a', { href: '#' }, '← All games'),
      button('Repeat this game', () => this.repeat([view.game]), { class: 'quiet' }),
      el('span', { class: 'turnover' }, ...link(games[at - 1], '‹ Previous'), ...link(games[at + 1], 'Next ›')));
    return [bar, ...this.running(), view.element];
  }

  private repeat(games: Game[]): void {
    this.repeated?.cancel();
    this.repeated?.element.remove();
    const view = this.repeated = new RepeatView(this.session, games, () => {
      this.repeated = null;
      view.element.remove();
    });
    this.main.firstElementChild?.after(view.element);
    void view.run();
  }
}
