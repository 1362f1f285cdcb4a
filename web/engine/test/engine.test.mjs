// The module in node: answers, errors, and what becomes of searches that are many or unwanted.
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import test from 'node:test';
import { Zorvane, ZorvaneError } from 'zorvane';

const kData = new URL('../../../tests/data/', import.meta.url);
const kMated = 'f2f3 e7e5 g2g4 d8h4';
const kStalemate = '7k/5Q2/6K1/8/8/8/8/8 b - - 0 1';

const engine = await Zorvane.load(await readFile(new URL('../dist/zorvane.wasm', import.meta.url)));

/** The rows of a table of tests/data. */
async function table(name) {
  const text = await readFile(new URL(name, kData), 'utf8');
  return text.split('\n').filter((line) => line && !line.startsWith('#')).map((line) => line.split('\t'));
}

/** An answer as a recorded request gives it: move, score, depth, nodes and the best line. */
function requestRow({ move, score, depth, nodes, line }) {
  return `${move} ${score} ${depth} ${nodes} ${line.join(' ')}`;
}

/** What requests.tsv says, in the same form; its moves are files and rows, these counted from the eighth rank. */
function recordedRow(text) {
  const [head, ...rows] = text.split('; ')[0].split(', '); // what follows is no part of the best line
  const line = rows.filter((row) => row.startsWith('1')).map((row) => {
    const [, fromFile, fromRow, toFile, toRow, piece] = row.split(' ').map(Number);
    const promotes = (piece === 1 && toRow === 0) || (piece === 11 && toRow === 7);
    return 'abcdefgh'[fromFile] + (8 - fromRow) + 'abcdefgh'[toFile] + (8 - toRow) + (promotes ? 'q' : '');
  });
  return `${head.split(' ').slice(0, 4).join(' ')} ${line.join(' ')}`;
}

/** An answer from a FEN as a recorded bench gives it. */
function benchRow(answer, fen) {
  if (answer.over) return `info depth 0 score ${answer.mate ? 'mate' : 'cp'} 0 nodes 0 pv | bestmove 0000`;
  const { move, depth, nodes } = answer;
  const score = fen.split(' ')[1] === 'w' ? answer.score : -answer.score || 0;
  const plies = 900000 - Math.abs(score);
  const moves = Math.ceil(plies / 2) * Math.sign(score);
  const shown = Math.abs(score) >= 800000 ? `mate ${moves}` : `cp ${score}`;
  return `info depth ${depth} score ${shown} nodes ${nodes} pv ${move} | bestmove ${move}`;
}

/** A recorded request with the table and without hints, as the module asks; the pawn cache changes no answer. */
function asksAlike([numbers, , hints, wanted]) {
  return /^300000 [1-8] 1024 [^0]/.test(numbers) && !hints && /^[a-h][1-8]/.test(wanted);
}

test('games from the initial position', async () => {
  const rows = (await table('requests.tsv')).filter(asksAlike);
  assert.ok(rows.length > 3);
  await Promise.all(rows.map(async ([numbers, position, , wanted]) => {
    const [, moves] = position.split(' moves ');
    const answer = await engine.search({ moves, depth: Number(numbers.split(' ')[1]) });
    assert.equal(requestRow(answer), recordedRow(wanted));
  }));
});

test('positions by FEN', async () => {
  for (const name of ['ends.bench.tsv', 'rare.bench.tsv', 'games.bench.tsv']) {
    const rows = (await table(name)).slice(0, 12);
    await Promise.all(rows.map(async ([depth, fen, wanted]) => {
      assert.equal(benchRow(await engine.search({ fen, depth: Number(depth) }), fen), wanted, fen);
    }));
  }
  const fen = 'rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1';
  const [byFen, byMoves] = await Promise.all([
    engine.search({ fen, moves: ['e2e4'], depth: 3 }), engine.search({ moves: ['e2e4'], depth: 3 })]);
  assert.deepEqual({ ...byFen, ms: 0 }, { ...byMoves, line: [byMoves.move], ms: 0 });
});

test('the game is over', async () => {
  assert.deepEqual(await engine.search({ moves: kMated, depth: 1 }), { over: true, mate: true });
  assert.deepEqual(await engine.search({ fen: kStalemate, depth: 1 }), { over: true, mate: false });
});

test('questions that cannot be asked', async () => {
  const refused = {
    depth: [{ depth: 0 }, { depth: 9 }, { depth: 1.5 }, { depth: NaN }, {}],
    time: [{ depth: 1, time: 0 }, { depth: 1, time: 300001 }, { depth: 1, time: NaN }],
    moves: [{ depth: 1, moves: 'e2e5' }, { depth: 1, moves: ['e2e4\nquit'] }, { depth: 1, moves: ['0000'] },
      { depth: 1, moves: `${kMated} a2a3` }, { depth: 1, fen: kStalemate, moves: 'h8h7' },
      { depth: 1, moves: 'g1f3 g8f6 f3g1 f6g8 '.repeat(1000) }],
    fen: [{ depth: 1, fen: '' }, { depth: 1, fen: 'x' }, { depth: 1, fen: '8/8/8/8/8/8/8/8 w - -' },
      { depth: 1, fen: `${kStalemate}\nquit` }, { depth: 1, fen: `${kStalemate} moves h8h7` }],
  };
  for (const [code, questions] of Object.entries(refused))
    for (const question of questions)
      await assert.rejects(engine.search(question), (error) => error instanceof ZorvaneError && error.code === code,
        JSON.stringify(question));
  await assert.rejects(Zorvane.load(new Uint8Array(8)), WebAssembly.CompileError);
});

test('a time limit ends a search', async () => {
  const { depth, move, nodes } = await engine.search({ depth: 8, time: 1 });
  assert.ok(depth < 8 && move && nodes < 9249034);
});

test('searches are aborted while they run, wait or have not begun', async () => {
  const one = await Zorvane.load(await readFile(new URL('../dist/zorvane.wasm', import.meta.url)), { workers: 1 });
  const controllers = [0, 1, 2].map(() => new AbortController());
  controllers[2].abort(new Error('never'));
  const [running, waiting, never] = controllers.map(({ signal }) => one.search({ depth: 8, signal }));
  const last = one.search({ depth: 2 });
  await assert.rejects(never, { message: 'never' });
  controllers[1].abort(new Error('no longer'));
  await assert.rejects(waiting, { message: 'no longer' });
  controllers[0].abort();
  await assert.rejects(running, { name: 'AbortError' });
  assert.equal((await last).depth, 2); // by a new worker in the turn of the aborted search
  one.close();
});
