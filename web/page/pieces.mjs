// The pieces, on squares of 45 units. What has the class "in" is drawn inside a piece, in the other colour.

const SHAPES = {
  p: '<path d="M22.5 9a5.4 5.4 0 0 1 3.5 9.5c3.2 1.7 4.7 5 4.9 9 .2 2.7 1.3 4.3 3.6 5.5v4.5h-24v-4.5c2.3-1.2 3.4-2.8 3.6-5.5.2-4 1.7-7.3 4.9-9a5.4 5.4 0 0 1 3.5-9.5z"/>',
  r: '<path d="M12 8.5h4.5v3h3.75v-3h4.5v3h3.75v-3h4.5v7l-3.5 3 1.3 12.5 3.2 2.5v4h-23v-4l3.2-2.5 1.3-12.5-3.5-3z"/><path class="in" d="M15.5 18.5h14M14.2 31h16.6"/>',
  n: '<path d="M34 37.5c.9-14-1.4-24.4-11.4-27.4l-1.2-3.6-2.6 3.4c-2.2.8-3.6 2.4-4.6 4.6-1.4 3.2-3.9 6-5.6 8.9-.8 1.4-.2 3.2 1.2 4.2 1.5 1.1 3 .7 4.2-.5l1.6-1.4c2 .2 3.9-.5 5.6-2.1.4 4.6-6.8 7.4-7.4 13.9z"/><circle class="in dot" cx="17.6" cy="16.3" r=".9"/>',
  b: '<circle cx="22.5" cy="8.3" r="2.3"/><path d="M22.5 10.6c5 3.5 7.5 7.4 7.5 11.4 0 3-1.5 5-3.5 6.5l1 4.5c4 .3 6.5 1.2 6.5 3v1.5h-23v-1.5c0-1.8 2.5-2.7 6.5-3l1-4.5c-2-1.5-3.5-3.5-3.5-6.5 0-4 2.5-7.9 7.5-11.4z"/><path class="in" d="M22.5 16.5v6.5M19.5 19.5h6M18.5 28.5h8M17.5 33h10"/>',
  q: '<path d="M8.5 14.5l4.5 14c-1 2.5-1 3.5-1 5v4h21v-4c0-1.5 0-2.5-1-5l4.5-14-7 8-1.5-11.5-5.5 10.5-5.5-10.5-1.5 11.5z"/><circle cx="8.5" cy="12.5" r="2"/><circle cx="17" cy="9.5" r="2"/><circle cx="28" cy="9.5" r="2"/><circle cx="36.5" cy="12.5" r="2"/><path class="in" d="M13 28.5q9.5-2.5 19 0M12 33.5q10.5-2 21 0"/>',
  k: '<path d="M22.5 5.5v7.5M19.5 8.5h6"/><path d="M22.5 13c3 0 4.3 2.5 3.3 5.5 4-3.5 11.2-2.5 11.2 3 0 4-4 5.5-5 8.5v7.5h-19v-7.5c-1-3-5-4.5-5-8.5 0-5.5 7.2-6.5 11.2-3-1-3 .3-5.5 3.3-5.5z"/><path class="in" d="M13 30q9.5-2.5 19 0M13 34q9.5-2 19 0"/>',
};

const COLOURS = {
  w: { fill: '#fff', stroke: '#24262a', inside: '#24262a' },
  b: { fill: '#2d3035', stroke: '#17181a', inside: '#d9dade' },
};

function picture(shape, { fill, stroke, inside }) {
  const drawing = shape
    .replace(/class="in dot"/g, `fill="${inside}" stroke="${inside}"`)
    .replace(/class="in"/g, `fill="none" stroke="${inside}"`);
  return `<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 45 45"><g fill="${fill}" stroke="${stroke}" `
    + `stroke-width="1.5" stroke-linejoin="round" stroke-linecap="round">${drawing}</g></svg>`;
}

/** Style rules that give the board its pieces. */
export function pieceRules() {
  return Object.entries(COLOURS).flatMap(([side, colours]) => Object.entries(SHAPES).map(([kind, shape]) =>
    `g-chess-board::part(piece-${side}${kind}){background-image:`
    + `url("data:image/svg+xml,${encodeURIComponent(picture(shape, colours))}")}`)).join('\n');
}
