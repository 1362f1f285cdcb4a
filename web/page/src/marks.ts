// The marks of moves: how they are written, and what they are called.
import type { Options } from './analysis';

export interface Mark {
  sign: string;
  nag: string;
  name: string;
  names: string;
}

export const MARKS: readonly Mark[] = [
  { sign: '?!', nag: '$6', name: 'inaccuracy', names: 'inaccuracies' },
  { sign: '?', nag: '$2', name: 'mistake', names: 'mistakes' },
  { sign: '??', nag: '$4', name: 'blunder', names: 'blunders' },
];

/** What has to be lost for a mark, as a phrase. */
export function threshold(options: Options, kind: number): string {
  return `${(options.thresholds[kind] ?? 0) / 100} % of the winning chances or more`;
}
