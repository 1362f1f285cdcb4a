// How far the analysis is, with stop and go on.
import type { Analyser } from './analyser';
import { button, el } from './dom';
import { duration, plural } from './text';

const REDRAW_MS = 200;

export class ProgressView {
  readonly element: HTMLElement;
  private readonly bar = el('progress', { max: '1', value: '0', 'aria-label': 'Analysis' });
  private readonly status = el('p', { class: 'status' });
  private readonly toggle: HTMLButtonElement;
  private abort: AbortController | null = null;
  private nextDraw = 0;

  constructor(private readonly analyser: Analyser, private readonly onEnd: () => void) {
    this.toggle = button('Stop', () => this.abort ? this.abort.abort() : void this.run());
    this.element = el('section', { class: 'progress', 'aria-label': 'Progress' }, this.bar, this.status, this.toggle);
    this.pause();
  }

  get running(): boolean {
    return this.abort !== null;
  }

  /** Runs the analysis until it is complete or stopped. */
  async run(): Promise<void> {
    this.abort = new AbortController();
    this.toggle.textContent = 'Stop';
    this.draw(false);
    const complete = await this.analyser.run(this.abort.signal);
    this.abort = null;
    this.pause();
    if (complete) {
      this.element.remove();
      this.onEnd();
    }
  }

  stop(): void {
    this.abort?.abort();
  }

  /** Draws what changed, not more often than the eye needs. */
  update(): void {
    if (performance.now() > this.nextDraw) {
      this.nextDraw = performance.now() + REDRAW_MS;
      this.draw(false);
    }
  }

  private pause(): void {
    this.toggle.textContent = 'Go on';
    this.draw(true);
  }

  private draw(stopped: boolean): void {
    const { share, secondsLeft } = this.analyser.progress();
    const { gamesDone, gamesToDo, positions } = this.analyser;
    const left = stopped ? 'stopped' : secondsLeft === null ? '' : `about ${duration(secondsLeft)} left`;
    this.bar.value = share;
    this.status.textContent = [`${gamesDone} of ${plural(gamesToDo, 'game')}`,
      positions ? plural(positions, 'search', 'searches') : '', left].filter(Boolean).join(' · ');
  }
}
