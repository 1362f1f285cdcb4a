// A worker's end of its channel, in node.
import { parentPort } from 'node:worker_threads';
import type { Outcome, Task } from './run.js';

export function listen(answer: (task: Task) => Promise<Outcome | string>): void {
  parentPort?.on('message', async (task: Task) => parentPort?.postMessage(await answer(task)));
}
