// Workers that are kept for the next task, up to a limit; tasks beyond it wait their turn.
import { startWorker } from '#platform';
import type { EngineWorker } from './engine_worker.js';
import type { Outcome, Task } from './run.js';

export class Pool {
  private readonly idle: EngineWorker[] = [];
  private readonly waiting: (() => void)[] = []; // the first came first
  private closed = false;

  constructor(private free: number) {}

  /** Rejects with the reason of the signal as soon as it is aborted; a worker that is at the task then ends. */
  async run(task: Task, signal?: AbortSignal): Promise<Outcome> {
    await this.turn(signal);
    try {
      return await this.ask(task, signal);
    } finally {
      const next = this.waiting.shift();
      if (next) next();
      else this.free += 1;
    }
  }

  /** Ends the workers, those that are busy after their task. */
  close(): void {
    this.closed = true;
    for (const worker of this.idle.splice(0)) worker.end();
  }

  private async turn(signal?: AbortSignal): Promise<void> {
    signal?.throwIfAborted();
    if (this.free > 0) {
      this.free -= 1;
      return;
    }
    await new Promise<void>((resolve, reject) => {
      const take = (): void => {
        signal?.removeEventListener('abort', leave);
        resolve();
      };
      const leave = (): void => {
        this.waiting.splice(this.waiting.indexOf(take), 1);
        reject(signal?.reason);
      };
      this.waiting.push(take);
      signal?.addEventListener('abort', leave);
    });
  }

  private async ask(task: Task, signal?: AbortSignal): Promise<Outcome> {
    signal?.throwIfAborted(); // since its turn came
    const worker = this.idle.pop() ?? startWorker();
    let abort = (): void => {};
    const aborted = new Promise<never>((_, reject) => (abort = () => reject(signal?.reason)));
    signal?.addEventListener('abort', abort);
    try {
      const outcome = await Promise.race([worker.ask(task), aborted]);
      if (this.closed) worker.end();
      else this.idle.push(worker);
      return outcome;
    } catch (error) {
      worker.end();
      throw error;
    } finally {
      signal?.removeEventListener('abort', abort);
    }
  }
}
