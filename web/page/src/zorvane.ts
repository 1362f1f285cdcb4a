// The engine inside the page, in workers of the reader's browser.
import { Zorvane } from 'zorvane';
import program from 'zorvane/zorvane.wasm';
import type { Search } from './engine';

// One more than work on the games, so that a move tried on the board need not wait for them.
const FOR_THE_BOARD = 1;

/** How many searches of games run side by side. */
export const JOBS = navigator.hardwareConcurrency || 1;

let loaded: Promise<Zorvane> | undefined;

function zorvane(): Promise<Zorvane> {
  return loaded ??= Zorvane.load(program, { workers: JOBS + FOR_THE_BOARD });
}

export const search: Search = async (ask) => {
  const answer = await (await zorvane()).search(ask);
  return answer.over ? 'over' : answer;
};
