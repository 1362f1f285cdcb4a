// Games as PGN with what came out about them: evaluations, marks, the engine's lines, and tags that say whose they are.
//
// What an earlier analysis added is replaced. It is known by the command [%zorvane ...] in comments: with a number
// after a move it names the mark that was added there, with `line` it is in a variation that was added. The tags of
// that analysis name the moves whose evaluations are its own.
import { words, type Analysis, type Game, type Options, type Side } from './analysis';
import { judged, type Verdict } from './judge';
import { MARKS } from './marks';
import { commentText, parseTag, tagText, tokens, type Token } from './pgn_text';
import { isWhites, lossText, numbered, scoreTag, startOf, type Start } from './text';
import { Track } from './track';

const WIDTH = 79;
const SCORE = /\[%eval [^\]]*\]/g;
const OWN_MARK = /\[%zorvane (\w+)\]/g;
const OWN_LINE = '[%zorvane line]';
const NAGS: Record<string, string> = { '!': '$1', '?': '$2', '!!': '$3', '??': '$4', '!?': '$5', '?!': '$6' };
const RANGE = /^(\d+)-(\d*)(?: of (White|Black))?$/;
// What would be something else at the beginning of a line: escaped, a comment, a tag.
const LIKE_ANOTHER_LINE = /^(?:[%;]|\[(?!%))/;

/** A comment without its braces, or a variation or a comment after one. */
type Comment = string

// A move of the game with what belongs to it.
interface Ply {
  nags: string[];
  comments: Comment[];
  // Variations as tokens, and comments after them as one token each.
  rest: Token[][];
}

function emptyPly(): Ply {
  return { nags: [], comments: [], rest: [] };
}

// What belongs to each move, from 1; what is before the first move belongs to 0.
function takeApart(pgn: string): Ply[] {
  const plies = [emptyPly()];
  let variation: Token[] = [];
  let depth = 0;
  for (const token of tokens(pgn)) {
    const ply = plies[plies.length - 1] as Ply;
    const { kind, text } = token;
    depth += Number(kind === 'open');
    if (depth > 0) {
      variation.push(token);
    } else if (kind === 'move') {
      plies.push(emptyPly());
    } else if (kind === 'nag') {
      ply.nags.push(NAGS[text] ?? text);
    } else if (kind === 'comment' && ply.rest.length) {
      ply.rest.push([token]);
    } else if (kind === 'comment') {
      ply.comments.push(commentText(text));
    }
    if (kind === 'close' && --depth === 0) {
      ply.rest.push(variation);
      variation = [];
    }
  }
  return plies;
}

function isOwnLine(variation: Token[]): boolean {
  const first = variation.findIndex((token) => token.kind === 'move');
  const next = variation.slice(first + 1).find((token) => token.kind !== 'skip');
  return next?.kind === 'comment' && next.text.includes(OWN_LINE);
}

// Removes the mark and the line that an earlier analysis added.
function removeOwn(ply: Ply): void {
  const own = ply.comments.flatMap((comment) => [...comment.matchAll(OWN_MARK)].map((match) => `$${match[1] ?? ''}`));
  ply.nags = ply.nags.filter((nag) => !own.includes(nag));
  ply.rest = ply.rest.filter((item) => item[0]?.kind !== 'open' || !isOwnLine(item));
}

// The words of a variation without move numbers; a comment is one word.
function wordsOf(item: Token[]): string[] {
  return item.filter(({ kind }) => kind !== 'skip' && kind !== 'number').map(({ kind, text }) =>
    kind === 'comment' ? `{${commentText(text)}` : kind === 'nag' ? NAGS[text] ?? text : text);
}

function beginsWith(item: Token[], fen: string, move: string): boolean {
  const first = item.find((token) => token.kind === 'move')?.text ?? '';
  return item[0]?.kind === 'open' && new Track(fen, [first]).steps[0]?.move === move;
}

// Adds a mark and the engine's line. Gives what names the mark as ours, if it was not there before.
function addMark(ply: Ply, n: number, verdict: Verdict, track: Track): string {
  const mark = MARKS[verdict.marks.get(n) ?? -1];
  const better = new Track(track.fen(n - 1), verdict.lines.get(n) ?? []);
  const [best] = better.steps;
  if (!mark || !best) {
    return '';
  }
  if (!ply.rest.some((item) => beginsWith(item, track.fen(n - 1), best.move))) {
    ply.rest.unshift([...tokens(`(${best.san} {${OWN_LINE}} ${better.sans.slice(1).join(' ')})`)]);
  }
  if (ply.nags.includes(mark.nag)) {
    return '';
  }
  ply.nags.push(mark.nag);
  return `[%zorvane ${mark.nag.slice(1)}]`;
}

// The half-moves whose evaluations come from an earlier analysis.
function earlierScores(game: Game): Set<number> {
  const [, first, last, side] = RANGE.exec(game.tags['AnalysisMoves'] ?? '') ?? [];
  if (first === undefined) {
    return new Set();
  }
  return new Set(judged(game, { moves: [Number(first), last ? Number(last) : null], side: (side as Side) ?? null }));
}

function movesText(game: Game, verdict: Verdict, options: Options): string {
  const track = new Track(game.fen, words(game.moves));
  const ours = new Set(judged(game, options).filter((n) => verdict.scores.has(n)));
  const replaced = earlierScores(game);
  const output: string[] = [];
  for (const [n, ply] of takeApart(game.pgn).slice(0, track.length + 1).entries()) {
    removeOwn(ply);
    const added = addMark(ply, n, verdict, track);
    const drop = ours.has(n) || replaced.has(n);
    const comments = ply.comments
      .map((comment) => (drop ? comment.replace(SCORE, '') : comment).replace(OWN_MARK, '').trim());
    const score = ours.has(n) && n !== verdict.over ? `[%eval ${scoreTag(verdict.scores.get(n) ?? 0)}]` : '';
    const comment = [score, ...comments, added].filter(Boolean).join(' ');
    output.push(track.steps[n - 1]?.san ?? '', ...ply.nags, comment && `{${comment}`, ...ply.rest.flatMap(wordsOf));
  }
  return wrapped([...withNumbers(output.filter(Boolean), startOf(game.fen)), game.result]);
}

// The words with move numbers, where a reader needs them.
function* withNumbers(all: string[], start: Start): Generator<string> {
  const around: number[] = [];
  let n = 1;
  let interrupted = true;
  for (const word of all) {
    if (word === '(') {
      around.push(n--);
    } else if (word === ')') {
      n = around.pop() ?? n;
    } else if (!/^[{$]/.test(word)) {
      if (interrupted || isWhites(n, start)) {
        yield numbered(n, start);
      }
      n++;
    }
    interrupted = /^[{()]/.test(word) || (interrupted && word.startsWith('$'));
    yield word;
  }
}

// Words in lines that are not too long. A command in a comment stays on one line.
function wrapped(all: string[]): string {
  const lines = [''];
  let bracket = '';
  for (const word of all) {
    if (word === '(') {
      bracket += word;
      continue;
    }
    const pieces = word.startsWith('{') ? ['{', ...word.slice(1).match(/\[%[^\]]*\]|\S+/g) ?? [], '}'] : [word];
    for (const part of pieces) {
      const piece = bracket + part.replace(/\s+/g, ' ');
      bracket = '';
      const line = lines[lines.length - 1] ?? '';
      const blank = piece === ')' || line === '' ? '' : ' ';
      if (blank === '' || LIKE_ANOTHER_LINE.test(piece) || line.length + piece.length < WIDTH) {
        lines[lines.length - 1] = line + blank + piece;
      } else {
        lines.push(piece);
      }
    }
  }
  return lines.join('\n');
}

function ownTags(verdict: Verdict, { engine, options }: Analysis): [string, string][] {
  const [first, last] = options.moves;
  const tags: [string, string][] = [
    ['Engine', engine.name], ['Version', engine.version], ['Signature', engine.signature],
    ['Depth', String(options.depth)], ['TimeLimit', `${options.time} ms`],
    ['Moves', `${first}-${last ?? ''}${options.side ? ` of ${options.side}` : ''}`],
    ['Thresholds', options.thresholds.map((threshold) => threshold / 10000).join(' ')],
    ['EndedByTime', String(verdict.timeEnded)]];
  for (const side of ['White', 'Black'] as const) {
    const { accuracy, loss } = verdict.sides[side];
    if (accuracy !== null && loss !== null) {
      tags.push([`${side}Accuracy`, (accuracy / 10).toFixed(1)], [`${side}Loss`, lossText(loss)]);
    }
  }
  return tags.map(([name, value]) => [`Analysis${name}`, value]);
}

/** A game with its verdict as PGN; a game that was not analysed as it was. */
export function annotated(game: Game, verdict: Verdict, analysis: Analysis): string {
  if (game.problem) {
    return `${game.pgn.trimEnd()}\n\n`;
  }
  const every = ['Engine', 'Version', 'Signature', 'Depth', 'TimeLimit', 'Moves', 'Thresholds', 'EndedByTime',
    'WhiteAccuracy', 'WhiteLoss', 'BlackAccuracy', 'BlackLoss'].map((name) => `Analysis${name}`);
  const kept = [...tokens(game.pgn)].filter((token) => token.kind === 'tag').map((token) => parseTag(token.text))
    .filter(([name]) => !every.includes(name));
  const tags = [...kept, ...ownTags(verdict, analysis)].map(([name, value]) => tagText(name, value));
  return `${tags.join('\n')}\n\n${movesText(game, verdict, analysis.options)}\n\n`;
}
