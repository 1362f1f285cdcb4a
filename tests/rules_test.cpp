// The rules against their plain counterpart, every field that MakeMove keeps, FEN, and perft.
#include <cstddef>
#include <cstring>

#include "board/perft.h"
#include "board/position_key.h"
#include "evaluation/king_terms.h"
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
    for (const Side side : {kWhite, kBlack}) {
      const std::vector<PackedMove> moves = PlainLegalMoves(side);
      EXPECT_EQ(LegalMoveList(side), moves);
      EXPECT_EQ(CountLegalMoves(side), static_cast<int>(moves.size()));
      EXPECT_EQ(HasLegalMove(side), !moves.empty());
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

TEST_F(RulesTest, FenTakenOver) {
  struct {
    const char *Fen, *Taken;
    long Ply;
    int Flags;
  } const cases[] = {
      {"8/8/8/8/8/8/8/K6k w - -", "w - - 0", 0, 63},
      {"8/8/8/8/8/8/8/K6k b x - 7 0", "b - - 7", -1, 63},
      {"8/8/8/8/8/8/8/K6k w KK e6 x 9", "w K e6 0", 0, 63 - kWhiteKingMoved - kWhiteRookHMoved},
      {"8/8/8/8/8/8/8/Kk6 w abcdefq - 3", "w q - 3", 0, 63 - kBlackKingMoved - kBlackRookAMoved},
      {"8/8/8/8/8/8/8/Kk6 b qQkK h3 2147483648 2147483648", "b KQkq h3 1000000000", 4294967293, 0},
  };
  for (const auto &row : cases) {
    ASSERT_TRUE(LoadFen(row.Fen));
    EXPECT_EQ(CurrentFen().substr(72), row.Taken);
    EXPECT_TRUE(GamePly == row.Ply && Position.MovedFlags == row.Flags && GameHistoryCount == 1) << row.Fen;
  }
  ASSERT_TRUE(LoadFen("PRNBQKpr/8/1nbqk3/8/QQQQQQQQ/8/7p/P6P w - -"));
  EXPECT_EQ(CurrentFen().substr(0, 71), "PRNBQKpr/11111111/1nbqk111/11111111/QQQQQQQQ/11111111/1111111p/P111111P");
}

TEST_F(RulesTest, FenRefusedChangesNothing) {
  ASSERT_TRUE(LoadFen("r3k2r/8/8/8/8/8/8/R3K2R b Kq e3 5 7"));
  const BoardState before = Position;
  for (const char *fen :
       {"", "8/8/8/8/8/8/8/K6k w -", "9/8/8/8/8/8/8/K6k w - -", "8/8/8/8/8/8/8/K7k w - -", "8/8/8/8/8/8/8/K5k w - -",
        "8/8/8/8/8/8/K6k w - -", "8/8/8/8/8/8/8/8/K6k w - -", "8/8/8/8/8/8/8/K6k/ w - -", "08/8/8/8/8/8/8/K6k w - -",
        "8/8/8/8/8/8/8/KK5k w - -", "8/8/8/8/8/8/8/K7 w - -", "8/8/8/8/8/8/8/K5xk w - -", "8/8/8/8/8/8/8/K6k white - -",
        "8/8/8/8/8/8/8/K6k W - -", "8/8/8/8/8/8/8/K6k w - e4", "8/8/8/8/8/8/8/K6k w - e", "8/8/8/8/8/8/8/K6k w - e33",
        "8/8/8/8/8/8/8/K6k w - i6", "8/8/8/8/8/8/8/K6k w - - -1"}) {
    EXPECT_FALSE(LoadFen(fen)) << fen;
    EXPECT_TRUE(SameState(Position, before) && SideToMove == kBlack && GamePly == 13 && GameHistoryCount == 1) << fen;
  }
}

TEST_F(RulesTest, Perft) {
  struct {
    const char *Fen;
    int Depth, Leaves;
  } const cases[] = {
      {StartFen, 5, 4865609},
      {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1", 4, 4085603},
      {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1", 5, 674624},
      {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1", 4, 422333},
      {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8", 4, 2103487},
      {"n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - 0 1", 4, 182838},
  };
  for (const auto &row : cases) {
    ASSERT_TRUE(LoadFen(row.Fen));
    EXPECT_EQ(Perft(row.Depth), static_cast<unsigned>(row.Leaves)) << row.Fen;
  }
  for (int i = 0; i < 40; ++i) {
    const std::string fen = OddFen();
    ASSERT_TRUE(LoadFen(fen.c_str()));
    SetPlainPosition();
    EXPECT_EQ(Perft(2), plain::Perft(PlainSide(SideToMove), 2)) << fen;
  }
}

} // namespace
