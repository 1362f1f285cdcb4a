// The board: shows a position with arrows and takes moves by dragging, clicking or the keyboard.
import 'gchessboard';
import type { BoardArrow, GChessBoardElement, Side, Square } from 'gchessboard';
import { el } from './dom';
import { targets } from './track';

const ANIMATION_MS = 140;

export interface Shown {
  fen: string;
  /** The squares of the last move. */
  last: [string, string] | null;
  played: [string, string] | null;
  better: [string, string] | null;
}

function arrow(squares: [string, string] | null, brush: string): BoardArrow[] {
  return squares ? [{ from: squares[0] as Square, to: squares[1] as Square, brush }] : [];
}

/** A board that only shows. */
export function diagram(shown: Shown, orientation: Side): GChessBoardElement {
  const board = document.createElement('g-chess-board') as GChessBoardElement;
  board.animationDuration = 0;
  board.orientation = orientation;
  board.fen = shown.fen;
  board.arrows = [...arrow(shown.better, 'better'), ...arrow(shown.played, 'played')];
  return board;
}

export class BoardView {
  readonly element: GChessBoardElement;
  private targets = new Map<string, string[]>();

  constructor(onMove: (from: string, to: string) => void) {
    this.element = diagram({ fen: '8/8/8/8/8/8/8/8 w - - 0 1', last: null, played: null, better: null }, 'white');
    this.element.interactive = true;
    this.element.addEventListener('movestart', (event) => {
      event.detail.setTargets((this.targets.get(event.detail.from) ?? []) as Square[]);
    });
    // The position changes when the board has come to rest: castling moves a rook, a promotion changes the piece.
    this.element.addEventListener('movefinished', (event) => onMove(event.detail.from, event.detail.to));
  }

  get orientation(): Side {
    return this.element.orientation;
  }

  turnAround(): void {
    this.element.cancelMove();
    this.element.orientation = this.orientation === 'white' ? 'black' : 'white';
  }

  show(shown: Shown, animated: boolean): void {
    const still = !animated || matchMedia('(prefers-reduced-motion: reduce)').matches;
    this.targets = targets(shown.fen);
    this.element.cancelMove();
    this.element.animationDuration = still ? 0 : ANIMATION_MS;
    this.element.turn = shown.fen.split(' ')[1] === 'b' ? 'black' : 'white';
    this.element.fen = shown.fen;
    this.element.arrows = [...arrow(shown.better, 'better'), ...arrow(shown.played, 'played')];
    this.element.replaceChildren(...(shown.last ?? []).map((square) => el('div', { slot: square, class: 'last' })));
  }
}
