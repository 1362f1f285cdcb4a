// node run_wasi.mjs PROGRAM.wasm [ARGUMENT ...]
// Runs a WASI program like a native one: its arguments, the standard streams, all files by their absolute paths and its
// exit code.
import { readFile } from 'node:fs/promises';
import process from 'node:process';
import { WASI } from 'node:wasi';

const [path, ...programArguments] = process.argv.slice(2);
const wasi = new WASI({
  version: 'preview1',
  args: [path, ...programArguments],
  preopens: { '/': '/' },
  returnOnExit: true,
});
const module = await WebAssembly.compile(await readFile(path));
const instance = await WebAssembly.instantiate(module, { wasi_snapshot_preview1: wasi.wasiImport });
process.exitCode = wasi.start(instance);
