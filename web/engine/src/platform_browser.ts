// Workers of a browser. They are made from a blob, which also a page opened from a disk may do.
import { type EngineWorker, workerSource } from './engine_worker.js';
import type { Outcome, Task } from './run.js';

export function countProcessors(): number {
  return navigator.hardwareConcurrency || 1;
}

export function startWorker(): EngineWorker {
  const url = URL.createObjectURL(new Blob([workerSource], { type: 'text/javascript' }));
  const worker = new Worker(url);
  const ask = (task: Task): Promise<Outcome> =>
    new Promise((resolve, reject) => {
      worker.onmessage = ({ data }: MessageEvent<Outcome | string>) =>
        typeof data === 'string' ? reject(new Error(data)) : resolve(data);
      worker.onerror = ({ message }) => reject(new Error(message || 'the browser refuses to start a worker'));
      worker.postMessage(task);
    });
  const end = (): void => {
    worker.terminate();
    URL.revokeObjectURL(url);
  };
  return { ask, end };
}
