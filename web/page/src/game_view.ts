// One game: board, curve, moves, what the engine says, and what is printed of it.
import { positionKey, type Game } from './analysis';
import { BoardView } from './board_view';
import { controls } from './controls';
import { Curve } from './curve';
import { diagrams } from './diagrams';
import { el } from './dom';
import { EvalBar } from './eval_bar';
import { gameHead, sides } from './game_head';
import type { Verdict } from './judge';
import { MovesView } from './moves_view';
import { panel, type Live, type Said } from './panel';
import { Players } from './players';
import type { Session } from './session';
import { numbered } from './text';
import { isPromotion, type Track } from './track';
import { Walk } from './walk';

// A tried move is answered within a second: this deep, or as deep as the time allows.
const TRY_DEPTH = 6;
const TRY_MS = 800;
// Of the wheel; a touchpad sends many small turns, a mouse one large.
const WHEEL_STEP = 40;

// So many half-moves fit a printed page in each size.
const SIZES = [[180, ''], [300, 'long'], [440, 'longer'], [Infinity, 'longest']] as const;

function lengthClass(halfMoves: number): string {
  return SIZES.find(([most]) => halfMoves <= most)?.[1] ?? '';
}

export class GameView {
  readonly element: HTMLElement;
  private readonly verdict: Verdict;
  private readonly walk: Walk;
  private readonly board = new BoardView((from, to) =>
    this.tryMove(from + to + (isPromotion(this.walk.fen, from, to) ? 'q' : '')));
  private readonly bar = new EvalBar();
  private readonly players: Players;
  private readonly curve: Curve;
  private readonly moves: MovesView;
  private readonly said = el('section', {
    class: 'panel', 'aria-label': 'The move and the engine', 'aria-live': 'polite',
  });
  private live: Live | null = null;
  private search: AbortController | null = null;
  private wheel = 0;

  constructor(private readonly session: Session, readonly game: Game) {
    this.verdict = session.verdict(game);
    this.walk = new Walk(game, this.verdict);
    this.players = new Players(game);
    const { track } = this.walk;
    const go = (n: number) => this.go(n);
    this.curve = new Curve(this.verdict, track.sans, track.start, go);
    this.moves = new MovesView(this.verdict, track.sans, track.start, go);
    this.element = el('article', { class: `game ${lengthClass(track.length)}` },
      gameHead(game), sides(this.verdict), ...this.verdict.scores.size > 1 ? [this.curve.element] : [],
      el('div', { class: 'desk' },
        el('div', { class: 'table' }, this.players.top, this.frame(), this.players.bottom, controls(this)),
        el('div', { class: 'notes' }, this.said, this.moves.element)),
      diagrams(game, this.verdict, track));
    this.show(false);
  }

  /** How many half-moves of the game have been played. */
  get ply(): number {
    return this.walk.ply;
  }

  /** Goes to the position after n half-moves of the game. */
  go(n: number): void {
    this.move(() => this.walk.go(n));
  }

  /** Goes forward or back by half-moves, within the line if there is one. */
  step(by: number): void {
    this.move(() => this.walk.step(by));
  }

  first(): void {
    this.go(0);
  }

  last(): void {
    this.go(this.walk.track.length);
  }

  /** Goes to the next marked move, or the one before. */
  toMark(by: 1 | -1): void {
    this.move(() => this.walk.toMark(by));
  }

  /** Plays the better line of the marked move on the board. */
  playBetter(n = 1): void {
    this.move(() => this.walk.playBetter(n));
  }

  /** From a line back to the game. */
  back(): void {
    this.move(() => this.walk.back());
  }

  /** Plays a move from the position shown. False when it is not possible. */
  tryMove(written: string): boolean {
    return this.move(() => this.walk.play(written));
  }

  flip(): void {
    this.board.turnAround();
    this.show(false);
  }

  /** Stops what runs for this view. */
  close(): void {
    this.search?.abort();
  }

  // The board with its bar, which take the wheel.
  private frame(): HTMLElement {
    const frame = el('div', { class: 'frame' }, this.bar.element, this.board.element);
    frame.addEventListener('wheel', (event) => {
      event.preventDefault();
      this.wheel += event.deltaY * (event.deltaMode === WheelEvent.DOM_DELTA_PIXEL ? 1 : WHEEL_STEP);
      if (Math.abs(this.wheel) >= WHEEL_STEP) {
        this.step(Math.sign(this.wheel));
        this.wheel = 0;
      }
    }, { passive: false });
    return frame;
  }

  // Changes the position and shows it; outside the game the engine is asked about it.
  private move<Outcome>(change: () => Outcome): Outcome {
    this.search?.abort();
    this.live = null;
    const outcome = change();
    if (this.walk.line) {
      void this.ask();
    }
    this.show(true);
    return outcome;
  }

  private async ask(): Promise<void> {
    const abort = this.search = new AbortController();
    this.live = { state: 'searching' };
    const asked = {
      fen: this.game.fen, moves: this.walk.moves, depth: TRY_DEPTH, time: TRY_MS, signal: abort.signal,
    };
    const live = await this.session.search(asked).then(
      (reply): Live => reply === 'over' ? { state: 'over' } : { state: 'found', reply },
      (): Live => ({ state: 'failed' }));
    if (!abort.signal.aborted) {
      this.live = live;
      this.showPanel();
      this.showBar();
    }
  }

  private get turned(): boolean {
    return this.board.orientation === 'black';
  }

  private show(animated: boolean): void {
    const { ply, line, last, better, fen } = this.walk;
    const marked = !line && this.verdict.marks.has(ply);
    const squares = (step = last): [string, string] | null => step ? [step.from, step.to] : null;
    this.board.show({
      fen, last: squares(), played: marked ? squares() : null,
      better: marked && better ? squares(better.steps[0]) : null,
    }, animated);
    this.curve.show(ply);
    this.moves.show(line ? 0 : ply);
    this.players.show(ply, this.turned);
    this.showPanel();
    this.showBar();
  }

  private showPanel(): void {
    const { ply, line, at, fen, better, track } = this.walk;
    const { scores, marks, losses } = this.verdict;
    const step = track.steps[ply - 1];
    const said: Said = {
      move: step ? `${numbered(ply, track.start)} ${step.san}` : '', mark: marks.get(ply),
      before: scores.get(ply - 1), after: scores.get(ply), loss: losses.get(ply), better, line, at, fen,
      answer: line ? undefined : this.game.answers[positionKey(ply, [])]?.[this.session.analysis.options.depth],
      live: this.live,
    };
    this.said.replaceChildren(...panel(said, {
      playBetter: (n) => this.playBetter(n), goInLine: (n) => this.step(n - at),
      playOn: (engine: Track, n) => this.move(() => this.walk.playOn(engine, n)), back: () => this.back(),
    }));
  }

  private showBar(): void {
    const found = this.live?.state === 'found' ? this.live.reply.score : undefined;
    this.bar.show(this.walk.line ? found : this.verdict.scores.get(this.walk.ply), this.turned);
  }
}
