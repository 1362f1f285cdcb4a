#include "board/fen.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstring>

#include "base/array.h"
#include "base/parse_integer.h"
#include "board/position_key.h"

namespace zorvane {

namespace {

// Far above every number that the clock is compared with, and low enough that counting on cannot overflow.
constexpr int kHighestLoadedClock = 1000000000;

constexpr char kPieceLetters[] = "PRNBQK prnbqk";

using Placement = Array<Piece, kSquares>;

// The piece of a FEN letter, kNoPiece for any other character.
Piece PieceForLetter(char letter) {
  const char *found = letter == ' ' || letter == '\0' ? nullptr : std::strchr(kPieceLetters, letter);
  if (found == nullptr)
    return kNoPiece;
  const auto place = static_cast<int>(found - kPieceLetters);
  return place < kPieceTypes ? MakePiece(kWhite, static_cast<PieceType>(place + 1))
                             : MakePiece(kBlack, static_cast<PieceType>(place - kPieceTypes));
}

// Reads the ranks of a FEN; false unless there are eight ranks of eight squares and one king for each side.
bool ReadPlacement(const char *text, Placement &placement) {
  int file = 0;
  int row = 0;
  Array<int, 2> kings{};
  placement.fill(kNoPiece);
  for (; *text != '\0'; ++text) {
    if (*text == '/') {
      if (file != 8 || row > 6)
        return false;
      ++row;
      file = 0;
    } else if (*text >= '1' && *text <= '8') {
      file += *text - '0';
      if (file > 8)
        return false;
    } else {
      const Piece piece = PieceForLetter(*text);
      if (piece == kNoPiece || file > 7)
        return false;
      placement[MakeSquare(file++, row)] = piece;
      if (TypeOf(piece) == kKing)
        ++kings[SideOf(piece)];
    }
  }
  return row == 7 && file == 8 && kings[kWhite] == 1 && kings[kBlack] == 1;
}

// Reads the en-passant field: a target square, or "-" for kNoSquare. False if it is neither.
bool ReadEnPassant(const char *text, int &square) {
  square = kNoSquare;
  if (std::strcmp(text, "-") == 0)
    return true;
  if (std::strlen(text) != 2 || text[0] < 'a' || text[0] > 'h' || (text[1] != '3' && text[1] != '6'))
    return false;
  square = MakeSquare(text[0] - 'a', '8' - text[1]);
  return true;
}

std::uint8_t ReadMovedFlags(const char *castling) {
  struct Right {
    char Letter;
    MovedFlag Rook;
    MovedFlag King;
  };
  constexpr Array<Right, 4> rights{{{'K', kWhiteRookHMoved, kWhiteKingMoved},
                                    {'Q', kWhiteRookAMoved, kWhiteKingMoved},
                                    {'k', kBlackRookHMoved, kBlackKingMoved},
                                    {'q', kBlackRookAMoved, kBlackKingMoved}}};
  unsigned flags = 0;
  for (const Right &right : rights)
    flags |= static_cast<unsigned>(right.Rook | right.King);
  for (const Right &right : rights)
    if (std::strchr(castling, right.Letter) != nullptr)
      flags &= ~static_cast<unsigned>(right.Rook | right.King);
  return static_cast<std::uint8_t>(flags);
}

} // namespace

bool LoadFen(const char *text) {
  // One more than the widths of the format below.
  char ranks[99 + 1] = {};
  char side[3 + 1] = {};
  char castling[7 + 1] = {};
  char target[7 + 1] = {};
  int read = 0;
  if (std::sscanf(text, "%99s %3s %7s %7s%n", ranks, side, castling, target, &read) < 4)
    return false;

  // The two counters are optional; a move number is only read after a halfmove clock.
  int clock = 0;
  int moveNumber = 1;
  const char *after = nullptr;
  const int first = ParseInteger(text + read, &after);
  if (after != text + read) {
    clock = first;
    const char *rest = after;
    const int second = ParseInteger(rest, &after);
    if (after != rest)
      moveNumber = second;
  }

  Placement placement{};
  int enPassant = kNoSquare;
  if (!ReadPlacement(ranks, placement) || clock < 0)
    return false;
  if (std::strcmp(side, "w") != 0 && std::strcmp(side, "b") != 0)
    return false;
  if (!ReadEnPassant(target, enPassant))
    return false;

  BoardState empty{};
  empty.HalfmoveClock = std::min(clock, kHighestLoadedClock);
  empty.MovedFlags = ReadMovedFlags(castling);
  empty.EnPassantSquare = static_cast<std::uint8_t>(enPassant);
  const Side toMove = side[0] == 'w' ? kWhite : kBlack;
  StartGame(empty, toMove, 2 * static_cast<std::int64_t>(moveNumber) - 2 + (toMove == kBlack ? 1 : 0));
  for (int square = 0; square < kSquares; ++square)
    if (placement[square] != kNoPiece)
      PutPiece(square, placement[square]);
  assert(PositionIsOk());
  StartGameHistory();
  return true;
}

} // namespace zorvane
