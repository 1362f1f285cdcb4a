// What stands above the list of games: whose analysis it is, what its marks are worth, and what can be done with it.
import type { Analysis } from './analysis';
import { button, el } from './dom';
import { plural } from './text';

const WORTH = 'A mark is a reason to look at a move, and no proof: the engine has about 1,770 points on stockfish’s '
  + 'UCI_Elo scale.';

export interface Actions {
  savePgn(): void;
  savePage(): void;
  repeat(): void;
  /** Takes other games. */
  leave(): void;
}

function about({ games, options, engine, written }: Analysis): string {
  const left = games.filter((game) => game.problem).length;
  const done = `${plural(games.length - left, 'game')} at depth ${options.depth}, by ${engine.name} ${engine.version} `
    + `(signature ${engine.signature}), ${written}.`;
  return left ? `${done} ${plural(left, 'game is', 'games are')} not analysed.` : done;
}

export function header(analysis: Analysis, actions: Actions): HTMLElement {
  return el('header', {}, el('h1', {}, analysis.source),
    el('p', { class: 'soft' }, about(analysis)), el('p', { class: 'soft' }, WORTH),
    el('div', { class: 'tools' },
      button('Save as PGN', actions.savePgn), button('Save this page', actions.savePage),
      button('Repeat every search', actions.repeat), button('Other games', actions.leave)));
}
