#include "board/move_text.h"

#include <cassert>
#include <cstring>

#include "board/position.h"
#include "board/position_key.h"
#include "board/rules.h"

namespace zorvane {

namespace {

bool Promotes(Piece piece, int to) { return TypeOf(piece) == kPawn && Contains(kPromotionRows, to); }

// Reads a file letter and a rank digit; kNoSquare for anything else.
int ReadSquare(const char *text) {
  if (text[0] < 'a' || text[0] > 'h' || text[1] < '1' || text[1] > '8')
    return kNoSquare;
  return MakeSquare(text[0] - 'a', '8' - text[1]);
}

// The piece that a lower-case letter promotes to, kNoType for any other letter.
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
  assert(PositionIsOk());
  EndTurn();
  PushGameHistory();
  return true;
}

bool ApplyMoveList(char *moves) {
  while (*moves != '\0') {
    char *end = moves + std::strcspn(moves, " ");
    const bool last = *end == '\0';
    *end = '\0';
    if (*moves != '\0' && !ApplyUciMove(moves))
      return false;
    moves = last ? end : end + 1;
  }
  return true;
}

MoveChars MoveText(Piece piece, int from, int to) {
  const auto letter = [](int square) { return static_cast<char>('a' + FileOf(square)); };
  const auto digit = [](int square) { return static_cast<char>('8' - RowOf(square)); };
  const char suffix = Promotes(piece, to) ? 'q' : '\0';
  return {letter(from), digit(from), letter(to), digit(to), suffix, '\0'};
}

MoveChars HintDigits(Piece piece, int from, int to) {
  const auto digit = [](int number) { return static_cast<char>('0' + number); };
  const int promotion = Promotes(piece, to) ? static_cast<int>(kQueen) : 0;
  return {digit(FileOf(from)), digit(RowOf(from)), digit(FileOf(to)), digit(RowOf(to)), digit(promotion), '\0'};
}

} // namespace zorvane
