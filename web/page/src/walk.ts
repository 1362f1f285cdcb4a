// Where the board is: in the game, or in a line that leaves it.
import { words, type Game } from './analysis';
import type { Verdict } from './judge';
import { Track, type Step } from './track';

export class Walk {
  readonly track: Track;
  /** Half-moves of the game that are played. */
  ply = 0;
  /** The line that leaves the game after them, if the board is in one, and how many of its moves are played. */
  line: Track | null = null;
  at = 0;
  // Where the way back from the line leads, in half-moves of the game.
  private home = 0;

  constructor(game: Game, private readonly verdict: Verdict) {
    this.track = new Track(game.fen, words(game.moves));
  }

  get fen(): string {
    return this.line ? this.line.fen(this.at) : this.track.fen(this.ply);
  }

  /** All moves that led to the position, in coordinate text. */
  get moves(): string[] {
    const left = this.line?.steps.slice(0, this.at) ?? [];
    return [...this.track.steps.slice(0, this.ply), ...left].map((step) => step.move);
  }

  /** The move that led to the position. */
  get last(): Step | undefined {
    return this.line ? this.line.steps[this.at - 1] : this.track.steps[this.ply - 1];
  }

  /** The engine's line instead of the last move of the game. */
  get better(): Track | null {
    const moves = this.verdict.lines.get(this.ply);
    return moves && this.ply > 0 ? new Track(this.track.fen(this.ply - 1), moves) : null;
  }

  /** Goes to the position after n half-moves of the game. */
  go(n: number): void {
    this.ply = this.home = Math.max(0, Math.min(this.track.length, n));
    this.line = null;
    this.at = 0;
  }

  /** Goes forward or back by half-moves, within the line if there is one. */
  step(by: number): void {
    if (this.line && this.at + by > 0) {
      this.at = Math.min(this.line.length, this.at + by);
    } else {
      this.go(this.line ? this.ply : this.ply + by);
    }
  }

  /** Goes to the next marked move, or the one before. */
  toMark(by: 1 | -1): void {
    const marked = [...this.verdict.marks.keys()].sort((a, b) => by * (a - b));
    this.go(marked.find((n) => by * (n - this.ply) > 0) ?? this.ply);
  }

  /** From a line back to the game. */
  back(): void {
    this.go(this.home);
  }

  /** Plays the first n moves of the better line. */
  playBetter(n: number): void {
    const line = this.line ? null : this.better;
    if (line) {
      this.line = line;
      this.ply--;
      this.at = n;
    }
  }

  /** Plays the first n moves of a line from the position. */
  playOn(engine: Track, n: number): void {
    const played = this.played();
    engine.steps.forEach((step) => played.extend(step.move));
    this.at += n;
    this.line = played;
  }

  /** Plays a move in any notation. False when it is not possible. */
  play(written: string): boolean {
    const tried = this.played();
    if (written === '' || !tried.extend(written)) {
      return false;
    }
    if (!this.line && tried.steps[0]?.move === this.track.steps[this.ply]?.move) {
      this.go(this.ply + 1);
    } else {
      this.line = tried;
      this.at = tried.length;
    }
    return true;
  }

  // What is played beyond the game.
  private played(): Track {
    return this.line ? this.line.head(this.at) : new Track(this.track.fen(this.ply), []);
  }
}
