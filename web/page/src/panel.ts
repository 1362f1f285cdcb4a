// What is said about the move and the position on the board.
import { words, type Answer } from './analysis';
import { button, el } from './dom';
import type { Reply } from './engine';
import { lineView } from './line_view';
import { MARKS } from './marks';
import { scoreText } from './text';
import { Track } from './track';

/** A search of the position shown: running, or what it found. */
export type Live = { state: 'searching' } | { state: 'failed' } | { state: 'over' } | { state: 'found', reply: Reply }

export interface Said {
  /** "12... Nxe4", empty at the start. */
  move: string;
  /** Index of its mark, undefined for none. */
  mark: number | undefined;
  before: number | undefined;
  after: number | undefined;
  /** Winning chances that it lost, in ten-thousandths. */
  loss: number | undefined;
  /** The engine's line instead of the move. */
  better: Track | null;
  /** The line being played, if the board left the game, and how much of it is played. */
  line: Track | null;
  at: number;
  fen: string;
  /** What the analysis says of the position shown. */
  answer: Answer | null | undefined;
  live: Live | null;
}

export interface Actions {
  /** Plays the first n moves of the better line. */
  playBetter(n: number): void;
  /** Goes within the line being played. */
  goInLine(n: number): void;
  /** Plays the first n moves of the engine's line from the position shown. */
  playOn(line: Track, n: number): void;
  back(): void;
}

function moveHead(said: Said): HTMLElement {
  const mark = MARKS[said.mark ?? -1];
  const head = el('h2', {}, said.move || 'The game begins');
  if (mark) {
    head.append(el('span', { class: `m${said.mark ?? 0}` }, `${mark.sign} ${mark.name}`),
      el('span', { class: 'soft' }, `${Math.floor((said.loss ?? 0) / 100)}\u00a0% of the chances lost`));
  }
  if (said.after !== undefined) {
    const from = said.mark !== undefined && said.before !== undefined ? `${scoreText(said.before)} → ` : '';
    head.append(el('span', { class: 'score' }, from + scoreText(said.after)));
  }
  return head;
}

function betterLine(said: Said, actions: Actions): HTMLElement[] {
  if (said.mark === undefined || !said.better?.length) {
    return [];
  }
  return [el('p', {}, el('span', { class: 'good' }, 'Better '),
    lineView(said.better, 0, (n) => actions.playBetter(n)))];
}

function ownLine(said: Said, actions: Actions): HTMLElement[] {
  if (!said.line) {
    return [];
  }
  return [
    el('p', { class: 'own' }, el('span', { class: 'soft' }, 'Line '),
      lineView(said.line, said.at, (n) => actions.goInLine(n)),
      button('Back to the game', () => actions.back(), { class: 'quiet', 'aria-keyshortcuts': 'Escape' }))];
}

function facts(score: number, depth: number, nodes: number, ms: number | undefined): string {
  const time = ms === undefined ? '' : ` in ${ms < 1000 ? `${Math.round(ms)} ms` : `${(ms / 1000).toFixed(1)} s`}`;
  return `${scoreText(score)} · depth ${depth} · ${nodes.toLocaleString('en')} nodes${time}`;
}

function engineSays(said: Said, actions: Actions): HTMLElement {
  const name = el('span', { class: 'soft' }, 'Engine ');
  const found = said.live?.state === 'found' ? said.live.reply : null;
  if (said.live?.state === 'searching') {
    return el('p', { class: 'engine' }, name, 'searches…');
  }
  if (said.live?.state === 'failed') {
    return el('p', { class: 'engine' }, name, 'could not search this position.');
  }
  if (said.live?.state === 'over' || said.answer === 'over') {
    return el('p', { class: 'engine' }, 'No legal move: the game is over.');
  }
  const known = found ? [found.score, found.depth, found.nodes, found.line.join(' '), found.ms] as const : said.answer;
  if (!known) {
    return el('p', { class: 'engine' });
  }
  const [score, depth, nodes, moves] = known;
  const line = new Track(said.fen, words(moves));
  return el('p', { class: 'engine' }, name, lineView(line, 0, (n) => actions.playOn(line, n)),
    el('span', { class: 'facts' }, facts(score, depth, nodes, found ? known[4] : undefined)));
}

export function panel(said: Said, actions: Actions): HTMLElement[] {
  const above = said.line ? ownLine(said, actions) : [moveHead(said), ...betterLine(said, actions)];
  return [...above, engineSays(said, actions)];
}
