// Searches every position of an analysis again and compares what comes out.
import { parsePosition, words, type Answer, type Found, type Game, type Options } from './analysis';
import type { Reply, Search } from './engine';
import { isMate } from './text';

/** One search of an analysis. */
interface Job {
  /** Where it belongs among all searches that are repeated. */
  index: number;
  game: Game;
  position: string;
  depth: number;
  was: Answer;
}

/** A search that was repeated. */
export interface Repeated extends Job {
  /** What the search says now; null where it failed. */
  is: Answer | null;
  /** "timed": the time limit ended the first search, so that another computer may say otherwise. */
  outcome: 'equal' | 'different' | 'timed';
}

/** All answers of the games, in order. */
export function answered(games: Game[]): Job[] {
  return games.flatMap((game) => Object.entries(game.answers).flatMap(([position, byDepth]) =>
    Object.entries(byDepth).flatMap(([depth, was]) => was ? [{ game, position, depth: Number(depth), was }] : [])))
    .map((job, index) => ({ index, ...job }));
}

function asAnswer(reply: Reply | 'over'): Answer {
  return reply === 'over' ? reply : [reply.score, reply.depth, reply.nodes, reply.line.join(' ')];
}

function isEqual(was: Answer, is: Answer): boolean {
  const comparable = (answer: Answer) => answer === 'over' ? answer : answer.slice(0, 4).join('|');
  return comparable(was) === comparable(is);
}

function wasTimed(was: Answer, depth: number): boolean {
  return was !== 'over' && was[1] < depth && !isMate((was as Found)[0]);
}

async function repeatOne(job: Job, options: Options, search: Search, signal: AbortSignal): Promise<Repeated> {
  const { ply, extra } = parsePosition(job.position);
  const moves = [...words(job.game.moves).slice(0, ply), ...extra];
  let is: Answer | null = null;
  try {
    is = asAnswer(await search({ fen: job.game.fen, moves, depth: job.depth, time: options.time, signal }));
  } catch (problem) {
    if (signal.aborted) {
      throw problem;
    }
  }
  const equal = is !== null && isEqual(job.was, is);
  return { ...job, is, outcome: equal ? 'equal' : wasTimed(job.was, job.depth) ? 'timed' : 'different' };
}

/**
 * Repeats all searches of the games, several at once; `each` sees every one, in the order in which they end. False
 * when `signal` stopped it.
 */
export async function repeat(
  games: Game[], options: Options, search: Search, jobs: number, signal: AbortSignal,
  each: (repeated: Repeated) => void): Promise<boolean> {
  const queue = answered(games).values();
  const work = async () => {
    for (const job of queue) {
      each(await repeatOne(job, options, search, signal));
    }
  };
  try {
    await Promise.all(Array.from({ length: jobs }, work));
  } catch (problem) {
    if (!signal.aborted) {
      throw problem;
    }
  }
  return !signal.aborted;
}
