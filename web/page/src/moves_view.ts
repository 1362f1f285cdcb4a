// The moves of a game with their marks and evaluations, to click on.
import { el } from './dom';
import type { Verdict } from './judge';
import { MARKS } from './marks';
import { isWhites, moveNumber, scoreText, type Start } from './text';

export class MovesView {
  readonly element: HTMLElement;
  private readonly buttons: HTMLButtonElement[] = [];

  constructor(verdict: Verdict, sans: readonly string[], start: Start, onMove: (n: number) => void) {
    this.element = el('ol', { class: 'moves', 'aria-label': 'Moves', tabindex: '0' });
    let row: HTMLElement | undefined;
    for (const [i, san] of sans.entries()) {
      const white = isWhites(i + 1, start);
      if (white || !row) {
        row = el('li', {}, el('span', { class: 'number' }, `${moveNumber(i + 1, start)}.`));
        row.append(...white ? [] : [el('span', { class: 'gap' }, '…')]);
        this.element.append(row);
      }
      row.append(this.cell(i + 1, san, verdict));
    }
    this.element.addEventListener('click', (event) => {
      const n = (event.target as Element).closest<HTMLElement>('[data-n]')?.dataset['n'];
      if (n) {
        onMove(Number(n));
      }
    });
  }

  /** Marks the move that leads to the position shown, and brings it into sight; 0 is none. */
  show(n: number): void {
    this.element.querySelector('[aria-current]')?.removeAttribute('aria-current');
    const button = this.buttons[n - 1];
    button?.setAttribute('aria-current', 'true');
    const top = button?.offsetTop ?? 0;
    const { scrollTop, clientHeight } = this.element;
    if (top < scrollTop + 24 || top > scrollTop + clientHeight - 56) {
      this.element.scrollTop = top - clientHeight / 2;
    }
  }

  private cell(n: number, san: string, verdict: Verdict): HTMLElement {
    const button = el('button', { type: 'button', 'data-n': n, tabindex: '-1' }, san);
    const mark = MARKS[verdict.marks.get(n) ?? -1];
    const score = verdict.scores.get(n);
    if (mark) {
      button.classList.add('marked');
      button.append(el('b', { class: `m${MARKS.indexOf(mark)}` }, mark.sign));
    }
    if (score !== undefined && n !== verdict.over) {
      button.append(el('small', {}, scoreText(score)));
    }
    this.buttons.push(button);
    return button;
  }
}
