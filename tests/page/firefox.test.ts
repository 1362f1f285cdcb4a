// The page in Firefox: the engine in its workers, the board, the repetition.
import assert from 'node:assert/strict';
import test from 'node:test';
import { PAGE, analyse, finished, open, openGame, startFirefox } from './browser';

test('games are analysed, shown and repeated', async () => {
  const browser = await startFirefox();
  const { page, faults } = await open(browser, PAGE);
  try {
    await analyse(page, 2);
    await finished(page);
    await page.getByRole('button', { name: 'Repeat every search' }).click();
    await page.getByText(/^All \d+ searches came out equal/).waitFor();
    await openGame(page, 1);
    await page.locator('.frame g-chess-board [data-square="g1"]').click();
    await page.locator('.frame g-chess-board [data-square="f3"]').click();
    await page.locator('.engine', { hasText: /depth \d · [\d,]+ nodes in/ }).waitFor();
    assert.deepEqual(faults, []);
  } finally {
    await browser.close();
  }
});
