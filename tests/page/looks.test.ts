// How the page looks: wide, narrow, light, dark, printed, and to those who do not see it.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import test, { after, before } from 'node:test';
import type { Browser, Page } from 'playwright-core';
import { PAGE, analyse, finished, open, openGame, saved, startChromium, toList } from './browser';

interface Violation {
  id: string;
  impact: string;
  nodes: { target: string[] }[];
}

const AXE = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

let browser: Browser;
let analysed: string;

before(async () => {
  browser = await startChromium();
  const { page } = await open(browser);
  await analyse(page, 2);
  await finished(page);
  analysed = await saved(page, 'Save this page');
});

after(() => browser.close());

async function brightness(page: Page): Promise<number> {
  const paper = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  return Math.max(...(paper.match(/\d+/g) ?? []).map(Number));
}

async function look(page: Page, dark: boolean): Promise<void> {
  assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), 'it scrolls sideways');
  assert.equal(await brightness(page) < 60, dark);
  const { violations } = await page.evaluate('axe.run()') as { violations: Violation[] };
  const serious = violations.filter(({ impact }) => ['serious', 'critical'].includes(impact));
  assert.deepEqual(serious.map(({ id, nodes }) => [id, nodes.map((node) => node.target.join(' '))]), []);
}

for (const width of [390, 1280]) {
  for (const colorScheme of ['light', 'dark'] as const) {
    test(`${width} pixels, ${colorScheme}`, async () => {
      const options = { viewport: { width, height: 844 }, colorScheme, bypassCSP: true };
      const { page } = await open(browser, PAGE, options);
      await page.addScriptTag({ content: AXE });
      await look(page, colorScheme === 'dark');
      await page.getByRole('button', { name: 'Help' }).click();
      await look(page, colorScheme === 'dark');
      await page.goto(`file://${analysed}`);
      await page.addScriptTag({ content: AXE });
      await look(page, colorScheme === 'dark');
      await openGame(page, 1);
      await page.keyboard.press('n');
      await look(page, colorScheme === 'dark');
      await page.context().close();
    });
  }
}

test('a printed game is one page with its curve, moves and three boards', async () => {
  const { page } = await open(browser, analysed);
  for (const game of [1, 6]) {
    await openGame(page, game);
    await page.emulateMedia({ media: 'print', colorScheme: 'dark' });
    const pdf = await page.pdf({ preferCSSPageSize: true });
    assert.equal(pdf.toString('latin1').match(/\/Type\s*\/Page\b/g)?.length, 1);
    const shown = (selector: string) => page.locator(selector).filter({ visible: true }).count();
    assert.deepEqual([await shown('.curve svg'), await shown('.table'), await shown('.panel')], [1, 0, 0]);
    assert.ok(await shown('.moves li') > 5);
    assert.ok(game === 1 || await shown('.diagrams g-chess-board') === 3);
    assert.ok(await brightness(page) > 240, 'it prints dark');
    await page.emulateMedia({ media: 'screen' });
    await toList(page);
  }
  await page.context().close();
});
