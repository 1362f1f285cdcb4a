// Positions as text.
#pragma once

namespace zorvane {

inline constexpr char kStartFen[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

// Sets the game to the position of a FEN: placement, side to move, ply of the game, and a new game history. Placement,
// side, castling and en passant are required, the two counters are not. False, with nothing changed, if the text is not
// a position. Accepts more than chess allows as long as each side has one king: pawns on the last ranks, any number of
// pieces, a side to move that could capture the king, an en-passant square without a pawn that has just moved.
bool LoadFen(const char *text);

} // namespace zorvane
