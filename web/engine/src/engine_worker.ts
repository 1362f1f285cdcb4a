// A worker as the pool sees it, whatever it is made of.
import type { Outcome, Task } from './run.js';

/** The text of worker.ts with all that it imports, put in by the build. */
declare const WORKER_SOURCE: string;
export const workerSource = WORKER_SOURCE;

export interface EngineWorker {
  /** One task at a time. Rejects when the program or the worker fails; the worker is then of no more use. */
  ask(task: Task): Promise<Outcome>;
  /** Ends the worker at once, whatever it does; a running task is never answered. */
  end(): void;
}
