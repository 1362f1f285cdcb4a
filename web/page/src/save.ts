// Files for the reader to keep.
import { el } from './dom';

const RELEASE_MS = 60000;

/** Has the browser save a text under a name. */
export function save(name: string, type: string, text: string): void {
  const address = URL.createObjectURL(new Blob([text], { type }));
  el('a', { href: address, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(address), RELEASE_MS);
}

/** "games.pgn" becomes "games-analysed.html". */
export function nameFor(source: string, ending: string): string {
  return `${source.replace(/\.[^.]*$/, '') || 'games'}-analysed.${ending}`;
}
