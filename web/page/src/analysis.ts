// The analysis as data: what the page reads from itself, works on, and writes into its copies.

/** Score (centipawns from White's view), depth finished, nodes, line (coordinate moves), perhaps milliseconds. */
export type Found = [score: number, depth: number, nodes: number, line: string, elapsed?: number]

/** What the engine says of a position; "over" where no move is legal. */
export type Answer = Found | 'over'

/** By position ("12", or "12+e2e4" with further moves), then by the depth asked for; null where none could be had. */
export type Answers = Record<string, Record<string, Answer | null>>

export type Side = 'White' | 'Black'

export interface Game {
  number: number;
  line: number;
  /** Why the game is not analysed; empty when it is. */
  problem: string;
  /** The text as it was in the file. */
  pgn: string;
  tags: Record<string, string>;
  /** Where the game begins, unless from the initial position. */
  fen: string | null;
  moves: string;
  sans: string;
  result: string;
  mated: boolean;
  answers: Answers;
}

export interface Options {
  depth: number;
  /** Milliseconds for a search. */
  time: number;
  moves: [first: number, last: number | null];
  side: Side | null;
  thresholds: [number, number, number];
}

export interface Engine {
  name: string;
  version: string;
  signature: string;
}

export interface Analysis {
  format: 1;
  source: string;
  written: string;
  engine: Engine;
  options: Options;
  games: Game[];
}

/** The name of a position in `Answers`. */
export function positionKey(ply: number, extra: readonly string[]): string {
  return [String(ply), ...extra].join('+');
}

/** The opposite of `positionKey`. */
export function parsePosition(key: string): { ply: number, extra: string[] } {
  const [ply, ...extra] = key.split('+');
  return { ply: Number(ply), extra };
}

export function words(text: string): string[] {
  return text.split(' ').filter((word) => word !== '');
}

/** A tag's value; empty when it says that it is unknown. */
export function tag(game: Game, name: string): string {
  const value = game.tags[name] ?? '';
  return /^[?.\- ]*$/.test(value) ? '' : value;
}

/** Reads what `toJson` wrote; throws an Error that says what is wrong. */
export function fromJson(text: string): Analysis {
  const data = JSON.parse(text) as Analysis;
  if (data.format !== 1) {
    throw new Error(`its format is ${String(data.format)}, and this page reads format 1`);
  }
  if (!Array.isArray(data.games)) {
    throw new Error('it holds no games');
  }
  return data;
}

/** JSON that is safe inside a script element. */
export function toJson(analysis: Analysis): string {
  return JSON.stringify(analysis)
    .replace(/</g, '\\u003c').replace(/\u2028/g, '\\u2028').replace(/\u2029/g, '\\u2029');
}
