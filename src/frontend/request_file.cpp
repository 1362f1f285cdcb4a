#include "frontend/request_file.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "base/exit_code.h"
#include "base/parse_integer.h"
#include "board/fen.h"
#include "board/move_text.h"
#include "frontend/text_line.h"
#include "platform/platform.h"
#include "search/search_driver.h"
#include "tree/stop_control.h"
#include "tree/transposition_table.h"

namespace zorvane {

namespace {

constexpr std::size_t kLongestPath = 3900; // leaves room for every ending in kPathBufferSize
constexpr std::size_t kTokenSize = 128;    // size of a token with line end and terminator

constexpr char kHeader[] = "ZORVANE_C_REQUEST_1";
constexpr char kPositionText[] = "position startpos";

using PathBuffer = std::array<char, kPathBufferSize>;
using Line = std::array<char, kTextLineSize>;
using Token = std::array<char, kTokenSize>;

// The third line of a request.
struct Numbers {
  double TimeMs;
  int Depth;
  int HashKb;
  int TranspositionMovesFlag; // 0 is off, any other number is on
  int PawnCacheFlag;          // the same
  int HintsFlag;              // 1 is on, any other number is off
  int EndgameHintsFlag;       // the same
};

// The contents of a request file, as far as it could be read.
struct Request {
  bool HasToken;
  Token TokenText;
  Numbers Values;
  Line PositionLine;
  HintList Hints;
};

// The path of one of the request's files, by its ending; fits for every path up to kLongestPath.
PathBuffer NameOf(const char *requestPath, const char *ending) {
  PathBuffer name{};
  std::snprintf(name.data(), name.size(), "%s%s", requestPath, ending);
  return name;
}

bool ReadLine(std::FILE *file, char *line, std::size_t size) {
  return std::fgets(line, static_cast<int>(size), file) != nullptr;
}

bool ReadLine(std::FILE *file, Line &line) { return ReadLine(file, line.data(), line.size()); }

// Closes the stream; false if a write or the close failed.
bool FinishWriting(std::FILE *file) {
  const bool written = std::ferror(file) == 0;
  return std::fclose(file) == 0 && written;
}

// Writes the response under a temporary name and renames it when it is complete. Returns the error message, null for
// none.
template <typename Write> const char *PublishResponse(const char *path, Write write) {
  const PathBuffer temporary = NameOf(path, ".response.tmp");
  std::FILE *file = OpenForWriting(temporary.data());
  if (file == nullptr)
    return "Cannot create response file";
  write(file);
  if (!FinishWriting(file))
    return "Cannot write response file";
  if (!RenameFile(temporary.data(), NameOf(path, ".response").data()))
    return "Cannot publish response file";
  return nullptr;
}

// Reports an error on standard error, in the error file and, if the token is known, in a response.
int ReportRequestError(const char *path, const char *token, const char *message) {
  std::fprintf(stderr, "Zorvane request error: %s\n", message);
  if (std::strlen(path) > kLongestPath)
    return kFailure;
  std::FILE *file = OpenForWriting(NameOf(path, ".error.txt").data());
  if (file != nullptr) {
    std::fprintf(file, "%s\n", message);
    std::fclose(file);
  }
  if (token != nullptr)
    PublishResponse(path, [&](std::FILE *response) { std::fprintf(response, "%s\nERROR\n%s\n", token, message); });
  return kFailure;
}

// All seven numbers must be there; whole numbers beyond 32 bits are clamped.
bool ReadNumbers(const Line &line, Numbers &read) {
  int used = 0;
  if (std::sscanf(line.data(), "%lf%n", &read.TimeMs, &used) != 1)
    return false;
  const char *next = line.data() + used;
  for (int *number : {&read.Depth, &read.HashKb, &read.TranspositionMovesFlag, &read.PawnCacheFlag, &read.HintsFlag,
                      &read.EndgameHintsFlag}) {
    const char *const begin = next;
    *number = ParseInteger(begin, &next);
    if (next == begin)
      return false;
  }
  return true;
}

bool AreInRange(const Numbers &numbers) {
  return numbers.TimeMs >= kShortestTimeMs && numbers.TimeMs <= kLongestTimeMs && numbers.Depth >= 1 &&
         numbers.Depth <= kDepthLimit && IsTableSize(numbers.HashKb);
}

// Skips lines without all three fields.
void ReadHints(std::FILE *file, HintList &hints) {
  Line line;
  while (hints.Count < kHintLimit && ReadLine(file, line)) {
    Hint &hint = hints.Hints[hints.Count];
    if (std::sscanf(line.data(), "%7s %lf %lf", hint.Text.begin(), &hint.Values.Bonus, &hint.Values.Penalty) == 3)
      ++hints.Count;
  }
}

// Reads the whole request; returns the error message, null for none.
const char *ReadRequest(std::FILE *file, Request &request) {
  Line line;
  if (!ReadLine(file, line))
    return "Missing request header";
  CutLineEnd(line.data());
  const bool headerMatches = std::strcmp(line.data(), kHeader) == 0;
  if (!ReadLine(file, request.TokenText.data(), request.TokenText.size()))
    return "Missing request token";
  CutLineEnd(request.TokenText.data());
  if (request.TokenText[0] == '\0')
    return "Empty request token";
  request.HasToken = true;
  // Checked after the token, which the response to the error carries.
  if (!headerMatches)
    return "Invalid request header";
  if (!ReadLine(file, line) || !ReadNumbers(line, request.Values))
    return "Invalid search parameters";
  if (!AreInRange(request.Values))
    return "Search parameters out of range";
  if (!ReadLine(file, request.PositionLine))
    return "Missing position";
  CutLineEnd(request.PositionLine.data());
  ReadHints(file, request.Hints);
  return nullptr;
}

// Plays the moves of the position line from the initial position; false if the line is not valid. Modifies the line.
bool SetRequestedPosition(char *line) {
  if (!StartsWith(line, kPositionText))
    return false;
  LoadFen(kStartFen);
  char *moves = CutMoveList(line);
  return moves == nullptr || ApplyMoveList(moves);
}

SearchResult SearchRequest(const Request &request) {
  const Numbers &numbers = request.Values;
  ResizeTransposition(numbers.HashKb);
  SearchOptions options;
  options.UseTranspositionMoves = numbers.TranspositionMovesFlag != 0;
  options.PawnCacheEnabled = numbers.PawnCacheFlag != 0;
  options.UseEndgameHints = numbers.EndgameHintsFlag == 1;
  options.Hints = numbers.HintsFlag == 1 ? &request.Hints : nullptr;
  return RunSearch({numbers.Depth, numbers.TimeMs}, options);
}

void WriteSearchResult(std::FILE *file, const char *token, const SearchResult &result) {
  const MoveChars move = MoveText(result.BestMover, FromOf(result.BestMove), ToOf(result.BestMove));
  std::fprintf(file, "%s\nOK\n%s\n%d\n%d\n%lld\n%.0f\n%d\n%d\n", token, move.data(), result.BestScore,
               result.CompletedDepth, static_cast<long long>(result.Nodes), result.ElapsedMs,
               static_cast<int>(result.BestMoveReason), result.LegalMoveCount);
  for (const LineEntry &entry : result.Line) {
    const int from = FromOf(entry.Move);
    const int to = ToOf(entry.Move);
    std::fprintf(file, "%d %d %d %d %d %d\n", entry.Valid ? 1 : 0, FileOf(from), RowOf(from), FileOf(to), RowOf(to),
                 PieceCode(entry.Mover));
  }
}

void WriteNoMove(std::FILE *file, const char *token) {
  std::fprintf(file, "%s\nERROR\nKeine gueltige Stellung oder kein legaler Zug\n", token);
}

} // namespace

int RunRequest(const char *requestPath) {
  // 1. Read the request.
  if (std::strlen(requestPath) > kLongestPath)
    return ReportRequestError(requestPath, nullptr, "Request path too long");
  const PathBuffer cancelPath = NameOf(requestPath, ".cancel");
  WatchCancelFile(cancelPath.data());
  std::FILE *file = OpenForReading(requestPath);
  if (file == nullptr)
    return ReportRequestError(requestPath, nullptr, "Cannot open request file");
  Request request{};
  const char *failure = ReadRequest(file, request);
  std::fclose(file);
  const char *token = request.HasToken ? request.TokenText.data() : nullptr;
  if (failure != nullptr)
    return ReportRequestError(requestPath, token, failure);

  // 2. Search, when there is a position.
  SearchResult result{};
  result.BestMove = kNoMove;
  if (SetRequestedPosition(request.PositionLine.data()))
    result = SearchRequest(request);
  if (IsStopRequested()) {
    RemoveFile(requestPath);
    RemoveFile(cancelPath.data());
    return kSuccess;
  }

  // 3. Publish the response.
  failure = PublishResponse(requestPath, [&](std::FILE *response) {
    if (result.BestMove != kNoMove)
      WriteSearchResult(response, token, result);
    else
      WriteNoMove(response, token);
  });
  return failure == nullptr ? kSuccess : ReportRequestError(requestPath, token, failure);
}

} // namespace zorvane
