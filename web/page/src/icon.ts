// The signs on the buttons.
import { svg } from './dom';

const SHAPES = {
  first: 'M5 4v12M16 4l-8 6 8 6z',
  back: 'M14 4l-8 6 8 6z',
  forward: 'M6 4l8 6-8 6z',
  last: 'M15 4v12M4 4l8 6-8 6z',
  turn: 'M7 16V4M3.5 7.5L7 4l3.5 3.5M13 4v12M9.5 12.5L13 16l3.5-3.5',
};

export type Icon = keyof typeof SHAPES

export function icon(shape: Icon): SVGElement {
  const attributes = { class: shape === 'turn' ? 'icon open' : 'icon', viewBox: '0 0 20 20', 'aria-hidden': 'true' };
  return svg('svg', attributes, svg('path', { d: SHAPES[shape] }));
}
