// The players above and below the board, with their ratings and clocks.
import { tag, type Game, type Side } from './analysis';
import { clocks } from './clock';
import { el } from './dom';
import { isWhites, playerName, startOf } from './text';

export class Players {
  readonly top = el('div', { class: 'player' });
  readonly bottom = el('div', { class: 'player' });
  private readonly clocks: Map<number, string>;

  constructor(private readonly game: Game) {
    this.clocks = clocks(game);
  }

  /** Shows the clocks after n half-moves. */
  show(n: number, turned: boolean): void {
    this.fill(this.top, turned ? 'White' : 'Black', n);
    this.fill(this.bottom, turned ? 'Black' : 'White', n);
  }

  private fill(element: HTMLElement, side: Side, n: number): void {
    element.replaceChildren(el('span', { class: side }), playerName(this.game, side),
      el('span', { class: 'soft' }, tag(this.game, `${side}Elo`)), el('span', { class: 'clock' }, this.clock(side, n)));
  }

  // What the clock of a side showed last.
  private clock(side: Side, n: number): string {
    const start = startOf(this.game.fen);
    for (let ply = n; ply > 0; ply--) {
      const time = this.clocks.get(ply);
      if (time !== undefined && isWhites(ply, start) === (side === 'White')) {
        return time;
      }
    }
    return '';
  }
}
