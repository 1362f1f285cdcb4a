// Answers all questions about the games, several side by side; it can be stopped and goes on where it was.
import { words, type Game, type Options } from './analysis';
import type { Search } from './engine';
import { place, wanted, type Question } from './judge';

export interface Events {
  /** A position was answered. */
  answered(): void;
  /** All that the verdict on a game needs is known. */
  finished(game: Game): void;
}

interface Job extends Question {
  game: Game;
}

// How much more a search costs for each move that it looks further ahead, roughly.
const COST_OF_DEPTH = 4;

export class Analyser {
  positions = 0;
  private readonly open = new Map<Game, number>();
  private readonly done = new Set<Game>();
  private queue: Job[] = [];
  private next = 0;
  private active = 0;
  private costDone = 0;
  private timeUsed = 0;

  constructor(
    private readonly games: Game[], private readonly options: Options, private readonly search: Search,
    private readonly jobs: number, private readonly events: Events) {
    this.games = games.filter((game) => game.problem === '');
    for (const game of this.games.filter((game) => wanted(game, options).length === 0)) {
      this.done.add(game);
    }
  }

  get gamesDone(): number {
    return this.done.size;
  }

  get gamesToDo(): number {
    return this.games.length;
  }

  isDone(game: Game): boolean {
    return this.done.has(game);
  }

  /** Runs until all is answered (true) or `signal` stops it (false). */
  async run(signal: AbortSignal): Promise<boolean> {
    this.queue = [];
    this.open.clear();
    this.next = 0;
    const begin = performance.now();
    const used = this.timeUsed;
    await new Promise<void>((resolve) => {
      const fill = () => {
        this.timeUsed = used + performance.now() - begin;
        for (let job; this.active < this.jobs && !signal.aborted && (job = this.take());) {
          this.active++;
          void this.ask(job, signal).finally(() => {
            this.active--;
            fill();
          });
        }
        if (this.active === 0) {
          resolve();
        }
      };
      fill();
    });
    return !signal.aborted;
  }

  /** Share of the work that is done, 0 to 1, and seconds left; both are estimates. */
  progress(): { share: number, secondsLeft: number | null } {
    const left = this.costLeft();
    const share = this.costDone / (this.costDone + left || 1);
    const secondsLeft = this.costDone ? this.timeUsed / 1000 * left / this.costDone : null;
    return { share, secondsLeft };
  }

  private cost(question: Question): number {
    return COST_OF_DEPTH ** (question.depth - this.options.depth);
  }

  private costLeft(): number {
    const queued = this.queue.reduce((sum, job) => sum + this.cost(job), 0) + this.active;
    return this.games.slice(this.next).filter((game) => !this.done.has(game))
      .reduce((sum, game) => sum + words(game.moves).length + 1, queued);
  }

  private take(): Job | undefined {
    while (this.queue.length === 0 && this.next < this.games.length) {
      this.askAgain(this.games[this.next++] as Game);
    }
    return this.queue.shift();
  }

  private askAgain(game: Game): void {
    const questions = wanted(game, this.options);
    this.open.set(game, questions.length);
    this.queue.unshift(...questions.map((question) => ({ ...question, game })));
    if (questions.length === 0 && !this.done.has(game)) {
      this.done.add(game);
      this.events.finished(game);
    }
  }

  private async ask(job: Job, signal: AbortSignal): Promise<void> {
    const { game, ply, extra, depth } = job;
    const moves = [...words(game.moves).slice(0, ply), ...extra];
    const answers = game.answers[place(job)] ??= {};
    try {
      const reply = await this.search({ fen: game.fen, moves, depth, time: this.options.time, signal });
      answers[depth] = reply === 'over' ? reply
        : [reply.score, reply.depth, reply.nodes, reply.line.join(' '), Math.round(reply.ms)];
    } catch (problem) {
      if (signal.aborted) {
        return;
      }
      console.error(problem);
      answers[depth] = null;
    }
    this.positions++;
    this.costDone += this.cost(job);
    const open = (this.open.get(game) ?? 0) - 1;
    this.open.set(game, open);
    this.events.answered();
    if (open === 0) {
      this.askAgain(game);
    }
  }
}
