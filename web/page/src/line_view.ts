// A line of moves to click on.
import { button, el } from './dom';
import type { Track } from './track';
import { isWhites, numbered } from './text';

/** Draws a line; `onMove` gets how many of its moves to play, `at` of which are played now. */
export function lineView(line: Track, at: number, onMove: (n: number) => void): HTMLElement {
  const element = el('span', { class: 'line' });
  for (const [i, step] of line.steps.entries()) {
    const label = i === 0 || isWhites(i + 1, line.start) ? `${numbered(i + 1, line.start)}\u00a0${step.san}` : step.san;
    const move = button(label, () => onMove(i + 1), i + 1 === at ? { 'aria-current': 'true' } : {});
    element.append(move, ' ');
  }
  return element;
}
