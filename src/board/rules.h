// The rules of chess on the one position: attacks, legality, making a move.
//
// The tests here are correct for any position that LoadFen accepts and for either colour, whoever is to move: the
// mover's colour is that of the piece on the from-square. The search generates its moves with legal_moves.h.
#pragma once

#include <cassert>

#include "base/array.h"
#include "board/position.h"

namespace zorvane {

// The squares that the piece on from attacks, occupied or not, regardless of pins and whose turn it is. A pawn attacks
// its two capture squares.
Bitboard PieceAttacks(int from);

// All pieces of either side that attack the square; sliders are blocked by the given occupied squares.
Bitboard AttackersTo(int square, Bitboard occupied);

// True if a piece of bySide attacks the square. A slider attacks the first occupied square of each ray, whatever its
// colour, and none beyond it.
bool IsSquareAttacked(int square, Side bySide);

// The square of the king of a side.
inline int FindKingSquare(Side side) { return Lsb(Pieces(side, kKing)); }

// True if the king of side is attacked.
bool IsInCheck(Side side);

// True if the move obeys the rules of its piece, castling and en passant included, whether or not the own king is safe
// afterwards. A king is never captured.
bool IsPseudoLegalMove(int from, int to);

// True if the king on from may castle to the square to.
bool CanCastle(int from, int to);

// True if the move is pseudo-legal and leaves the mover's king unattacked.
bool IsLegalMove(int from, int to);

// The same for a packed move that may come from another position: its from-square must also hold a piece of side.
inline bool IsLegalMoveFor(Side side, PackedMove move) {
  return Contains(Board.BySide[side], FromOf(move)) && IsLegalMove(FromOf(move), ToOf(move));
}

// True if the pseudo-legal move captures en passant.
inline bool IsEnPassantMove(int from, int to) {
  return to == Board.EnPassantSquare && TypeOf(PieceOn(from)) == kPawn && PieceOn(to) == kNoPiece &&
         Absolute(FileOf(to) - FileOf(from)) == 1;
}

// The pawns of a side that attack the en-passant square, if there is one; the capture may be illegal.
inline Bitboard EnPassantCandidates(Side side) {
  const int target = Board.EnPassantSquare;
  return target == kNoSquare ? 0 : kPawnAttacks[Opposite(side)][target] & Pieces(side, kPawn);
}

// True if the pseudo-legal move captures something, en passant included.
inline bool IsCaptureMove(int from, int to) {
  const Piece target = PieceOn(to);
  return target != kNoPiece ? SideOf(target) != SideOf(PieceOn(from)) : IsEnPassantMove(from, to);
}

// Where a set of pawns can be pushed, one step and two, regardless of checks and pins.
template <Side Us> inline Bitboard SinglePushes(Bitboard pawns) { return ShiftForward<Us>(pawns) & ~Occupied(); }
template <Side Us> inline Bitboard DoublePushes(Bitboard singlePushes) {
  constexpr Bitboard firstStep = Us == kWhite ? RowMask(5) : RowMask(2);
  return ShiftForward<Us>(singlePushes & firstStep) & ~Occupied();
}

// The moved flag that is set when a rook of side leaves the square or is captured there; 0 for squares other than its
// two corners.
constexpr std::uint8_t RookCornerFlag(Side side, int square) {
  const int corner = side == kWhite ? MakeSquare(0, 7) : MakeSquare(0, 0);
  if (square == corner)
    return side == kWhite ? kWhiteRookAMoved : kBlackRookAMoved;
  if (square == corner + 7)
    return side == kWhite ? kWhiteRookHMoved : kBlackRookHMoved;
  return 0;
}

// Plays a legal move without testing it. A pawn that reaches the last row becomes a queen. SideToMove, GamePly and the
// game history stay as they are.
void MakeMove(int from, int to);

// MakeMove for callers that know the mover's side at compile time.
template <Side Us> void MakeMove(int from, int to);

// True if the legal move gives check. Makes it and takes it back.
bool MoveGivesCheck(int from, int to);

// The moved flags that are set when a piece leaves a square or is captured there: a rook on its corner, a king
// anywhere.
using MovedFlagTable = Array<Array<std::uint8_t, kSquares>, kPieceLimit>;

constexpr MovedFlagTable MakeMovedFlagTable() {
  MovedFlagTable table{};
  for (int square = 0; square < kSquares; ++square) {
    for (const Side side : kSides) {
      table[MakePiece(side, kRook)][square] = RookCornerFlag(side, square);
      table[MakePiece(side, kKing)][square] = side == kWhite ? kWhiteKingMoved : kBlackKingMoved;
    }
  }
  return table;
}

inline constexpr MovedFlagTable kFlagsLostAt = MakeMovedFlagTable();

// The distance between the squares of a pawn's double step and of a castling king's move.
constexpr int kDoubleStep = 16;
constexpr int kCastlingStep = 2;

// What a double step, en passant, promotion or castling does beyond moving one piece.
template <Side Us> void FinishSpecialMove(PieceType type, int from, int to);

template <Side Us> inline void MakeMove(int from, int to) {
  BoardState &state = Board;
  const Piece piece = state.Squares[from];
  const Piece captured = state.Squares[to];
  const PieceType type = TypeOf(piece);
  assert(piece != kNoPiece && SideOf(piece) == Us);
  assert(captured == kNoPiece || (SideOf(captured) != Us && TypeOf(captured) != kKing));
  const SquareTerm &left = kSquareTerms[piece][from];
  const SquareTerm &entered = kSquareTerms[piece][to];
  const SquareTerm &taken = kSquareTerms[captured][to];
  const Bitboard change = Bit(from) | Bit(to);

  state.BySide[Us] ^= change;
  state.ByType[type - 1] ^= change;
  state.Squares[from] = kNoPiece;
  state.Squares[to] = piece;
  if (captured != kNoPiece) {
    state.BySide[Opposite(Us)] ^= Bit(to);
    state.ByType[TypeOf(captured) - 1] ^= Bit(to);
  }
  state.Sum.Hash = state.Sum.Hash + entered.Hash - left.Hash - taken.Hash;
  state.Sum.Scores = state.Sum.Scores + entered.Scores - left.Scores - taken.Scores;
  const auto reversible = static_cast<std::int32_t>((captured == kNoPiece) & (type != kPawn));
  state.HalfmoveClock = (state.HalfmoveClock + 1) * reversible;
  state.MovedFlags |= static_cast<std::uint8_t>(kFlagsLostAt[piece][from] | kFlagsLostAt[captured][to]);

  const bool onTarget = to == state.EnPassantSquare && captured == kNoPiece;
  state.EnPassantSquare = kNoSquare;
  const int span = Absolute(to - from);
  // No short-circuit operators, so that there is one branch, which is rarely taken.
  if (((type == kPawn) & ((span == kDoubleStep) | onTarget | Contains(kPromotionRows, to))) |
      ((type == kKing) & (span == kCastlingStep)))
    FinishSpecialMove<Us>(type, from, to);
}

} // namespace zorvane
