// node build.mjs [OUTPUT]
// Bundles the page into one file: scripts, styles, the engine and the licences, under a policy that allows just these.
import { createHash } from 'node:crypto';
import { existsSync, mkdirSync, readFileSync, readdirSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { build, transform } from 'esbuild';
import { pieceRules } from './pieces.mjs';

const HERE = dirname(fileURLToPath(import.meta.url));
const LIMIT = 1024 * 1024;
const SLOT = '\n<script type="application/json" id="analysis"></script>\n';
const read = (name) => readFileSync(join(HERE, name), 'utf8');

// The board's own pieces are under a licence that asks for more than ours; the page brings its pieces along.
const BOARD_PIECES = /\.[bw][bknpqr]\{background-image:url\("[^"]*"\)\}/g;
const BOARD_STYLE = /`(:host\{[^`]*)`/g;

let boardStyle;

const boardWithoutPieces = {
  name: 'board without pieces',
  setup({ onLoad }) {
    onLoad({ filter: /gchessboard.*\.js$/ }, ({ path }) => {
      const contents = readFileSync(path, 'utf8').replace(BOARD_PIECES, '');
      const styles = [...contents.matchAll(BOARD_STYLE)];
      if (styles.length !== 1 || /data:|\\|\$\{/.test(styles[0][1])) {
        throw new Error('the board library has changed: its style is not where the policy needs it');
      }
      boardStyle = styles[0][1];
      return { contents, loader: 'js' };
    });
  },
};

function hash(text) {
  return `'sha256-${createHash('sha256').update(text).digest('base64')}'`;
}

function escaped(text) {
  return text.replace(/&/g, '&amp;').replace(/</g, '&lt;').replace(/>/g, '&gt;');
}

// Where npm put a package: here, or in the workspace's root.
function folderOf(name) {
  return [HERE, join(HERE, '..')].map((folder) => join(folder, 'node_modules', name)).find(existsSync);
}

// Each program inside the page with its licence: our own packages, and what the engine's build names.
function licences() {
  const engine = join(folderOf('zorvane'), 'dist/licences');
  const texts = [
    ['chess.js (the rules of chess)', join(folderOf('chess.js'), 'LICENSE')],
    ['gchessboard (the board)', join(folderOf('gchessboard'), 'LICENSE')],
    ...readdirSync(engine).sort().map((file) => [`${file.replace(/\.txt$/, '')} (in the engine)`, join(engine, file)]),
  ];
  return texts.map(([name, file]) => [name, readFileSync(file, 'utf8')].map(escaped)).map(([name, text]) =>
    `<details><summary>${name}</summary><pre>${text}</pre></details>`).join('\n');
}

// What the engine says of itself over UCI, and its signature.
function identity() {
  const program = readFileSync(join(folderOf('zorvane'), 'dist/zorvane.wasm'), 'latin1');
  const [, name, version] = /id name ([^\d\n\0]*) (\d[^\n\0]*)/.exec(program);
  const { signature } = JSON.parse(read('../../tools/zorvane_numbers.json'));
  return { name, version, signature: String(signature) };
}

async function script() {
  const { outputFiles } = await build({
    entryPoints: [join(HERE, 'src/main.ts')], bundle: true, minify: true, write: false, target: 'es2022',
    format: 'iife', charset: 'utf8', legalComments: 'none', loader: { '.wasm': 'binary' }, logLevel: 'warning',
    define: { ENGINE: JSON.stringify(identity()) }, plugins: [boardWithoutPieces],
  });
  return outputFiles[0].text;
}

async function style() {
  const { code } = await transform(`${read('src/page.css')}\n${pieceRules()}`, { loader: 'css', minify: true });
  return code;
}

function policy(code, css) {
  return ["default-src 'none'", `script-src ${hash(code)} 'wasm-unsafe-eval'`,
    `style-src ${hash(css)} ${hash(boardStyle)}`, 'worker-src blob:', 'img-src data:', "base-uri 'none'", "form-action 'none'"].join('; ');
}

const output = process.argv[2] ?? join(HERE, '../../build/page/zorvane.html');
const code = await script();
const css = await style();
const parts = {
  POLICY: policy(code, css), STYLE: css, SCRIPT: code, HELP: read('src/help.html'), LICENCES: licences(),
};
const page = read('src/page.html').replace(/%([A-Z]+)%/g, (_, name) => parts[name]);
if (page.split(SLOT).length !== 2) {
  throw new Error('the page has to hold the line for the analysis once');
}
if (Buffer.byteLength(page) > LIMIT) {
  throw new Error(`the page has ${Buffer.byteLength(page)} bytes, and ${LIMIT} is the limit`);
}
mkdirSync(dirname(output), { recursive: true });
writeFileSync(output, page);
console.log(`${output}: ${Math.ceil(Buffer.byteLength(page) / 1024)} KiB`);
