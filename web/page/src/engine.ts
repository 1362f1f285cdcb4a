// What the page asks of the engine, wherever it runs.

export interface Ask {
  /** Where the moves begin, unless from the initial position. */
  fen: string | null;
  moves: string[];
  depth: number;
  /** Milliseconds. */
  time: number;
  signal?: AbortSignal;
}

export interface Reply {
  /** Centipawns from White's view. */
  score: number;
  depth: number;
  nodes: number;
  line: string[];
  /** Milliseconds. */
  ms: number;
}

/** Searches a position afresh; "over" where no move is legal. Rejects when it was aborted or the engine failed. */
export type Search = (ask: Ask) => Promise<Reply | 'over'>
