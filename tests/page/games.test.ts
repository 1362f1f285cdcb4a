// How the page reads games and writes numbers: the rows that the tools pass too.
import assert from 'node:assert/strict';
import test from 'node:test';
import { readGames } from '../../web/page/src/pgn_in';
import { lossText } from '../../web/page/src/text';
import { table } from './data';

test('texts of files', async () => {
  for (const [escaped = '', games] of table('pgn_texts.tsv')) {
    const text = escaped.replace(/\\r/g, '\r').replace(/\\n/g, '\n');
    const read = (await readGames(text)).map(({ moves, result }) => `${moves} ${result}`);
    assert.equal(read.join(' | '), games, escaped);
  }
});

test('games that are not chess as the engine plays it', async () => {
  for (const [variant, fen, problem] of table('variants.tsv')) {
    const start = fen === '-' ? '' : `[FEN "${fen}"]`;
    const [game] = await readGames(`[Variant "${variant}"]\n${start}\n\n*`);
    assert.equal(game?.problem, problem, `${variant} ${fen}`);
  }
});

test('average losses', () => {
  for (const [centipawns, text] of table('average_losses.tsv')) {
    assert.equal(lossText(Number(centipawns)), text);
  }
});
