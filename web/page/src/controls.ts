// The buttons below the board, and the field for a move.
import { button, el } from './dom';
import { icon, type Icon } from './icon';

export interface Steps {
  first(): void;
  step(by: number): void;
  last(): void;
  flip(): void;
  /** Plays a move; false when it is not possible. */
  tryMove(written: string): boolean;
}

function field(steps: Steps): HTMLElement {
  const input = el('input', {
    type: 'text', name: 'move', autocomplete: 'off', autocapitalize: 'off', spellcheck: 'false', placeholder: 'Nf3',
  });
  const form = el('form', { class: 'try' }, el('label', {}, el('span', {}, 'Try a move '), input));
  form.addEventListener('submit', (event) => {
    event.preventDefault();
    const possible = steps.tryMove(input.value.trim());
    input.setAttribute('aria-invalid', String(!possible));
    input.value = possible ? '' : input.value;
  });
  return form;
}

export function controls(steps: Steps): HTMLElement {
  const control = (shape: Icon, label: string, key: string, act: () => void) => {
    const element = button('', act, { 'aria-label': label, title: `${label} (${key})` });
    element.append(icon(shape));
    return element;
  };
  return el('div', { class: 'controls' },
    control('first', 'First position', 'Home', () => steps.first()),
    control('back', 'Back', '←', () => steps.step(-1)),
    control('forward', 'Forward', '→', () => steps.step(1)),
    control('last', 'Last position', 'End', () => steps.last()),
    control('turn', 'Turn the board', 'f', () => steps.flip()), field(steps));
}
