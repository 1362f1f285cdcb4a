// The keys of a game, wherever the focus is.
import type { GameView } from './game_view';

type Act = (view: GameView) => void

const KEYS: Record<string, Act> = {
  ArrowLeft: (view) => view.step(-1),
  ArrowRight: (view) => view.step(1),
  Home: (view) => view.first(),
  End: (view) => view.last(),
  n: (view) => view.toMark(1),
  p: (view) => view.toMark(-1),
  b: (view) => view.playBetter(),
  f: (view) => view.flip(),
  Escape: (view) => view.back(),
};

function isTyping(event: KeyboardEvent): boolean {
  const target = event.composedPath()[0];
  return target instanceof HTMLInputElement || target instanceof HTMLTextAreaElement
    || target instanceof HTMLSelectElement;
}

/** Takes the keys while `current` gives a game. Arrows on a square of the board are the board's own. */
export function takeKeys(current: () => GameView | null): void {
  addEventListener('keydown', (event) => {
    const view = current();
    const act = KEYS[event.key];
    const other = event.ctrlKey || event.metaKey || event.altKey || event.defaultPrevented;
    if (view && act && !other && !isTyping(event) && !document.querySelector('dialog[open]')) {
      event.preventDefault();
      act(view);
    }
  });
}
