// node build.mjs
// Bundles the module into dist/: for browsers and for node, each with the text of its worker inside.
import { build } from 'esbuild';

const common = { bundle: true, minify: true, target: 'es2022', legalComments: 'none', logLevel: 'warning' };

for (const platform of ['browser', 'node']) {
  const worker = await build({
    ...common,
    platform,
    entryPoints: ['src/worker.ts'],
    format: platform === 'node' ? 'cjs' : 'iife',
    write: false,
  });
  await build({
    ...common,
    platform,
    entryPoints: ['src/index.ts'],
    format: 'esm',
    outfile: `dist/${platform}.js`,
    define: { WORKER_SOURCE: JSON.stringify(worker.outputFiles[0].text) },
  });
}
