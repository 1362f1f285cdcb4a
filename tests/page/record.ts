// What the page says about games, as text.
import type { Page } from 'playwright-core';

const clean = (text: string) => text.replace(/\s+/g, ' ').trim();

async function listText(page: Page): Promise<string> {
  const rows = await page.locator('.list tbody tr').allInnerTexts();
  return rows.map(clean).join('\n');
}

// The marked moves as the panel shows them.
async function marksText(page: Page): Promise<string> {
  const lines: string[] = [];
  await page.keyboard.press('Home');
  for (let count = await page.locator('.moves .marked').count(); count > 0; count--) {
    await page.keyboard.press('n');
    lines.push(`  ${clean(await page.locator('.panel').innerText())}`);
  }
  return lines.join('\n');
}

async function gameText(page: Page): Promise<string> {
  const parts = ['.head', '.sides', '.moves'].map((part) => page.locator(part).innerText());
  return [...(await Promise.all(parts)).map(clean), await marksText(page)].filter(Boolean).join('\n');
}

/** All that the page says about its games. */
export async function pageText(page: Page): Promise<string> {
  const texts = [await listText(page)];
  const links = await page.locator('.list tbody a').all();
  for (const address of await Promise.all(links.map((link) => link.getAttribute('href')))) {
    await page.locator(`.list a[href="${address}"]`).click();
    texts.push(`${address}\n${await gameText(page)}`);
    await page.getByRole('link', { name: 'All games' }).click();
  }
  return `${texts.join('\n\n')}\n`;
}
