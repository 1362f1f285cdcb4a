// Positions as text.
#pragma once

namespace zorvane {

inline constexpr char StartFen[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

// Takes over the position of a FEN text: position, side to move, ply of the game, and a new game history. Placement,
// side, castling and en passant are required, the two counters are not. False, with nothing changed, when the text is
// no position. Accepts more than chess allows, as long as each side has one king: pawns on the last ranks, any number
// of pieces, a side to move that could take the king, an en-passant square out of nowhere.
bool LoadFen(const char *text);

} // namespace zorvane
