// What goes into a search and comes out of it, for whoever uses the module.

/** What to search, and how far. */
export interface Question {
  /** The position from which the moves are played; the initial position of chess by default. */
  fen?: string | null | undefined;
  /** Coordinate moves such as e2e4 or e7e8q: a list, or a text with blanks between them. */
  moves?: readonly string[] | string | undefined;
  /** 1 to 8 iterations. */
  depth: number;
  /** 1 to 300000 milliseconds, after which the search ends with what it has; 300000 by default. */
  time?: number | undefined;
}

/** What a search found. */
export interface Found {
  over?: never;
  /** The best move, in coordinates. */
  move: string;
  /** Centipawns from White's view; a mate is 900000 minus the half-moves to it, negative when White is mated. */
  score: number;
  /** The last iteration that was finished: less than asked for when a mate was found or the time was up. */
  depth: number;
  /** The size of the searched tree: always the same for the same question, unless the time was up. */
  nodes: number;
  /** The best line. From a FEN it is the best move alone. */
  line: string[];
  /** Milliseconds that the search took. */
  ms: number;
}

/** There is nothing to search: the side to move is mated or stalemated. */
export interface Over {
  over: true;
  mate: boolean;
}

export type Answer = Found | Over;

/** A question that cannot be asked, or a program that failed. */
export class ZorvaneError extends Error {
  override readonly name = 'ZorvaneError';

  constructor(
    readonly code: 'fen' | 'moves' | 'depth' | 'time' | 'engine',
    message: string,
  ) {
    super(message);
  }
}
