// Which moves of a game lost winning chances: what has to be searched to know it, and the verdict. Both procedures
// are pure and agree with tools/zorvane_judge.py on every row of tests/data/judgement.tsv.
import rule from '../../../tools/zorvane_rule.json';
import { positionKey, words, type Answer, type Found, type Game, type Options, type Side } from './analysis';
import { isMate, isWhites, moveNumber, startOf, type Start } from './text';

/** The position after `ply` half-moves of the game and then the moves `extra`, searched to `depth`. */
export interface Question {
  ply: number;
  extra: string[];
  depth: number;
}

export interface SideVerdict {
  /** Thousandths of what no loss at all gives; null where no move was judged. */
  accuracy: number | null;
  /** Centipawns a move. */
  loss: number | null;
  /** Marks by kind: inaccuracies, mistakes, blunders. */
  counts: [number, number, number];
}

/** What came out about a game, by half-move; 0 is the start. */
export interface Verdict {
  /** Centipawns from White's view, of the position after it. */
  scores: Map<number, number>;
  /** The half-move that ended the game by mate or stalemate, 0 for none. */
  over: number;
  /** Winning chances lost, in ten-thousandths. */
  losses: Map<number, number>;
  centipawns: Map<number, number>;
  /** 0 inaccuracy, 1 mistake, 2 blunder. */
  marks: Map<number, number>;
  /** The engine's moves from the position before it; with a mark, of the search that confirmed it. */
  lines: Map<number, string[]>;
  sides: Record<Side, SideVerdict>;
  /** Searches that their time limit ended. */
  timeEnded: number;
  /** Questions without an answer. */
  missing: Question[];
}

export type Judged = Pick<Game, 'fen' | 'moves' | 'mated' | 'answers'>
export type Rule = Pick<Options, 'depth' | 'moves' | 'side' | 'thresholds'>

interface Loss {
  chances: number;
  centipawns: number;
}

// What a half-move lost, undefined while it is not known, and all questions about it: pairs of a search before the move
// and one after it.
interface Weighed {
  lost: Loss | undefined;
  asked: Question[];
}

const MATE = 900000;
export const SHALLOWEST = 1;
export const DEEPEST = rule.deepest;
export const THRESHOLDS = rule.thresholds as [number, number, number];

function rounded(value: number): number {
  return Math.floor(value + 0.5);
}

/** White's winning chances for centipawns, -10000 (lost) to 10000 (won). */
export function chances(score: number): number {
  const { factor, scale, limit } = rule.chances;
  const capped = Math.min(limit, Math.abs(score));
  const size = rounded(scale * (2 / (1 + Math.exp(-factor * capped)) - 1));
  return score > 0 ? size : -size;
}

/** The half-moves to judge, counted from 1. */
export function judged(game: Pick<Game, 'fen' | 'moves'>, { moves, side }: Pick<Options, 'moves' | 'side'>): number[] {
  const start = startOf(game.fen);
  return words(game.moves).map((_, i) => i + 1).filter((ply) => {
    const number = moveNumber(ply, start);
    return moves[0] <= number && number <= (moves[1] ?? Infinity)
      && (side === null || side === (isWhites(ply, start) ? 'White' : 'Black'));
  });
}

/** A game with the rule that judges it, taken apart once. */
class Case {
  readonly plies: string[];
  readonly start: Start;
  readonly weighed: Map<number, Weighed>;

  constructor(readonly game: Judged, readonly rule: Rule) {
    this.plies = words(game.moves);
    this.start = startOf(game.fen);
    this.weighed = new Map(judged(game, rule).map((ply) => [ply, this.weigh(ply)]));
  }

  answer({ ply, depth }: Question): Answer | null | undefined {
    return this.game.answers[String(ply)]?.[String(depth)];
  }

  /** The score that answers a question, from White's view. */
  score(asked: Question): number {
    const answer = this.answer(asked);
    if (answer === 'over') {
      return this.game.mated ? MATE * this.sign(asked.ply) : 0;
    }
    return answer?.[0] ?? 0;
  }

  line(asked: Question): string[] {
    const answer = this.answer(asked);
    return answer && answer !== 'over' ? words(answer[3]) : [];
  }

  /** All questions that the answers so far lead to, in order. */
  questions(): Question[] {
    const all = [...this.weighed.values()].flatMap(({ asked }) => asked);
    const different = new Map(all.map((asked) => [`${place(asked)}:${asked.depth}`, asked]));
    return [...different.values()].sort((a, b) => a.depth - b.depth || a.ply - b.ply);
  }

  private sign(ply: number): 1 | -1 {
    return isWhites(ply, this.start) ? 1 : -1;
  }

  private weigh(ply: number): Weighed {
    const { depth } = this.rule;
    const question = (at: number, deep: number): Question => ({ ply: at, extra: [], depth: deep });
    const asked = [question(ply - 1, depth), question(ply, depth)];
    let lost = this.compare(ply, asked);
    if (lost && this.isCandidate(lost.chances)) {
      // Both searches end after the same half-move of the game, so that neither side has a move more. One to depth 8
      // sees fewer tactics at its end than one to depth 7 after the move: no line goes beyond ply 11.
      const deeper = Math.min(depth + rule.deeper, rule.comparable);
      const again = [question(ply - 1, deeper), question(ply, deeper - 1)];
      lost = this.compare(ply, again);
      asked.push(...again);
    }
    const [part, whole] = rule.share as [number, number];
    return { lost: lost && { ...lost, chances: Math.floor(lost.chances * part / whole) }, asked };
  }

  private isCandidate(loss: number): boolean {
    const [part, whole] = rule.candidate as [number, number];
    return loss * whole >= this.rule.thresholds[0] * part;
  }

  private compare(ply: number, asked: Question[]): Loss | undefined {
    const [before, after] = asked as [Question, Question];
    if (!this.answer(before) || !this.answer(after)) {
      return undefined;
    }
    if (this.line(before)[0] === this.plies[ply - 1]) {
      return { chances: 0, centipawns: 0 };
    }
    const cap = (score: number) => Math.max(-rule.centipawns, Math.min(rule.centipawns, score));
    const lost = (worth: (score: number) => number) =>
      Math.max(0, this.sign(ply) * (worth(this.score(before)) - worth(this.score(after))));
    return { chances: lost(chances), centipawns: lost(cap) };
  }
}

/** The questions that still need an answer before `judge` has all it looks at; none at the end. */
export function wanted(game: Judged, rule: Rule): Question[] {
  const one = new Case(game, rule);
  return one.questions().filter((asked) => one.answer(asked) === undefined);
}

/** How well a move was made that lost winning chances: 0 to 100000, the best. */
function accuracy(loss: number): number {
  const { top, decay, bottom } = rule.accuracy;
  const percent = top * Math.exp(-decay * 50 * loss / rule.chances.scale) - bottom;
  return rounded(1000 * Math.max(0, Math.min(100, percent)));
}

function sum(values: number[]): number {
  return values.reduce((total, value) => total + value, 0);
}

function sideVerdict(one: Case, verdict: Verdict, side: Side): SideVerdict {
  const own = (values: Map<number, number>) => [...values]
    .filter(([ply]) => isWhites(ply, one.start) === (side === 'White')).map(([, value]) => value);
  const losses = own(verdict.losses);
  const marks = own(verdict.marks);
  const counts = [0, 1, 2].map((kind) => marks.filter((mark) => mark === kind).length) as SideVerdict['counts'];
  return losses.length === 0 ? { accuracy: null, loss: null, counts } : {
    accuracy: rounded(sum(losses.map(accuracy)) / losses.length / 100),
    loss: rounded(10 * sum(own(verdict.centipawns)) / losses.length) / 10, counts,
  };
}

function takePositions(one: Case, verdict: Verdict): void {
  const plies = new Set([...one.weighed.keys()].flatMap((ply) => [ply - 1, ply]));
  for (const ply of [...plies].sort((a, b) => a - b)) {
    const asked = { ply, extra: [], depth: one.rule.depth };
    const answer = one.answer(asked);
    if (answer) {
      verdict.scores.set(ply, one.score(asked));
    }
    if (answer === 'over') {
      verdict.over = ply;
    } else if (answer) {
      verdict.lines.set(ply + 1, one.line(asked));
    }
  }
}

function judgeMoves(one: Case, verdict: Verdict): void {
  for (const [ply, { lost, asked }] of one.weighed) {
    if (!lost) {
      continue;
    }
    verdict.losses.set(ply, lost.chances);
    verdict.centipawns.set(ply, lost.centipawns);
    const mark = one.rule.thresholds.filter((threshold) => lost.chances >= threshold).length;
    if (mark) {
      verdict.marks.set(ply, mark - 1);
      // Of the search that confirmed it.
      verdict.lines.set(ply, one.line(asked[asked.length - 2] as Question));
    }
  }
}

function endedByTime(answer: Answer | null | undefined, depth: number): boolean {
  return Boolean(answer) && answer !== 'over' && (answer as Found)[1] < depth && !isMate((answer as Found)[0]);
}

/** The verdict on a game. A move that lacks an answer has no loss, and what is missing is in the verdict. */
export function judge(game: Judged, rule: Rule): Verdict {
  const one = new Case(game, rule);
  const none: SideVerdict = { accuracy: null, loss: null, counts: [0, 0, 0] };
  const verdict: Verdict = {
    scores: new Map(), over: 0, losses: new Map(), centipawns: new Map(), marks: new Map(), lines: new Map(),
    sides: { White: none, Black: none }, timeEnded: 0, missing: [],
  };
  takePositions(one, verdict);
  judgeMoves(one, verdict);
  const questions = one.questions();
  verdict.missing = questions.filter((asked) => !one.answer(asked));
  verdict.timeEnded = questions.filter((asked) => endedByTime(one.answer(asked), asked.depth)).length;
  verdict.sides = { White: sideVerdict(one, verdict, 'White'), Black: sideVerdict(one, verdict, 'Black') };
  return verdict;
}

/** The name of a question's position in the answers. */
export function place(question: Question): string {
  return positionKey(question.ply, question.extra);
}
