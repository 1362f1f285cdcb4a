// The rules against their plain counterpart, every field that MakeMove keeps, and FEN.
#include <cstddef>
#include <cstring>
#include <numeric>

#include "board/perft.h"
#include "board/position_key.h"
#include "board/rules.h"
#include "plain/plain_predicates.h"
#include "quiescence/check_targets.h"
#include "quiescence/predicates.h"
#include "random_positions.h"
#include "search/root_search.h"

using namespace zorvane;

namespace {

class RulesTest : public EngineTest {};

std::vector<PackedMove> PlainLegalMoves(Side side) {
  std::vector<PackedMove> moves;
  for (const plain::Move m : plain::LegalMoves(PlainSide(side)))
    moves.push_back(EngineMove(m));
  return moves;
}

TEST_F(RulesTest, EveryPairOfSquares) {
  ForRandomPositions(400, [] {
    for (int from = 0; from < kSquares; ++from) {
      for (int to = 0; to < kSquares; ++to) {
        const plain::Move m = {PlainSquare(from), PlainSquare(to)};
        ASSERT_EQ(IsPseudoLegalMove(from, to), plain::IsPseudoLegalMove(m)) << from << ' ' << to;
        ASSERT_EQ(IsLegalMove(from, to), plain::IsLegalMove(m)) << from << ' ' << to;
        ASSERT_EQ(PieceAttacksSquare(from, to), plain::PieceAttacksSquare(m)) << from << ' ' << to;
        if (plain::IsLegalMove(m)) {
          ASSERT_EQ(IsCaptureMove(from, to), plain::IsCapture(m)) << from << ' ' << to;
        }
      }
    }
  });
}

TEST_F(RulesTest, SlidersOnAnyOccupancy) {
  ForRandomPositions(300, [] {
    const plain::BoardState state = plain::Position;
    for (int square = 0; square < kSquares; ++square) {
      for (const auto &[type, attacks] :
           {std::pair{kRook, RookAttacks(square, Occupied())}, std::pair{kBishop, BishopAttacks(square, Occupied())},
            std::pair{kQueen, QueenAttacks(square, Occupied())}}) {
        plain::Position = state;
        plain::At(PlainSquare(square)) = static_cast<int>(type);
        for (int to = 0; to < kSquares; ++to)
          ASSERT_EQ(Contains(attacks, to), plain::PieceAttacksSquare({PlainSquare(square), PlainSquare(to)}));
      }
    }
  });
}

// Which moves give check: by trying each, and at one look where the enemy king is not attacked yet.
template <Side Us> void CompareChecks() {
  const CheckTargets checks = FindCheckTargets<Us>();
  const plain::Square king = PlainSquare(FindKingSquare(Opposite(Us)));
  for (Bitboard own = Position.BySide[Us]; own != 0;) {
    const int from = PopSquare(own);
    EXPECT_EQ(Contains(checks.Discoverers, from), plain::MayDiscoverCheck(PlainSquare(from), king, PlainSide(Us)));
  }
  const bool attacked = IsInCheck(Opposite(Us));
  for (const PackedMove move : PlainLegalMoves(Us)) {
    const int from = FromOf(move);
    const int to = ToOf(move);
    const PieceType type = TypeOf(PieceOn(from));
    const bool expected = plain::MoveGivesCheck(PlainMove(move));
    EXPECT_EQ(MoveGivesCheck(3, from, to), expected) << from << ' ' << to;
    const bool compound = (type == kPawn && (Contains(kLastRows, to) || IsEnPassantMove(from, to))) ||
                          (type == kKing && Absolute(from - to) == 2);
    if (!attacked && !compound) {
      EXPECT_EQ(Contains(CheckingTargets(checks, from, type), to), expected) << from << ' ' << to;
    }
  }
}

TEST_F(RulesTest, LegalMovesAttacksAndChecks) {
  ForRandomPositions(3000, [] {
    for (const Side side : {Opposite(SideToMove), SideToMove}) {
      const std::vector<PackedMove> moves = PlainLegalMoves(side);
      EXPECT_EQ(LegalMoveList(side), moves);
      EXPECT_EQ(CountLegalMoves(side), static_cast<int>(moves.size()));
      EXPECT_EQ(HasLegalMove(side), !moves.empty());
      SideToMove = side;
      EXPECT_EQ(Perft(1), std::accumulate(moves.begin(), moves.end(), 0U, [](unsigned sum, PackedMove move) {
                  return sum + (plain::IsPromotion(PlainMove(move)) ? 4 : 1);
                }));
      EXPECT_EQ(IsInCheck(side), plain::IsInCheck(PlainSide(side)));
      for (int square = 0; square < kSquares; ++square)
        EXPECT_EQ(IsSquareAttacked(square, side), plain::IsSquareAttacked(PlainSquare(square), PlainSide(side)));
    }
    CompareChecks<kWhite>();
    CompareChecks<kBlack>();
  });
}

// What the board alone says the position must hold.
BoardState Recomputed() {
  const BoardState kept = Position;
  Position = {};
  for (int square = 0; square < kSquares; ++square)
    if (kept.Board[static_cast<unsigned>(square)] != kNoPiece)
      PutPiece(square, kept.Board[static_cast<unsigned>(square)]);
  Position.HalfmoveClock = kept.HalfmoveClock;
  Position.MovedFlags = kept.MovedFlags;
  Position.EnPassantSquare = kept.EnPassantSquare;
  BoardState fresh = Position;
  Position = kept;
  return fresh;
}

bool SameState(const BoardState &one, const BoardState &other) {
  return std::memcmp(&one, &other, offsetof(BoardState, EnPassantSquare) + sizeof one.EnPassantSquare) == 0;
}

TEST_F(RulesTest, EveryMoveKeepsEveryField) {
  ForRandomPositions(1000, [] {
    const BoardState before = Position;
    const plain::BoardState plainBefore = plain::Position;
    for (const Side side : {kWhite, kBlack}) {
      for (const PackedMove move : LegalMoveList(side)) {
        SaveState(5);
        MakeMove(FromOf(move), ToOf(move));
        plain::MakeMove(PlainMove(move));
        EXPECT_TRUE(PlainBoard() == plain::Position) << FromOf(move) << ' ' << ToOf(move);
        EXPECT_TRUE(SameState(Position, Recomputed())) << FromOf(move) << ' ' << ToOf(move);
        EXPECT_EQ(BoardHash(), plain::BoardHash());
        RestoreState(5);
        EXPECT_TRUE(SameState(Position, before));
        plain::Position = plainBefore;
      }
    }
  });
}

TEST_F(RulesTest, FenTakenOverOrRefused) {
  for (const auto &row : ReadTable("fens.tsv")) {
    SCOPED_TRACE(row[0]);
    ASSERT_TRUE(LoadFen("r3k2r/8/8/8/8/8/8/R3K2R b Kq e3 5 7"));
    const BoardState before = Position;
    if (row[1] == "-") {
      EXPECT_FALSE(LoadFen(row[0].c_str()));
      EXPECT_TRUE(SameState(Position, before) && SideToMove == kBlack && GamePly == 13);
    } else {
      EXPECT_TRUE(LoadFen(row[0].c_str()));
      EXPECT_EQ(CurrentFen(), row[1]);
      EXPECT_EQ(std::to_string(GamePly), row[2]);
      EXPECT_EQ(std::to_string(Position.MovedFlags), row[3]);
    }
    EXPECT_EQ(GameHistoryCount, 1);
  }
}

} // namespace
