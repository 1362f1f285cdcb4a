// Zorvane in a browser or in node: questions about chess positions, answered by the program in workers.
import { countProcessors } from '#platform';
import { Pool } from './pool.js';
import { check, readResponse, readSession, requestRun, sessionRun } from './question.js';
import type { Run } from './run.js';
import type { Answer, Question } from './types.js';

export { type Answer, type Found, type Over, type Question, ZorvaneError } from './types.js';

export interface LoadOptions {
  /** How many searches run side by side at most; further ones wait their turn. By default one for each processor. */
  workers?: number | undefined;
}

export interface SearchOptions extends Question {
  /** Ends the search, or its waiting, at once; it then rejects with the signal's reason. */
  signal?: AbortSignal | undefined;
}

export class Zorvane {
  private constructor(
    private readonly module: WebAssembly.Module,
    private readonly pool: Pool,
  ) {}

  /** Compiles zorvane.wasm, once for all searches. Rejects when the bytes are no WebAssembly. */
  static async load(bytes: BufferSource, { workers = countProcessors() }: LoadOptions = {}): Promise<Zorvane> {
    if (!Number.isInteger(workers) || workers < 1) throw new RangeError(`workers has to be 1 or more, not ${workers}`);
    return new Zorvane(await WebAssembly.compile(bytes), new Pool(workers));
  }

  /**
   * Searches one position in a fresh instance of the program, so that the answer depends on the question alone. Rejects
   * with a ZorvaneError for a bad FEN, an illegal move or a limit out of range.
   */
  async search({ signal, ...question }: SearchOptions): Promise<Answer> {
    const checked = check(question);
    const run = (what: Run) => this.pool.run({ module: this.module, run: what }, signal);
    if (checked.fen === null) {
      const found = readResponse(await run(requestRun(checked)));
      if (found) return found;
    }
    // A request leaves open why there is no answer; a session tells an illegal move from the end of the game.
    return readSession(await run(sessionRun(checked)), checked);
  }

  /** Ends the workers; a search that still runs is answered first. */
  close(): void {
    this.pool.close();
  }
}
