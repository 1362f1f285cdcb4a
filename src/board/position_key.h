// What makes two positions the same, and the positions of the game so far.
#pragma once

#include "board/array.h"
#include "board/position.h"

namespace zorvane {

// The whole identity of a position, exact. Two positions are the same when all five words are equal.
struct PositionKey {
  Array<Bitboard, 4> Squares; // three bits of type and one of colour for each square
  std::uint32_t Rest;         // side to move, moved flags, en-passant square

  bool operator==(const PositionKey &other) const {
    return ((Squares[0] ^ other.Squares[0]) | (Squares[1] ^ other.Squares[1]) | (Squares[2] ^ other.Squares[2]) |
            (Squares[3] ^ other.Squares[3]) | (Rest ^ other.Rest)) == 0;
  }
};

// The key of a state, with kNoSquare where its en-passant square shall not make a difference.
inline PositionKey MakePositionKey(const BoardState &state, Side side, int enPassantSquare) {
  const auto of = [&state](PieceType type) { return state.ByType[type - 1]; };
  return {{of(kPawn) | of(kKnight) | of(kQueen), of(kRook) | of(kKnight) | of(kKing),
           of(kBishop) | of(kQueen) | of(kKing), state.BySide[kBlack]},
          static_cast<std::uint32_t>(side) | static_cast<std::uint32_t>(state.MovedFlags) << 1 |
              static_cast<std::uint32_t>(enPassantSquare) << 8};
}

// The key of the current position with side to move. The en-passant square counts only when a pawn of that side
// can really capture there, so a double step that nothing can take leaves no trace.
PositionKey BuildPositionKey(Side side);

constexpr int kGameHistoryLimit = 1001; // the initial position and a thousand moves

// How many positions of the game are known, 1 to kGameHistoryLimit from the first LoadFen on.
extern int GameHistoryCount;

// Makes the current position the only one of the game. The last step of every LoadFen.
void StartGameHistory();

// Adds the current position. A full history takes no more: repetitions of later positions go unseen.
void PushGameHistory();

// A position recurs after four half-moves at the soonest, and only while nothing is captured and no pawn moves.
constexpr int kShortestCycle = 4;

// How often the current position, with side to move, occurred before: in the game, and on the search line at plies 1 to
// ply - 1, which UndoStack holds.
int CountEqualPositions(Side side, int ply);

// The same, but it may answer 0 where the halfmove clock rules out atLeast occurrences.
inline int CountRepetitions(Side side, int ply, int atLeast) {
  return Position.HalfmoveClock < atLeast * kShortestCycle ? 0 : CountEqualPositions(side, ply);
}

} // namespace zorvane
