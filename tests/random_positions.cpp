#include "random_positions.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>

#include "board/legal_moves.h"
#include "board/move_text.h"
#include "board/position_key.h"
#include "frontend/engine_main.h"
#include "plain/plain_quiescence.h"
#include "search/search_driver.h"
#include "search/stop_control.h"

using namespace zorvane;

namespace {

std::mt19937 Generator;

constexpr char kLetters[] = "PRNBQK  prnbqk";

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

std::vector<std::vector<std::string>> ReadTable(const std::string &name) {
  std::vector<std::vector<std::string>> rows;
  std::ifstream file(ZORVANE_TEST_DATA "/" + name);
  for (std::string line; std::getline(file, line);) {
    if (line[0] == '#')
      continue;
    std::istringstream columns(line);
    for (auto &row = rows.emplace_back(); std::getline(columns, line, '\t');)
      row.push_back(line);
  }
  EXPECT_FALSE(rows.empty()) << name;
  return rows;
}

void EngineTest::SetUp() {
  Generator.seed(20);
  StartEngine();
  StopFlag = 0;
}

int RandomBelow(int limit) { return static_cast<int>(Generator() % static_cast<unsigned>(limit)); }

// A placement that loads but that no game need ever reach: pawns on the last ranks, kings that could be taken, targets
// out of nowhere, castling fields without rooks, up to forty queens or thirty pawns, or hardly any men.
static std::string OddFen() {
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
  static const auto starts = ReadTable("positions.tsv");
  static const auto games =
      std::count_if(starts.begin(), starts.end(), [](const auto &row) { return row[1] == "game"; });
  int done = 0;
  for (size_t walk = 0; walk < starts.size() || done < count; ++walk) {
    const bool special = walk < starts.size();
    const bool odd = !special && walk % 2 != 0;
    const std::string start = odd ? OddFen() : starts[special ? walk : walk / 2 % static_cast<size_t>(games)][0];
    ASSERT_TRUE(LoadFen(start.c_str()));
    PackedMove move = kNoMove;
    for (int plies = special ? 1 : odd ? 5 : 40; plies > 0; --plies, ++done) {
      const std::string fen = CurrentFen();
      const BoardState kept = Position;
      const Side side = SideToMove;
      SetPlainPosition();
      visit();
      ASSERT_FALSE(testing::Test::HasFailure()) << fen;
      Position = kept;
      SideToMove = side;
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

void BeginLine() {
  SetPlainPosition();
  plain::Line = {};
  plain::Line.GameHistory = {plain::PositionKey(PlainSide(SideToMove))};
  UndoStack = {};
  CurrentDepth = 0;
}

void PlayInGame(const char *move) {
  ASSERT_TRUE(ApplyUciMove(move)) << move;
  SetPlainPosition();
  if (plain::Line.GameHistory.size() < kGameHistoryLimit)
    plain::Line.GameHistory.push_back(plain::PositionKey(PlainSide(SideToMove)));
}

int Descend(PackedMove move) {
  SaveState(CurrentDepth);
  plain::Line.Undo[CurrentDepth++] = plain::Position;
  PlayMove(move);
  plain::MakeMove(PlainMove(move));
  return plain::CountRepetitions(PlainSide(SideToMove), CurrentDepth);
}
