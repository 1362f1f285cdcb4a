// The evaluation of the position as a bar beside the board.
import { height } from './curve';
import { el } from './dom';
import { scoreText } from './text';

export class EvalBar {
  private readonly white = el('div');
  readonly element = el('div', { class: 'bar', role: 'img' }, this.white);

  /** Shows centipawns from White's view; `turned` puts Black at the bottom, as the board does. */
  show(score: number | undefined, turned: boolean): void {
    this.element.classList.toggle('unknown', score === undefined);
    this.element.classList.toggle('turned', turned);
    this.element.setAttribute('aria-label', score === undefined ? 'No evaluation' : `Evaluation ${scoreText(score)}`);
    this.white.style.height = `${score === undefined ? 50 : 100 - height(score)}%`;
  }
}
