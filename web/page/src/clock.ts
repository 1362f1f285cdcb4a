// Clock times from the comments of a game.
import type { Game } from './analysis';
import { tokens } from './pgn_text';

/** What the mover's clock showed after each half-move, from 1; moves without a time are left out. */
export function clocks(game: Game): Map<number, string> {
  const found = new Map<number, string>();
  let n = 0;
  let depth = 0;
  for (const { kind, text } of tokens(game.pgn)) {
    depth += Number(kind === 'open') - Number(kind === 'close');
    if (depth === 0) {
      n += Number(kind === 'move');
      const time = kind === 'comment' ? /\[%clk\s+(?:0+:)?0?(\d[\d:.]*)/.exec(text) : null;
      if (time) {
        found.set(n, time[1] ?? '');
      }
    }
  }
  return found;
}
