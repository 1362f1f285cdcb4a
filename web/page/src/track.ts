// A sequence of moves with the position before and after each.
import { Chess } from 'chess.js';
import { startOf, type Start } from './text';

/** A position of chess; throws an Error for anything else. Move counters that are missing or 0 do no harm. */
export function position(fen: string | null): Chess {
  const [board = '', turn = 'w', castling = '-', passant = '-', halves = '0', number = '1'] = (fen ?? '').split(/\s+/);
  const fields = [board, turn, castling, passant, halves, number === '0' ? '1' : number];
  return fen ? new Chess(fields.join(' ')) : new Chess();
}

export interface Step {
  from: string;
  to: string;
  san: string;
  /** Coordinate text, as the engine has it. */
  move: string;
}

export class Track {
  readonly fens: string[];
  readonly steps: Step[] = [];
  readonly start: Start;

  /** Ends before the first move that is not possible, if there is one. */
  constructor(fen: string | null, moves: readonly string[]) {
    const chess = position(fen);
    this.fens = [chess.fen()];
    this.start = startOf(this.fens[0] ?? null);
    for (const move of moves) {
      if (!this.extend(move)) {
        break;
      }
    }
  }

  /** The position after n moves. */
  fen(n: number): string {
    return this.fens[n] ?? '';
  }

  get length(): number {
    return this.steps.length;
  }

  /** Adds a move in any notation. False when it is not possible. */
  extend(written: string): boolean {
    const chess = new Chess(this.fen(this.length));
    try {
      const move = chess.move(written, { strict: false });
      this.steps.push({ from: move.from, to: move.to, san: move.san, move: move.lan });
      this.fens.push(chess.fen());
      return true;
    } catch {
      return false;
    }
  }

  /** The first n moves of it. */
  head(n: number): Track {
    return new Track(this.fen(0), this.steps.slice(0, n).map((step) => step.move));
  }

  get sans(): string[] {
    return this.steps.map((step) => step.san);
  }
}

/** The squares that each piece of the side to move can go to. */
export function targets(fen: string): Map<string, string[]> {
  const found = new Map<string, string[]>();
  for (const move of new Chess(fen).moves({ verbose: true })) {
    found.set(move.from, [...found.get(move.from) ?? [], move.to]);
  }
  return found;
}

export function isPromotion(fen: string, from: string, to: string): boolean {
  return new Chess(fen).moves({ verbose: true })
    .some((move) => move.from === from && move.to === to && move.promotion !== undefined);
}
