// Positions as text.
#pragma once

namespace zorvane {

inline constexpr char StartFen[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

// Takes over the position of a FEN text and starts a new game history with it. False, with nothing changed, when the
// text is no position. Accepts more than chess allows: pawns on the last ranks, any number of pieces, a side to move
// that could take the king.
bool LoadFen(const char *text);

} // namespace zorvane
