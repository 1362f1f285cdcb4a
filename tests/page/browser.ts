// The built page in a real browser. Whatever a page asks for that is not itself or made by itself fails the test.
import assert from 'node:assert/strict';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { chromium, firefox, type Browser, type BrowserContextOptions, type Page } from 'playwright-core';
import { toJson, type Analysis } from '../../web/page/src/analysis';
import { ROOT, dataFile } from './data';

export const PAGE = join(ROOT, 'build', 'page', 'zorvane.html');
export const FOLDER = mkdtempSync(join(tmpdir(), 'zorvane-page-'));
process.on('exit', () => rmSync(FOLDER, { recursive: true, force: true }));
const HANG_MS = 120000;
const CHROMIUM = ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync'];

/** A page, and what went wrong on it. */
export interface Opened {
  page: Page;
  faults: string[];
}

export function startChromium(): Promise<Browser> {
  return chromium.launch({ executablePath: '/usr/bin/chromium', args: CHROMIUM });
}

/** Firefox as Debian has it, which speaks WebDriver BiDi. It does not start without a home of its own. */
export function startFirefox(): Promise<Browser> {
  return firefox.launch({
    executablePath: '/usr/bin/firefox-esr', channel: 'moz-firefox', env: { ...process.env, HOME: FOLDER },
  });
}

export async function open(browser: Browser, file = PAGE, options: BrowserContextOptions = {}): Promise<Opened> {
  const page = await browser.newPage({ viewport: { width: 1280, height: 900 }, reducedMotion: 'reduce', ...options });
  const faults: string[] = [];
  page.setDefaultTimeout(HANG_MS);
  page.on('pageerror', (error) => faults.push(String(error)));
  page.on('console', (message) => {
    if (['error', 'warning'].includes(message.type())) {
      faults.push(message.text());
    }
  });
  page.on('dialog', (dialog) => {
    faults.push(`dialog ${dialog.message()}`);
    void dialog.dismiss();
  });
  page.on('request', (request) => {
    if (!/^(?:file|blob|data):/.test(request.url())) {
      faults.push(`request ${request.url()}`);
    }
  });
  await page.goto(pathToFileURL(file).href);
  return { page, faults };
}

/** Drops a file on the page, as from a file manager. */
export async function drop(page: Page, name: string, content: Buffer): Promise<void> {
  const data = await page.evaluateHandle(([name, bytes]) => {
    const transfer = new DataTransfer();
    transfer.items.add(new File([Uint8Array.from(atob(bytes), (c) => c.charCodeAt(0))], name));
    return transfer;
  }, [name, content.toString('base64')] as const);
  await page.dispatchEvent('main', 'dragover', { dataTransfer: data });
  await page.dispatchEvent('main', 'drop', { dataTransfer: data });
}

/** Has the page analyse the games of tests/data to a depth. */
export async function analyse(page: Page, depth: number, file = 'games.pgn'): Promise<void> {
  await page.getByLabel('Depth').selectOption(String(depth));
  await drop(page, file, readFileSync(dataFile(file)));
}

/** Waits for the end of an analysis: the progress is beside the list, unless all was done before we looked. */
export async function finished(page: Page): Promise<void> {
  await page.locator('.list').waitFor();
  await page.locator('.progress').waitFor({ state: 'detached' });
}

/** Opens a game of the list. The page follows the address a moment after the click, and loses keys until then. */
export async function openGame(page: Page, number: number): Promise<void> {
  await page.locator(`.list a[href="#game-${number}"]`).click();
  await page.locator('.game').waitFor();
}

/** Goes from a game back to the list. */
export async function toList(page: Page): Promise<void> {
  await page.getByRole('link', { name: 'All games' }).click();
  await page.locator('.list').waitFor();
}

/** The file that a click on a button saves. */
export async function saved(page: Page, button: string): Promise<string> {
  const download = page.waitForEvent('download');
  await page.getByRole('button', { name: button }).click();
  const path = join(FOLDER, (await download).suggestedFilename());
  await (await download).saveAs(path);
  return path;
}

/** The page with an analysis inside, as a file. */
export function pageWith(name: string, analysis: Analysis): string {
  const slot = '<script type="application/json" id="analysis"></script>';
  const parts = readFileSync(PAGE, 'utf8').split(slot);
  assert.equal(parts.length, 2);
  const path = join(FOLDER, name);
  writeFileSync(path, parts.join(slot.replace('><', () => `>${toJson(analysis)}<`)));
  return path;
}

/** The analysis inside a saved page. */
export function analysisIn(path: string): Analysis {
  const text = /<script type="application\/json" id="analysis">([^]*?)<\/script>/.exec(readFileSync(path, 'utf8'));
  return JSON.parse(text?.[1] ?? '') as Analysis;
}
