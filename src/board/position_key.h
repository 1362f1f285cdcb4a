// What makes two positions the same, and the positions of the game so far.
//
// Keys are exact. A hash such as Zobrist's would be smaller, but two positions with the same hash would change the
// tree, and comparing five words costs little.
#pragma once

#include "base/array.h"
#include "board/position.h"

namespace zorvane {

// The whole identity of a position. Two positions are the same if all five words are equal.
struct PositionKey {
  Array<Bitboard, 4> Squares; // three bits of type and one of colour for each square
  std::uint32_t Rest;         // side to move, moved flags, en-passant square

  bool operator==(const PositionKey &other) const {
    return ((Squares[0] ^ other.Squares[0]) | (Squares[1] ^ other.Squares[1]) | (Squares[2] ^ other.Squares[2]) |
            (Squares[3] ^ other.Squares[3]) | (Rest ^ other.Rest)) == 0;
  }
};

// The key of a state; en passant is kNoSquare if its square should not make a difference.
inline PositionKey MakePositionKey(const BoardState &state, Side side, int enPassantSquare) {
  const auto of = [&state](PieceType type) { return state.ByType[type - 1]; };
  return {{of(kPawn) | of(kKnight) | of(kQueen), of(kRook) | of(kKnight) | of(kKing),
           of(kBishop) | of(kQueen) | of(kKing), state.BySide[kBlack]},
          static_cast<std::uint32_t>(side) | static_cast<std::uint32_t>(state.MovedFlags) << 1 |
              static_cast<std::uint32_t>(enPassantSquare) << 8};
}

// The key of the current position with side to move. The en-passant square counts only if a pawn of that side can
// really capture there, so a double step that nothing can capture leaves no trace.
PositionKey BuildPositionKey(Side side);

constexpr int kGameHistoryLimit = 1001; // the first position and a thousand moves

// The number of known positions of the game: 1 to kGameHistoryLimit, after the first LoadFen.
int GameHistoryCount();

// Forgets the game and begins a new one with the current position. The last step of every LoadFen.
void StartGameHistory();

// Adds the current position. A full history takes no more, so repetitions of later positions are not noticed.
void PushGameHistory();

// A position recurs after at least four half-moves, and only if nothing is captured and no pawn moves.
constexpr int kShortestCycle = 4;

// How often the current position, with side to move, has occurred before: in the game, and at plies 1 to ply - 1 of the
// search line, from UndoStack.
int CountEqualPositions(Side side, int ply);

// The same, but may return 0 if the halfmove clock rules out that many occurrences.
inline int CountRepetitions(Side side, int ply, int atLeast) {
  return Board.HalfmoveClock < atLeast * kShortestCycle ? 0 : CountEqualPositions(side, ply);
}

} // namespace zorvane
