// The turning points of a game as diagrams, which only the printed page shows.
import type { Game } from './analysis';
import { diagram } from './board_view';
import { el } from './dom';
import type { Verdict } from './judge';
import { MARKS } from './marks';
import { lineText, numbered, scoreText } from './text';
import { Track } from './track';

const MOST = 3;

/** The marked moves that lost most, in the order of the game. */
export function turningPoints(verdict: Verdict): number[] {
  return [...verdict.marks.keys()]
    .sort((a, b) => (verdict.losses.get(b) ?? 0) - (verdict.losses.get(a) ?? 0) || a - b)
    .slice(0, MOST).sort((a, b) => a - b);
}

function turn(n: number, verdict: Verdict, track: Track): HTMLElement {
  const played = track.steps[n - 1];
  const better = new Track(track.fen(n - 1), verdict.lines.get(n) ?? []);
  const best = better.steps[0];
  const mark = MARKS[verdict.marks.get(n) ?? 0];
  return el('figure', {},
    diagram({
      fen: track.fen(n - 1), last: null, played: played ? [played.from, played.to] : null,
      better: best ? [best.from, best.to] : null,
    }, 'white'),
    el('figcaption', {}, el('strong', {}, `${numbered(n, track.start)} ${played?.san ?? ''}`),
      el('span', { class: `m${verdict.marks.get(n) ?? 0}` }, mark?.sign ?? ''),
      ` ${scoreText(verdict.scores.get(n - 1) ?? 0)} → ${scoreText(verdict.scores.get(n) ?? 0)}`,
      el('br'), el('span', { class: 'good' }, 'Better '), lineText(better.sans, 1, better.start)));
}

export function diagrams(game: Game, verdict: Verdict, track: Track): HTMLElement {
  const shown = game.problem ? [] : turningPoints(verdict);
  return el('div', { class: 'diagrams', 'aria-hidden': 'true' }, ...shown.map((n) => turn(n, verdict, track)));
}
