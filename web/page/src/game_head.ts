// What stands above a game: who played, where, the opening, and what each side lost.
import type { Game, Side } from './analysis';
import { el } from './dom';
import type { Verdict } from './judge';
import { MARKS } from './marks';
import { lossText, occasion, opening, plural, playerName, resultText, timeControl } from './text';

export function gameHead(game: Game): HTMLElement {
  const facts = [occasion(game), opening(game), timeControl(game)].filter(Boolean);
  return el('div', { class: 'head' },
    el('h1', {}, `${playerName(game, 'White')} – ${playerName(game, 'Black')} `,
      el('span', { class: 'soft' }, resultText(game.result))),
    el('p', { class: 'soft' }, facts.join(' · ')));
}

export function percent(accuracy: number | null): string {
  return accuracy === null ? '–' : `${(accuracy / 10).toFixed(1)}`;
}

function sideLine(verdict: Verdict, side: Side): HTMLElement[] {
  const { accuracy, loss, counts } = verdict.sides[side];
  if (accuracy === null || loss === null) {
    return [];
  }
  const line = el('span', {}, el('span', { class: side, role: 'img', 'aria-label': side }),
    el('strong', {}, `${percent(accuracy)} %`), ` accuracy, average loss ${lossText(loss)}`);
  for (const [kind, count] of counts.entries()) {
    const mark = MARKS[kind];
    if (mark && count) {
      line.append(', ', el('span', { class: `m${kind}` }, plural(count, mark.name, mark.names)));
    }
  }
  return [line];
}

export function sides(verdict: Verdict): HTMLElement {
  const missing = verdict.missing.length
    ? [`${plural(verdict.missing.length, 'position has', 'positions have')} no evaluation`] : [];
  return el('div', { class: 'sides' }, ...sideLine(verdict, 'White'), ...sideLine(verdict, 'Black'),
    ...missing.map((text) => el('span', { class: 'soft' }, text)));
}
