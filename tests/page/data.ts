// The files of tests/data.
import { readFileSync } from 'node:fs';
import { join, resolve } from 'node:path';

/** The tests run in the repository's folder. */
export const ROOT = resolve('.');

export function dataFile(name: string): string {
  return join(ROOT, 'tests', 'data', name);
}

/** The rows of a table, split at tabs; rows that lack empty fields at the end get them. */
export function table(name: string): string[][] {
  const lines = readFileSync(dataFile(name), 'utf8').split('\n').filter((line) => line !== '');
  const columns = lines.filter((line) => line.startsWith('#')).at(-1)?.split('\t').length ?? 0;
  return lines.filter((line) => !line.startsWith('#')).map((line) => {
    const fields = line.split('\t');
    return [...fields, ...Array<string>(columns - fields.length).fill('')];
  });
}
