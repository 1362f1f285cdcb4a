#include "engine_test.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>

#include "board/fen.h"
#include "board/legal_moves.h"
#include "frontend/engine_main.h"
#include "tree/stop_control.h"

using namespace zorvane;

static std::mt19937 Generator;

void EngineTest::SetUp() {
  Generator.seed(20);
  StartEngine();
  ClearStopRequest();
  ResetStopControl();
}

int RandomBelow(int limit) { return static_cast<int>(Generator() % static_cast<unsigned>(limit)); }

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

void CheckAnswers(const std::string &name, const std::function<void(std::vector<std::string> &)> &answer) {
  const char *const folder = std::getenv("ZORVANE_RECORD");
  std::ofstream record(folder == nullptr ? "" : folder + ("/" + name));
  for (const auto &row : ReadTable(name)) {
    std::vector<std::string> answered = row;
    answer(answered);
    if (folder == nullptr) {
      EXPECT_EQ(answered, row);
      continue;
    }
    for (size_t i = 0; i < answered.size(); ++i)
      record << (i > 0 ? "\t" : "") << answered[i];
    record << '\n';
  }
}

std::string CurrentFen() {
  constexpr int needed[] = {kWhiteKingMoved | kWhiteRookHMoved, kWhiteKingMoved | kWhiteRookAMoved,
                            kBlackKingMoved | kBlackRookHMoved, kBlackKingMoved | kBlackRookAMoved};
  std::string fen;
  for (int square = 0; square < kSquares; ++square)
    fen += std::string(square > 0 && square % 8 == 0 ? "/" : "") + "1PRNBQK..prnbqk"[PieceOn(square)];
  fen += SideToMove == kWhite ? " w " : " b ";
  for (size_t i = 0; i < 4; ++i)
    fen += (Board.MovedFlags & needed[i]) == 0 ? std::string(1, "KQkq"[i]) : "";
  fen += fen.back() == ' ' ? "- " : " ";
  const int target = Board.EnPassantSquare;
  fen += target == kNoSquare ? "-" : std::string{"abcdefgh"[FileOf(target)], "87654321"[RowOf(target)]};
  return fen + " " + std::to_string(Board.HalfmoveClock);
}

std::string MirroredFen() {
  std::istringstream fields(CurrentFen());
  std::string ranks;
  std::string side;
  std::string castling;
  fields >> ranks >> side >> castling;
  for (std::string *text : {&ranks, &castling})
    for (char &c : *text)
      c = static_cast<char>(std::islower(c) != 0 ? std::toupper(c) : std::tolower(c));
  std::string mirrored;
  for (size_t rank = 0; rank < 8; ++rank)
    mirrored.insert(0, ranks.substr(9 * rank, 8) + (rank > 0 ? "/" : ""));
  return mirrored + (side == "w" ? " b " : " w ") + castling + " -";
}

void ForEachPosition(const std::function<void()> &visit) {
  for (const char *name : {"positions.tsv", "games.eval.tsv", "odd.eval.tsv"}) {
    for (const auto &row : ReadTable(name)) {
      ASSERT_TRUE(LoadFen(row[0].c_str()));
      for (int plies = 0; plies < 16; ++plies) {
        const std::string fen = CurrentFen();
        const BoardState kept = Board;
        const Side side = SideToMove;
        visit();
        ASSERT_FALSE(testing::Test::HasFailure()) << fen;
        Board = kept;
        SideToMove = side;
        const PackedMove move = RandomMove();
        if (move == kNoMove)
          break;
        PlayFrom(0, move);
      }
    }
  }
}

std::vector<PackedMove> LegalMoveList(Side side) {
  MoveSets sets;
  GenerateLegalMoves(sets, side);
  std::vector<PackedMove> moves;
  for (Bitboard froms = sets.Froms; froms != 0;) {
    const int from = PopLsb(froms);
    for (Bitboard targets = sets.Targets[from]; targets != 0;)
      moves.push_back(PackMove(from, PopLsb(targets)));
  }
  return moves;
}

PackedMove RandomMove() {
  const std::vector<PackedMove> moves = LegalMoveList(SideToMove);
  return moves.empty() ? kNoMove : moves[static_cast<size_t>(RandomBelow(static_cast<int>(moves.size())))];
}

void PlayFrom(int ply, PackedMove move) {
  SaveState(ply);
  MakeMove(FromOf(move), ToOf(move));
  SideToMove = Opposite(SideToMove);
}

bool SameState(const BoardState &one, const BoardState &other) {
  return std::memcmp(&one, &other, offsetof(BoardState, EnPassantSquare) + sizeof one.EnPassantSquare) == 0;
}

PackedMove MoveOfText(const std::string &text) {
  return PackMove(MakeSquare(text[0] - 'a', '8' - text[1]), MakeSquare(text[2] - 'a', '8' - text[3]));
}
