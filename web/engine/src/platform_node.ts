// Workers of node: threads of the process.
import os from 'node:os';
import { Worker } from 'node:worker_threads';
import { type EngineWorker, workerSource } from './engine_worker.js';
import type { Outcome, Task } from './run.js';

export function countProcessors(): number {
  return os.availableParallelism?.() ?? os.cpus().length;
}

export function startWorker(): EngineWorker {
  const worker = new Worker(workerSource, { eval: true });
  worker.unref();
  const ask = (task: Task): Promise<Outcome> =>
    new Promise((resolve, reject) => {
      const settle = (): void => {
        worker.off('message', answered).off('error', failed);
        worker.unref();
      };
      const answered = (answer: Outcome | string): void => {
        settle();
        if (typeof answer === 'string') reject(new Error(answer));
        else resolve(answer);
      };
      const failed = (error: Error): void => {
        settle();
        reject(error);
      };
      worker.on('message', answered).on('error', failed);
      worker.ref(); // the process waits for a running search, not for an idle worker
      worker.postMessage(task);
    });
  return { ask, end: () => void worker.terminate() };
}
