// node bench/wasm.mjs ROUNDS
// Nodes per second of the program, of zorvane.wasm in node and of zorvane.wasm in Chromium, which take turns within a
// round. Each time is from asking to having the answer: of a process, or of a search of the npm package.
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';

const { chromium } = createRequire(new URL('../web/package.json', import.meta.url))('playwright-core');
const read = (path, encoding) => readFileSync(new URL(`../${path}`, import.meta.url), encoding);
const program = new URL('../build/release/zorvane', import.meta.url).pathname;

const DEEPEST = { what: '`--bench 8`, initial position', questions: [{ depth: 8 }] };
const SUITE = {
  what: 'search suite, 30 positions',
  questions: read('tests/data/suite.bench.tsv', 'utf8').trim().split('\n')
    .map((row) => row.split('\t')).map(([depth, fen]) => ({ depth: Number(depth), fen })),
};

const wasm = read('build/wasm/zorvane.wasm');
const { Zorvane } = await import('../web/engine/dist/node.js');
const inNode = await Zorvane.load(wasm);

function searchNatively({ depth, fen }) {
  const output = execFileSync(program, ['--bench', String(depth), ...(fen ? [fen] : [])], { encoding: 'utf8' });
  return Number(/ nodes (\d+)/.exec(output)[1]);
}

async function rate(questions, search) {
  let nodes = 0;
  const start = performance.now();
  for (const question of questions) nodes += await search(question);
  return { nodes, perSecond: (1000 * nodes) / (performance.now() - start) };
}

const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox', '--disable-gpu'] });
const page = await browser.newPage();
await page.evaluate(async ([code, bytes]) => {
  const module = await import(URL.createObjectURL(new Blob([code], { type: 'text/javascript' })));
  globalThis.engine = await module.Zorvane.load(Uint8Array.from(atob(bytes), (c) => c.charCodeAt(0)));
}, [read('web/engine/dist/browser.js', 'utf8'), wasm.toString('base64')]);

const platforms = {
  native: searchNatively,
  // Of a position without a legal move there is no search.
  node: async (question) => (await inNode.search(question)).nodes ?? 0,
  Chromium: (question) => page.evaluate(async (asked) => (await globalThis.engine.search(asked)).nodes ?? 0, question),
};
const median = (values) => values.sort((a, b) => a - b)[Math.floor(values.length / 2)];
const million = (value) => `${(value / 1e6).toPrecision(3)} million/s`;

console.log('| what | native | node | ratio | Chromium | ratio | Chromium to node |');
console.log('| --- | ---: | ---: | ---: | ---: | ---: | ---: |');
for (const { what, questions } of [DEEPEST, SUITE]) {
  const rounds = [];
  for (let round = 0; round < Number(process.argv[2]); ++round) {
    const taken = {};
    for (const [name, search] of Object.entries(platforms)) {
      const { nodes, perSecond } = await rate(questions, search);
      taken[name] = perSecond;
      taken.nodes ??= nodes;
      if (nodes !== taken.nodes) throw new Error(`${name} searched ${nodes} nodes, not ${taken.nodes}`);
    }
    rounds.push(taken);
  }
  const value = (name) => million(median(rounds.map((taken) => taken[name])));
  const ratio = (one, other) => median(rounds.map((taken) => taken[one] / taken[other])).toFixed(2);
  console.log(`| ${what} | ${value('native')} | ${value('node')} | ${ratio('node', 'native')} | ${value('Chromium')} | ` +
    `${ratio('Chromium', 'native')} | ${ratio('Chromium', 'node')} |`);
}
await browser.close();
await inNode.close();
