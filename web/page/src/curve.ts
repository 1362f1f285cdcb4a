// The evaluation by move as a curve of White's winning chances; a click goes to the move.
import { el, svg } from './dom';
import { chances, type Verdict } from './judge';
import { MARKS } from './marks';
import { isWhites, moveNumber, numbered, scoreText, type Start } from './text';

const MOST_TICKS = 16;
const TICK_STEPS = [5, 10, 20, 50, 100, 500];

/** 0 where White has won, 100 where Black has. */
export function height(score: number): number {
  return 50 - chances(score) / 200;
}

/** The known scores as runs without gaps. */
function runs(scores: Map<number, number>): [number, number][][] {
  const found: [number, number][][] = [];
  for (const point of [...scores].sort((a, b) => a[0] - b[0])) {
    const last = found[found.length - 1];
    if (last && last[last.length - 1]?.[0] === point[0] - 1) {
      last.push(point);
    } else {
      found.push([point]);
    }
  }
  return found;
}

function area(run: [number, number][]): SVGElement[] {
  const first = run[0]?.[0] ?? 0;
  const last = run[run.length - 1]?.[0] ?? 0;
  const path = 'M' + run.map(([n, score]) => `${n} ${height(score).toFixed(1)}`).join('L');
  return [
    svg('rect', { class: 'black', x: first, y: 0, width: last - first, height: 100 }),
    svg('path', { class: 'white', d: `${path}V100H${first}z` }),
    svg('path', { class: 'line', d: path }),
  ];
}

function dot(n: number, verdict: Verdict, sans: readonly string[], start: Start): SVGElement {
  const mark = verdict.marks.get(n) ?? 0;
  const score = verdict.scores.get(n) ?? 0;
  const title = `${numbered(n, start)} ${sans[n - 1] ?? ''}${MARKS[mark]?.sign ?? ''} ${scoreText(score)}`;
  return svg('path', { class: `dot m${mark}`, d: `M${n} ${height(score).toFixed(1)}h0` }, svg('title', {}, title));
}

function ticks(length: number, start: Start): HTMLElement {
  const last = moveNumber(length, start);
  const step = TICK_STEPS.find((size) => (last - start.number) / size <= MOST_TICKS) ?? last;
  const element = el('div', { class: 'ticks', 'aria-hidden': 'true' });
  for (let n = 1; n <= length; n++) {
    const number = moveNumber(n, start);
    if (number % step === 0 && isWhites(n, start)) {
      const tick = el('span', {}, String(number));
      tick.style.left = `${n * 100 / length}%`;
      element.append(tick);
    }
  }
  return element;
}

export class Curve {
  readonly element: HTMLElement;
  private readonly here: SVGElement;

  constructor(verdict: Verdict, sans: readonly string[], start: Start, onMove: (n: number) => void) {
    const length = Math.max(1, sans.length);
    this.here = svg('path', { class: 'here', d: 'M0 0V100' });
    const drawing = svg('svg',
      { viewBox: `0 0 ${length} 100`, preserveAspectRatio: 'none', role: 'img', 'aria-label': this.label(verdict) },
      ...runs(verdict.scores).flatMap(area),
      svg('path', { class: 'zero', d: `M0 50H${length}` }),
      svg('rect', { class: 'edge', width: length, height: 100 }),
      this.here,
      ...[...verdict.marks.keys()].map((n) => dot(n, verdict, sans, start)));
    drawing.addEventListener('click', (event) => {
      const box = drawing.getBoundingClientRect();
      onMove(Math.round((event.clientX - box.left) / box.width * length));
    });
    this.element = el('figure', { class: 'curve' }, drawing, ticks(sans.length, start));
  }

  show(n: number): void {
    this.here.setAttribute('d', `M${n} 0V100`);
  }

  private label(verdict: Verdict): string {
    const marks = MARKS.map((mark, kind) =>
      [...verdict.marks.values()].filter((value) => value === kind).length + ' ' + mark.names);
    return `White’s winning chances by move, up is better for White; ${marks.join(', ')}`;
  }
}
