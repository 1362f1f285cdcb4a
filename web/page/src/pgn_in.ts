// PGN to games: what a file holds, with the moves checked, and why a game cannot be analysed.
import { DEFAULT_POSITION, type Chess } from 'chess.js';
import type { Game } from './analysis';
import { isChess960 } from './chess960';
import { parseTag, splitGames, tokens, type Piece } from './pgn_text';
import { position } from './track';

const VARIANTS_OF_CHESS = ['', '?', 'standard', 'normal', 'regular', 'from position'];
const RESULTS = ['1-0', '0-1', '1/2-1/2', '*'];
const NULL_MOVES = ['--', 'Z0', '0000'];
// The engine's counters end before that.
const LARGE_NUMBER = /\d{10}/;
// What German and Dutch notation has for pieces; no English letter is among them.
const LETTERS: Record<string, string> = { D: 'Q', T: 'R', S: 'N', P: 'N', L: 'B' };
// Reading must not freeze the page: games are read for this long, then the page gets its turn.
const SLICE_MS = 40;

class Unreadable extends Error {}

/** The moves of the main line as they are written. Throws Unreadable where the text breaks. */
function mainLine(text: string): { moves: string[], result: string } {
  const moves: string[] = [];
  let depth = 0;
  let result = '';
  for (const { kind, text: word } of tokens(text)) {
    if (kind === 'move' && word === '{') {
      throw new Unreadable('a comment without an end');
    }
    depth += Number(kind === 'open') - Number(kind === 'close');
    if (depth < 0) {
      throw new Unreadable('the end of a variation without its beginning');
    }
    if (kind === 'move' && depth === 0) {
      moves.push(word);
    }
    if (kind === 'result' && depth === 0 && result === '') {
      result = word === '1/2' ? '1/2-1/2' : word;
    }
  }
  if (depth > 0) {
    throw new Unreadable('a variation without an end');
  }
  return { moves, result };
}

function startPosition(tags: Record<string, string>): Chess {
  const variant = tags['Variant'] ?? '';
  const fen = tags['FEN'] ?? '';
  if (!VARIANTS_OF_CHESS.includes(variant.toLowerCase())) {
    throw new Unreadable(`the variant is ${variant}`);
  }
  if (LARGE_NUMBER.test(fen)) {
    throw new Unreadable('its start position has a number that is too large');
  }
  if (isChess960(fen)) {
    throw new Unreadable('the castling rights are those of Chess960');
  }
  try {
    return position(fen || null);
  } catch (problem) {
    throw new Unreadable(`the FEN is no position of chess (${(problem as Error).message})`);
  }
}

function inEnglish(word: string): string {
  const letter = LETTERS[word[0] ?? ''];
  return letter ? letter + word.slice(1) : word;
}

// Older texts name no rank where a pawn takes: ed, exd.
function inFull(word: string, chess: Chess): string {
  const [, from, to] = /^([a-h])x?([a-h])$/.exec(word) ?? [];
  const moves = from ? chess.moves({ verbose: true }).filter((move) =>
    move.piece === 'p' && move.from[0] === from && move.to[0] === to) : [];
  return moves[0] && moves.length === 1 ? moves[0].san : word;
}

function play(chess: Chess, written: string[]): void {
  for (const word of written) {
    const place = `${chess.moveNumber()}${chess.turn() === 'w' ? '.' : '...'} ${word}`;
    try {
      if (NULL_MOVES.includes(word)) {
        throw new Unreadable('no move');
      }
      chess.move(inFull(inEnglish(word), chess), { strict: false });
    } catch {
      throw new Unreadable(`${place} is not possible`);
    }
  }
}

function readGame(piece: Piece, number: number): Game {
  const tags = Object.fromEntries(
    [...tokens(piece.text)].filter((token) => token.kind === 'tag').map((token) => parseTag(token.text))
      .map(([name, value]) => [name, value.trim()]));
  const game: Game = {
    number, line: piece.line, problem: '', pgn: piece.text, tags, fen: null, moves: '', sans: '',
    result: RESULTS.find((result) => result === tags['Result']) ?? '*', mated: false, answers: {},
  };
  try {
    const chess = startPosition(tags);
    game.fen = tags['FEN'] && tags['FEN'] !== DEFAULT_POSITION ? tags['FEN'] : null;
    const { moves, result } = mainLine(piece.text);
    game.result = result || game.result;
    play(chess, moves);
    const history = chess.history({ verbose: true });
    game.moves = history.map((move) => move.lan).join(' ');
    game.sans = history.map((move) => move.san).join(' ');
    game.mated = chess.isCheckmate();
  } catch (problem) {
    if (!(problem instanceof Unreadable)) {
      throw problem;
    }
    game.problem = problem.message;
  }
  return game;
}

/** Decodes a file: by its mark, else as UTF-8, or as Windows does where it is none, as old files are. */
export function decode(bytes: ArrayBuffer): string {
  const [first, second] = new Uint8Array(bytes);
  const wide = first === 0xff && second === 0xfe ? 'utf-16le' : first === 0xfe && second === 0xff ? 'utf-16be' : null;
  try {
    return new TextDecoder(wide ?? 'utf-8', { fatal: wide === null }).decode(bytes);
  } catch {
    return new TextDecoder('windows-1252').decode(bytes);
  }
}

/** All games of a PGN text in order. Those that cannot be analysed have a problem. */
export async function readGames(text: string, progress: (share: number) => void = () => {}): Promise<Game[]> {
  const pieces = splitGames(text);
  const games: Game[] = [];
  let pause = performance.now() + SLICE_MS;
  for (const piece of pieces) {
    games.push(readGame(piece, games.length + 1));
    if (performance.now() > pause) {
      progress(games.length / pieces.length);
      await new Promise((resolve) => setTimeout(resolve));
      pause = performance.now() + SLICE_MS;
    }
  }
  return games;
}
