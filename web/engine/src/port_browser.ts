// A worker's end of its channel, in a browser.
import type { Outcome, Task } from './run.js';

export function listen(answer: (task: Task) => Promise<Outcome | string>): void {
  self.onmessage = async (event: MessageEvent<Task>) => self.postMessage(await answer(event.data));
}
