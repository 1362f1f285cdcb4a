#include "random_positions.h"

#include <algorithm>
#include <random>

#include "board/legal_moves.h"
#include "frontend/engine_main.h"
#include "search/stop_control.h"

using namespace zorvane;

namespace {

std::mt19937 Generator;

constexpr char kLetters[] = "PRNBQK  prnbqk";

constexpr const char *kGameFens[] = {
    StartFen,
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ - 0 1",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - 0 1",
    "r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 96 60",
    "8/8/8/3k4/8/8/3QK3/8 w - - 0 1",
    "8/5bk1/8/2Pp4/8/1K6/8/8 w - d6 0 1",
    "3r1rk1/1b2qpp1/p3p2p/1pbnN3/4B3/P3P1Q1/1B3PPP/2R2RK1 w - - 4 20",
    "4k3/2n2b2/8/2P1P3/8/1N4N1/P6p/4K3 w - - 0 1",
};

// Puts count men of the letters on random empty squares.
void Scatter(std::string &board, int count, const std::string &letters) {
  while (count-- > 0) {
    char &square = board[static_cast<size_t>(RandomBelow(64))];
    if (square == '1')
      square = letters[static_cast<size_t>(RandomBelow(static_cast<int>(letters.size())))];
  }
}

std::string Ranks(const std::string &board) {
  std::string ranks;
  for (size_t row = 0; row < 8; ++row)
    ranks += (row > 0 ? "/" : "") + board.substr(8 * row, 8);
  return ranks;
}

std::string SquareText(int square) {
  return {static_cast<char>('a' + FileOf(square)), static_cast<char>('8' - RowOf(square))};
}

} // namespace

void EngineTest::SetUp() {
  Generator.seed(20);
  StartEngine();
  StopFlag = 0;
}

int RandomBelow(int limit) { return static_cast<int>(Generator() % static_cast<unsigned>(limit)); }

std::string OddFen() {
  std::string board(64, '1');
  const auto king = static_cast<size_t>(RandomBelow(64));
  board[king] = 'K';
  board[(king + 1 + static_cast<size_t>(RandomBelow(63))) % 64] = 'k';
  switch (RandomBelow(5)) {
  case 0:
    Scatter(board, RandomBelow(41), "QQqqRbn");
    break;
  case 1:
    Scatter(board, RandomBelow(31), "PPpp");
    Scatter(board, RandomBelow(8), "RNBQrnbq");
    break;
  case 2:
    Scatter(board, RandomBelow(4), "NBnb");
    break;
  case 3:
    for (int pawns = RandomBelow(9), file = RandomBelow(8), row = 0; row < pawns; ++row)
      if (board[static_cast<size_t>(MakeSquare(file, row))] == '1')
        board[static_cast<size_t>(MakeSquare(file, row))] = 'P';
    [[fallthrough]];
  default:
    Scatter(board, RandomBelow(30), "PPPRNBQpppprnbq");
  }
  constexpr const char *castling[] = {"-", "KQkq", "Kq", "Qk", "x"};
  const std::string target = SquareText(MakeSquare(RandomBelow(8), RandomBelow(2) != 0 ? 2 : 5));
  return Ranks(board) + (RandomBelow(2) != 0 ? " w " : " b ") + castling[RandomBelow(5)] + " " +
         (RandomBelow(3) != 0 ? "-" : target) + " " + std::to_string(RandomBelow(110)) + " 9";
}

std::string CurrentFen() {
  std::string board(64, '1');
  for (int square = 0; square < kSquares; ++square)
    if (const Piece piece = PieceOn(square); piece != kNoPiece)
      board[static_cast<size_t>(square)] = kLetters[piece - 1];
  constexpr int needed[] = {kWhiteKingMoved | kWhiteRookHMoved, kWhiteKingMoved | kWhiteRookAMoved,
                            kBlackKingMoved | kBlackRookHMoved, kBlackKingMoved | kBlackRookAMoved};
  std::string castling;
  for (size_t i = 0; i < 4; ++i)
    castling += (Position.MovedFlags & needed[i]) == 0 ? std::string(1, "KQkq"[i]) : "";
  const int target = Position.EnPassantSquare;
  return Ranks(board) + (SideToMove == kWhite ? " w " : " b ") + (castling.empty() ? "-" : castling) + " " +
         (target == kNoSquare ? "-" : SquareText(target)) + " " + std::to_string(Position.HalfmoveClock);
}

void ForRandomPositions(int count, const std::function<void()> &visit) {
  int done = 0;
  for (size_t walk = 0; done < count; ++walk) {
    const bool odd = walk % 2 != 0;
    ASSERT_TRUE(LoadFen(odd ? OddFen().c_str() : kGameFens[walk / 2 % std::size(kGameFens)]));
    PackedMove move = kNoMove;
    for (int plies = odd ? 5 : 40; plies > 0 && done < count; --plies, ++done) {
      const std::string fen = CurrentFen();
      SetPlainPosition();
      visit();
      ASSERT_FALSE(testing::Test::HasFailure()) << fen;
      if ((move = RandomMove()) == kNoMove)
        break;
      PlayMove(move);
    }
  }
}

std::vector<PackedMove> LegalMoveList(Side side) {
  MoveSets sets;
  if (side == kWhite)
    SetLegalMoves<kWhite>(sets, FindKingDanger<kWhite>());
  else
    SetLegalMoves<kBlack>(sets, FindKingDanger<kBlack>());
  std::vector<PackedMove> moves;
  for (Bitboard froms = sets.Froms; froms != 0;) {
    const int from = PopSquare(froms);
    for (Bitboard targets = sets.Targets[static_cast<unsigned>(from)]; targets != 0;)
      moves.push_back(PackMove(from, PopSquare(targets)));
  }
  return moves;
}

PackedMove RandomMove() {
  const std::vector<PackedMove> moves = LegalMoveList(SideToMove);
  return moves.empty() ? kNoMove : moves[static_cast<size_t>(RandomBelow(static_cast<int>(moves.size())))];
}

void PlayMove(PackedMove move) {
  MakeMove(FromOf(move), ToOf(move));
  SideToMove = Opposite(SideToMove);
}

plain::BoardState PlainBoard() {
  plain::BoardState state;
  for (int square = 0; square < kSquares; ++square)
    state.Board[FileOf(square)][RowOf(square)] = PieceCode(PieceOn(square));
  for (int i = 0; i < 6; ++i)
    state.Moved[i] = Position.MovedFlags >> i & 1;
  state.EnPassant = PlainSquare(Position.EnPassantSquare);
  state.Clock = Position.HalfmoveClock;
  return state;
}

void SetPlainPosition() { plain::Position = PlainBoard(); }
