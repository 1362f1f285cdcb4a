// Questions to the program, and its answers to them. Pure procedures.
import type { Outcome, Run } from './run.js';
import { type Answer, type Found, type Question, ZorvaneError } from './types.js';

const kDeepest = 8;
const kLongestMs = 300000;
const kLongestLine = 16383; // in characters; the program takes the rest of a longer line for the next one
const kMate = 900000;
const kToken = 'search';
const kRequest = 'r';
const kBestLine = [9, 21] as const; // its rows in a response; later programs may add lines after them

/** A question whose every part has been looked at, as far as that needs no chess. */
export interface Checked {
  fen: string | null;
  moves: string[];
  depth: number;
  time: number | null; // milliseconds
}

export function check({ fen, moves = [], depth, time }: Question): Checked {
  const list = typeof moves === 'string' ? moves.split(/\s+/).filter((move) => move !== '') : [...moves];
  if (!Number.isInteger(depth) || depth < 1 || depth > kDeepest)
    throw new ZorvaneError('depth', `the depth has to be a whole number from 1 to ${kDeepest}, not ${depth}`);
  if (time !== undefined && !(time >= 1 && time <= kLongestMs))
    throw new ZorvaneError('time', `the time has to be 1 to ${kLongestMs} milliseconds, not ${time}`);
  const stranger = list.find((move) => !/^[a-h][1-8][a-h][1-8][qrbn]?$/.test(move));
  if (stranger !== undefined) throw new ZorvaneError('moves', `"${stranger}" is no move in coordinates, such as e2e4`);
  // A text that holds another command, or moves, would be another question.
  if (fen && (/[^ -~]/.test(fen) || fen.includes(' moves ')))
    throw new ZorvaneError('fen', `"${fen}" is no FEN`);
  const checked = { fen: fen ?? null, moves: list, depth, time: time ?? null };
  if (positionLine(checked).length >= kLongestLine)
    throw new ZorvaneError('moves', `${list.length} moves are more than fit into a line of ${kLongestLine} characters`);
  return checked;
}

function positionLine({ fen, moves }: Checked): string {
  const start = fen === null ? 'position startpos' : `position fen ${fen}`;
  return moves.length ? `${start} moves ${moves.join(' ')}` : start;
}

/** A request file: for games from the initial position, as its answer has the whole line. */
export function requestRun(question: Checked): Run {
  const numbers = `${question.time ?? kLongestMs} ${question.depth} 1024 1 1 0 1`;
  const text = ['ZORVANE_C_REQUEST_1', kToken, numbers, positionLine(question), ''].join('\n');
  return { arguments: ['--request', kRequest], input: '', files: { [kRequest]: text } };
}

/** Commands on standard input: for positions that a request cannot name. */
export function sessionRun(question: Checked): Run {
  const go = `go depth ${question.depth}${question.time === null ? '' : ` movetime ${question.time}`}`;
  return { arguments: [], input: `${positionLine(question)}\n${go}\n`, files: {} };
}

function failed(outcome: Outcome): ZorvaneError {
  return new ZorvaneError('engine', `the engine ended with code ${outcome.code}: ${outcome.complaint.trim()}`);
}

/** The answer to a request; null when there is none, because of an illegal move or because the game is over. */
export function readResponse(outcome: Outcome): Found | null {
  const lines = (outcome.files[`${kRequest}.response`] ?? '').split('\n');
  if (outcome.code !== 0 || lines[0] !== kToken) throw failed(outcome);
  if (lines[1] !== 'OK') return null;
  const [score, depth, nodes, ms] = lines.slice(3, 7).map(Number) as [number, number, number, number];
  return { move: lines[2] as string, score, depth, nodes, line: readLine(lines.slice(...kBestLine)), ms };
}

/** The moves of a response's best line, up to the first row without one. */
function readLine(rows: string[]): string[] {
  const line: string[] = [];
  for (const row of rows) {
    const [valid, fromFile, fromRow, toFile, toRow, piece] = row.split(' ').map(Number) as number[];
    if (valid !== 1) break;
    const isPawn = piece === 1 || piece === 11;
    line.push(square(fromFile, fromRow) + square(toFile, toRow) + (isPawn && (toRow === 0 || toRow === 7) ? 'q' : ''));
  }
  return line;
}

/** Rows count from the eighth rank. */
function square(file = 0, row = 0): string {
  return 'abcdefgh'.charAt(file) + String(8 - row);
}

/** The answer of a session. Throws when the program refused the position or a move. */
export function readSession(outcome: Outcome, { fen, moves }: Checked): Answer {
  const { output } = outcome;
  if (output.includes('info string invalid move')) throw new ZorvaneError('moves', illegal(moves));
  if (output.includes('info string invalid position')) throw new ZorvaneError('fen', `"${fen}" is no FEN of a position`);
  const found = /^info depth (\d+) score (cp|mate) (-?\d+) nodes (\d+) time (\d+) nps \d+ pv (\S*)\nbestmove /m.exec(output);
  if (outcome.code !== 0 || !found) throw failed(outcome);
  const [, depth, kind, value, nodes, ms, move] = found as unknown as string[];
  if (!move) return { over: true, mate: kind === 'mate' };
  const whiteStarts = fen === null || fen.split(/\s+/).filter(Boolean)[1] === 'w';
  const whiteMoves = whiteStarts === (moves.length % 2 === 0);
  const moversScore = kind === 'cp' ? Number(value) : mateScore(Number(value));
  const score = whiteMoves || moversScore === 0 ? moversScore : -moversScore;
  return { move, score, depth: Number(depth), nodes: Number(nodes), line: [move], ms: Number(ms) };
}

function illegal(moves: string[]): string {
  return `an illegal move among "${moves.join(' ')}"`;
}

/** From moves to a score; the mover mates in his nth move, or is mated by the nth of the other side. */
function mateScore(moves: number): number {
  return moves > 0 ? kMate - (2 * moves - 1) : -kMate - 2 * moves;
}
