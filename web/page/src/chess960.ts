// Positions of Chess960 that no tag names: their castling rights give them away.

/** Whether the king and the rook of a right stand elsewhere than chess has them, in a row of squares. */
function isElsewhere(row: string, king: string, rook: string, short: boolean): boolean {
  const at = row.indexOf(king);
  if (at < 0) {
    return false;
  }
  const side = short ? row.slice(at) : row.slice(0, at);
  return side.includes(rook) && (row[4] !== king || row[short ? 7 : 0] !== rook);
}

/** Whether castling rights name files, or a king or a rook that does not stand where chess has it. */
export function isChess960(fen: string): boolean {
  const [board = '', , rights = ''] = fen.split(/\s+/);
  const rows = board.replace(/\d/g, (digit) => '.'.repeat(Number(digit))).split('/');
  if (/[A-Ha-h]/.test(rights)) {
    return true;
  }
  const [top = '', bottom = ''] = [rows[0], rows[rows.length - 1]];
  return [...rights.replace(/[^KQkq]/g, '')].some((right) => right === right.toUpperCase()
    ? isElsewhere(bottom, 'K', 'R', right === 'K') : isElsewhere(top, 'k', 'r', right === 'k'));
}
