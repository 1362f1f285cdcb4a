// The page in Chromium, from dropping games to printing them.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import test, { after, before } from 'node:test';
import type { Browser, BrowserContextOptions, Page } from 'playwright-core';
import { Chess } from 'chess.js';
import type { Analysis } from '../../web/page/src/analysis';
import {
  PAGE, analyse, analysisIn, finished, open, openGame, pageWith, saved, startChromium, toList, type Opened,
} from './browser';
import { dataFile } from './data';
import { pageText } from './record';

const DEPTH = 3;
const MOST_DRAWN = 200;
// Rows of the record and of expected texts are compared with this file; script/test-page --record writes it.
const RECORD = dataFile('page.txt');

let browser: Browser;
let analysed: string;
let analysis: Analysis;

// Opens a page, has it tested, and fails for whatever went wrong on it.
async function on(
  file: string, work: (page: Page) => Promise<void>, options: BrowserContextOptions = {}): Promise<void> {
  const opened: Opened = await open(browser, file, options);
  try {
    await work(opened.page);
    assert.deepEqual(opened.faults, []);
  } finally {
    await opened.page.context().close();
  }
}

const fen = (page: Page) =>
  page.locator('.frame g-chess-board').evaluate((board) => (board as unknown as { fen: string }).fen);
// Waits until the board is at a half-move of the game.
const at = (page: Page, n: number) => page.locator(`.moves [aria-current][data-n="${n}"]`).waitFor();

// The moves of a saved game as chess.js reads them. Its grammar knows few tags and no second variation.
function mainLine(game: string): string {
  let text = game.replace(/^\[(?!FEN|SetUp).*\n|\{[^}]*\}/gm, '');
  for (let last = ''; last !== text;) {
    last = text;
    text = text.replace(/\([^()]*\)/g, '');
  }
  const chess = new Chess();
  chess.loadPgn(text);
  return chess.history().join(' ');
}

before(async () => {
  browser = await startChromium();
  await on(PAGE, async (page) => {
    await analyse(page, DEPTH);
    await finished(page);
    analysed = await saved(page, 'Save this page');
  });
  analysis = analysisIn(analysed);
});

after(() => browser.close());

test('the page says what is recorded, when it analysed and when it is opened again', async () => {
  await on(analysed, async (page) => {
    const text = await pageText(page);
    if (process.env['RECORD']) {
      writeFileSync(RECORD, text);
    }
    assert.equal(text, readFileSync(RECORD, 'utf8'));
  });
});

test('the saved games are read by others, and hold what is no chess unchanged', async () => {
  await on(analysed, async (page) => {
    const text = readFileSync(await saved(page, 'Save as PGN'), 'utf8');
    assert.equal(text, readFileSync(dataFile('analysed.pgn'), 'utf8'));
    const read = text.split(/\n\n(?=\[)/).filter((game) => game.includes('[AnalysisEngine')).map(mainLine);
    assert.deepEqual(read, analysis.games.filter((game) => !game.problem).map((game) => game.sans));
    for (const game of analysis.games.filter((game) => game.problem)) {
      assert.ok(text.includes(game.pgn.trim()), game.problem);
    }
  });
});

test('a page saves itself with its analysis and no other change', async () => {
  const data = /(?<=<script type="application\/json" id="analysis">)[^]*?(?=<\/script>)/;
  assert.equal(readFileSync(analysed, 'utf8').replace(data, ''), readFileSync(PAGE, 'utf8'));
  await on(analysed, async (page) => {
    const before = readFileSync(analysed, 'utf8');
    assert.equal(readFileSync(await saved(page, 'Save this page'), 'utf8'), before);
  });
});

test('an analysis can be stopped and goes on', async () => {
  await on(PAGE, async (page) => {
    // The page itself stops it, after the first search: we might come too late.
    await page.evaluate(() => new MutationObserver((_, observer) => {
      const progress = document.querySelector('.progress');
      if (/ search/.test(progress?.textContent ?? '')) {
        observer.disconnect();
        progress?.querySelector('button')?.click();
      }
    }).observe(document.body, { childList: true, subtree: true }));
    await analyse(page, DEPTH);
    await page.getByText(/\d search.* stopped/).waitFor();
    await page.getByRole('button', { name: 'Go on' }).click();
    await finished(page);
    const again = analysisIn(await saved(page, 'Save this page'));
    const answers = (all: Analysis) => all.games.map(({ answers }) => Object.entries(answers)
      .flatMap(([place, byDepth]) => Object.entries(byDepth).map(([depth, found]) =>
        [place, depth, ...found === 'over' ? found : (found ?? []).slice(0, 4)].join(' '))).sort());
    assert.deepEqual(answers(again), answers(analysis));
  });
});

test('an analysis that was saved unfinished goes on where it is opened', async () => {
  const games = analysis.games.map((game) => game.number === 6 ? { ...game, answers: {} } : game);
  await on(pageWith('unfinished.html', { ...analysis, games }), async (page) => {
    await page.getByText('stopped').waitFor();
    await page.getByRole('button', { name: 'Go on' }).click();
    await finished(page);
    const recorded = readFileSync(RECORD, 'utf8').split('\n')[5];
    assert.equal((await page.locator('.list tbody tr').nth(5).innerText()).replace(/\s+/g, ' ').trim(), recorded);
  });
});

test('games that are pasted, and a file without games', async () => {
  await on(PAGE, async (page) => {
    await page.getByLabel('paste games').fill(' ');
    await page.getByRole('button', { name: 'Analyse' }).click();
    await page.getByText('There is no game in it').waitFor();
    await page.getByLabel('Depth').selectOption('1');
    await page.getByLabel('paste games').fill('1. e4 e5 1-0 1. d4 *');
    await page.getByRole('button', { name: 'Analyse' }).click();
    await finished(page);
    assert.equal(await page.locator('.list tbody tr').count(), 2);
  });
});

test('a game is stepped through with keys, the wheel, and clicks on moves and the curve', async () => {
  await on(`${analysed}`, async (page) => {
    await openGame(page, 1);
    await page.keyboard.press('ArrowRight');
    await page.keyboard.press('ArrowRight');
    await at(page, 2);
    await page.keyboard.press('ArrowLeft');
    assert.equal(await fen(page), 'rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR');
    await page.locator('.frame').hover();
    await page.mouse.wheel(0, 120);
    await at(page, 2);
    await page.locator('.moves [data-n="7"]').click();
    await at(page, 7);
    const curve = page.locator('.curve svg');
    const box = await curve.boundingBox();
    await curve.click({ position: { x: (box?.width ?? 0) * 20 / 33, y: 20 } });
    await at(page, 20);
    await page.keyboard.press('End');
    await at(page, 33);
    await page.keyboard.press('p');
    assert.match(await page.locator('.panel').innerText(), /\?[?!]? (inaccuracy|mistake|blunder)[^]*Better/);
    await page.keyboard.press('f');
    assert.equal(await page.locator('.frame g-chess-board').getAttribute('orientation'), 'black');
    await page.keyboard.press('b');
    await page.getByRole('button', { name: 'Back to the game' }).waitFor();
    await page.keyboard.press('Escape');
    assert.match(await page.locator('.panel h2').innerText(), /\?/);
  });
});

test('clocks, opening and event come from the game', async () => {
  const [game] = analysis.games;
  assert.ok(game);
  const pgn = game.pgn.replace('1. e4!', '1. e4! {[%clk 0:09:58]}').replace('e5 2.', 'e5 {[%clk 1:00:02.5]} 2.');
  const timed = { ...game, pgn, tags: { ...game.tags, ECO: 'C41', Opening: 'Philidor', WhiteElo: '2600' } };
  await on(pageWith('timed.html', { ...analysis, games: [timed] }), async (page) => {
    assert.match(await page.locator('.head').innerText(), /Marks, comments[^]*Paris[^]*C41 Philidor/);
    await page.keyboard.press('ArrowRight');
    await page.keyboard.press('ArrowRight');
    assert.deepEqual(await page.locator('.clock').allInnerTexts(), ['1:00:02.5', '9:58']);
    assert.match(await page.locator('.player').last().innerText(), /2600/);
  });
});

test('a move that is tried is answered, however it is made', async () => {
  await on(analysed, async (page) => {
    const answer = page.locator('.engine', { hasText: /depth \d · [\d,]+ nodes in/ });
    await openGame(page, 1);
    const square = (name: string) => page.locator(`.frame g-chess-board [data-square="${name}"]`);
    const answered = async (move: string) => {
      await page.locator('.own').getByText(move).waitFor();
      await answer.waitFor();
    };
    await square('g1').click();
    await square('f3').click();
    await answered('Nf3');
    assert.equal(await fen(page), 'rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R');
    await square('d7').dragTo(square('d5'));
    await answered('d5');
    assert.match(await page.locator('.own').innerText(), /1\.\sNf3\s+d5/);
    await page.getByLabel('Try a move').fill('g3');
    await page.keyboard.press('Enter');
    await answered('g3');
    await page.getByLabel('Try a move').fill('Kxe9');
    await page.keyboard.press('Enter');
    assert.equal(await page.getByLabel('Try a move').getAttribute('aria-invalid'), 'true');
    await page.getByRole('button', { name: 'Turn the board' }).focus();
    await page.keyboard.press('ArrowLeft');
    await answer.waitFor();
    await page.locator('.engine .line button').nth(1).click();
    await answer.waitFor();
    assert.match(await page.locator('.own').innerText(), /1\.\sNf3\s+d5\s+2\.\s\S+\s+\S+/);
    await page.keyboard.press('Escape');
    assert.equal(await fen(page), 'rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR');
  });
});

test('moves are made on the board with the keyboard alone', async () => {
  await on(analysed, async (page) => {
    await openGame(page, 1);
    await page.locator('.frame g-chess-board [data-square="a1"]').focus();
    for (const key of ['ArrowUp', 'Enter', 'ArrowUp', 'ArrowUp', 'Enter']) {
      await page.keyboard.press(key);
    }
    await page.getByText('1. a4').waitFor();
  });
});

test('all searches come out equal when they are repeated, and a false one is named', async () => {
  await on(analysed, async (page) => {
    await page.getByRole('button', { name: 'Repeat every search' }).click();
    await page.getByText(/^All \d+ searches came out equal/).waitFor();
    await page.locator('.repeated summary').first().click();
    assert.match(await page.locator('.repeated li').first().innerText(), /At the start, depth 3: equal/);
  });
  const games = structuredClone(analysis.games.slice(0, 1));
  const answer = games[0]?.answers['2']?.['3'];
  assert.ok(Array.isArray(answer));
  answer[2]++;
  await on(pageWith('false.html', { ...analysis, games }), async (page) => {
    await page.getByText('Repeat this game').click();
    await page.getByText('1 search comes out otherwise').waitFor();
    await page.locator('.repeated summary').click();
    assert.match(await page.locator('.repeated li', { hasText: 'different' }).innerText(), /After 1\.\.\. e5.*was.*is/);
  });
});

test('texts of games are never markup', async () => {
  const hostile = '"\'><img src=x onerror=alert(1)></script><script>alert(2)</script>\u2028<!--<b>';
  const games = analysis.games.slice(0, 1).map((game) => ({
    ...game, problem: '', pgn: `{${hostile}} 1. e4`, tags: Object.fromEntries(
      ['White', 'Black', 'Event', 'Site', 'Date', 'ECO', 'Opening', 'WhiteElo', 'TimeControl', '__proto__']
        .map((name) => [name, hostile])),
  }));
  await on(pageWith('hostile.html', { ...analysis, source: hostile, games }), async (page) => {
    assert.equal(await page.locator('main img, main script').count(), 0);
    assert.ok((await page.locator('h1').textContent())?.includes(hostile));
    await toList(page);
    assert.equal(await page.locator('h1').textContent(), hostile);
    assert.equal(analysisIn(await saved(page, 'Save this page')).source, hostile);
  });
});

test('an analysis that cannot be read is named', async () => {
  const opened = await open(browser, pageWith('other.html', { ...analysis, format: 2 as 1 }));
  await opened.page.getByText('cannot be read: its format is 2').waitFor();
  await opened.page.context().close();
});

test('a thousand games: few rows are drawn, sorted and filtered at once, and one board', async () => {
  const games = Array.from({ length: 1000 }, (_, i) => {
    const game = analysis.games[i % analysis.games.length];
    assert.ok(game);
    return { ...game, number: i + 1, tags: { ...game.tags, White: `Player ${i % 50}` } };
  });
  await on(pageWith('thousand.html', { ...analysis, games }), async (page) => {
    const rows = page.locator('.list tbody tr');
    assert.ok(await rows.count() < MOST_DRAWN);
    await page.getByRole('button', { name: 'Players' }).click();
    assert.match(await rows.first().innerText(), /Player 0/);
    await page.getByRole('button', { name: 'blunders' }).click();
    assert.equal(await page.locator('th.mark2').getAttribute('aria-sort'), 'descending');
    await page.getByLabel('Filter').fill('player 49');
    await page.getByText('20 of 1,000 games').waitFor();
    await rows.locator('a').first().click();
    await page.locator('.frame g-chess-board').waitFor();
    const first = page.url();
    await page.getByRole('link', { name: 'Next' }).click();
    await page.waitForURL((address) => address.href !== first);
    await page.goBack();
    await toList(page);
    await page.getByText('20 of 1,000 games').waitFor();
  });
});

test('the policy of the page names every script and style by its hash', () => {
  const policy = /Content-Security-Policy" content="([^"]*)"/.exec(readFileSync(PAGE, 'utf8'))?.[1] ?? '';
  assert.match(policy, /default-src 'none'; script-src 'sha256-[^ ]+' 'wasm-unsafe-eval'; style-src 'sha256-/);
  assert.doesNotMatch(policy, /'unsafe-|https?:|\*/);
});

test('without scripts the page says that it needs them', async () => {
  await on(PAGE, async (page) => {
    assert.match(await page.innerText('body'), /needs scripts/);
  }, { javaScriptEnabled: false });
});
