// Numbers and moves as people read them.
import { tag, type Game } from './analysis';

const MATE = 900000;
const LEAST_MATE = 800000;

/** Moves to mate, negative when White is mated; 0 when the score is no mate. */
export function mateIn(score: number): number {
  return Math.abs(score) < LEAST_MATE ? 0 : Math.sign(score) * Math.ceil((MATE - Math.abs(score)) / 2);
}

export function isMate(score: number): boolean {
  return Math.abs(score) >= LEAST_MATE;
}

/** A score as PGN has it: 0.22, -1.50, #3. */
export function scoreTag(score: number): string {
  return isMate(score) ? `#${mateIn(score)}` : (score / 100).toFixed(2);
}

/** A score for the eye, with its sign. */
export function scoreText(score: number): string {
  if (isMate(score)) {
    return `#${mateIn(score)}`.replace('-', '−');
  }
  return (score > 0 ? '+' : '') + (score / 100).toFixed(2).replace('-', '−');
}

/** An average loss of centipawns, in pawns. */
export function lossText(centipawns: number): string {
  return (centipawns / 100).toFixed(2);
}

export function plural(count: number, one: string, many = `${one}s`): string {
  return `${count.toLocaleString('en')} ${count === 1 ? one : many}`;
}

/** The full-move number of a half-move counted from 1, in a game where `start` says how it begins. */
export function moveNumber(n: number, start: Start): number {
  return start.number + Math.floor((n - 1 + (start.white ? 0 : 1)) / 2);
}

export function isWhites(n: number, start: Start): boolean {
  return (n % 2 === 1) === start.white;
}

/** Who moves first in a game, and its first move number. */
export interface Start {
  white: boolean;
  number: number;
}

export function startOf(fen: string | null): Start {
  const fields = (fen ?? '').split(/\s+/);
  return { white: fields[1] !== 'b', number: Math.max(1, Number(fields[5]) || 1) };
}

/** "12." or "12...", for the half-move n. */
export function numbered(n: number, start: Start): string {
  return moveNumber(n, start) + (isWhites(n, start) ? '.' : '...');
}

/** A line of moves with their numbers; the first half-move is `first`. */
export function lineText(sans: readonly string[], first: number, start: Start): string {
  return sans.map((san, i) =>
    i === 0 || isWhites(first + i, start) ? `${numbered(first + i, start)} ${san}` : san).join(' ');
}

export function resultText(result: string): string {
  return result === '*' ? '' : result.replace(/1\/2/g, '½').replace('-', '–');
}

export function playerName(game: Game, side: 'White' | 'Black'): string {
  return tag(game, side) || side;
}

/** Event, place and date, as far as they are known. */
export function occasion(game: Game): string {
  const date = tag(game, 'Date').replace(/(\.\?\?)+$/, '');
  return [tag(game, 'Event'), site(game), date].filter(Boolean).join(', ');
}

/** Where it was played, unless that is an address on the web. */
export function site(game: Game): string {
  return tag(game, 'Site').replace(/^https?:\/\/\S*$/, '');
}

/** "600+5" as people say it; other forms as they are. */
export function timeControl(game: Game): string {
  const [, seconds, more] = /^(\d+)(?:\+(\d+))?$/.exec(tag(game, 'TimeControl')) ?? [];
  if (seconds === undefined) {
    return tag(game, 'TimeControl');
  }
  return [duration(Number(seconds)), Number(more) ? `${more} s a move` : ''].filter(Boolean).join(' + ');
}

export function opening(game: Game): string {
  return [tag(game, 'ECO'), tag(game, 'Opening'), tag(game, 'Variation')].filter(Boolean).join(' ');
}

/** Seconds for the eye: "40 s", "3 min", "2 h 10 min". */
export function duration(seconds: number): string {
  if (seconds < 60) {
    return `${Math.max(1, Math.round(seconds))} s`;
  }
  const minutes = Math.round(seconds / 60);
  return minutes < 60 ? `${minutes} min` : `${Math.floor(minutes / 60)} h ${minutes % 60} min`;
}
