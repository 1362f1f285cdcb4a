#include "board/move_text.h"

#include <cstdio>
#include <cstring>

#include "board/position_key.h"
#include "board/rules.h"

namespace zorvane {

namespace {

bool Promotes(Piece piece, int to) { return TypeOf(piece) == kPawn && Contains(kLastRows, to); }

// Reads a file letter and a rank digit; kNoSquare when they are something else.
int ReadSquare(const char *text) {
  if (text[0] < 'a' || text[0] > 'h' || text[1] < '1' || text[1] > '8')
    return kNoSquare;
  return MakeSquare(text[0] - 'a', '8' - text[1]);
}

// The piece that a small letter promotes to, kNoType when there is none.
PieceType PromotionType(char letter) {
  switch (letter) {
  case 'r':
    return kRook;
  case 'n':
    return kKnight;
  case 'b':
    return kBishop;
  case 'q':
    return kQueen;
  default:
    return kNoType;
  }
}

} // namespace

bool ApplyUciMove(const char *text) {
  const std::size_t length = std::strlen(text);
  if (length != 4 && length != 5)
    return false;
  const int from = ReadSquare(text);
  const int to = ReadSquare(text + 2);
  if (from == kNoSquare || to == kNoSquare)
    return false;
  const Piece piece = PieceOn(from);
  if (piece == kNoPiece || SideOf(piece) != SideToMove)
    return false;
  const bool promotes = Promotes(piece, to);
  const PieceType promotion = promotes && length == 5 ? PromotionType(text[4]) : kNoType;
  if (promotes ? promotion == kNoType : length != 4)
    return false;
  if (!IsLegalMove(from, to))
    return false;

  MakeMove(from, to);
  if (promotes) {
    RemovePiece(to);
    PutPiece(to, MakePiece(SideToMove, promotion));
  }
  SideToMove = RootSide = Opposite(SideToMove);
  ++GamePly;
  PushGameHistory();
  return true;
}

void MoveText(BoundedString &out, Piece piece, int from, int to) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "%c%c%c%c%s", 'a' + FileOf(from), '8' - RowOf(from), 'a' + FileOf(to),
                '8' - RowOf(to), Promotes(piece, to) ? "q" : "");
  BoundedStringFromText(out, text.data());
}

void MoveIdTextForPiece(BoundedString &out, Piece piece, int from, int to) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "%d%d%d%d%d", FileOf(from), RowOf(from), FileOf(to), RowOf(to),
                Promotes(piece, to) ? static_cast<int>(kQueen) : 0);
  BoundedStringFromText(out, text.data());
}

} // namespace zorvane
