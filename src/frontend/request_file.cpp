#include "frontend/request_file.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "board/fen.h"
#include "board/move_text.h"
#include "board/number_text.h"
#include "frontend/exit_code.h"
#include "frontend/text_line.h"
#include "platform/platform.h"
#include "search/best_line.h"
#include "search/hints.h"
#include "search/search_driver.h"
#include "search/stop_control.h"
#include "search/transposition_table.h"

namespace zorvane {

namespace {

constexpr std::size_t kLongestPath = 3900; // leaves room for every ending in kPathBufferSize
constexpr std::size_t kTokenSize = 128;    // of a token with its line end and terminator

constexpr char kHeader[] = "ZORVANE_C_REQUEST_1";
constexpr char kPositionText[] = "position startpos";

constexpr double kShortestTimeMs = 1;
constexpr double kLongestTimeMs = 300000;

using PathBuffer = std::array<char, kPathBufferSize>;
using Line = std::array<char, kTextLineSize>;
using Token = std::array<char, kTokenSize>;

// The third line of a request: seven numbers.
struct Parameters {
  double TimeMs;
  int Depth;
  int HashKb;
  int TranspositionMovesFlag; // 0 is off, any other number on
  int PawnCacheFlag;          // the same
  int HintsFlag;              // 1 is on, any other number off
  int EndgameHintsFlag;       // the same
};

// A path with the ending of one of the request's files; it fits for every path that is not too long.
PathBuffer NameOf(const char *requestPath, const char *ending) {
  PathBuffer name{};
  std::snprintf(name.data(), name.size(), "%s%s", requestPath, ending);
  return name;
}

bool ReadLine(std::FILE *file, char *line, std::size_t size) {
  return std::fgets(line, static_cast<int>(size), file) != nullptr;
}

bool ReadLine(std::FILE *file, Line &line) { return ReadLine(file, line.data(), line.size()); }

// Closes the stream; false when a write or the close failed.
bool FinishWriting(std::FILE *file) {
  const bool written = std::ferror(file) == 0;
  return std::fclose(file) == 0 && written;
}

// Writes the response under its temporary name and gives it its own once it is complete. Returns the message of the
// failure, null for none.
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

// Tells the failure on standard error, in the error file and, when the token is known, in a response.
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

// All seven numbers have to be there; whole numbers beyond 32 bits are held to that range.
bool ReadParameters(const Line &line, Parameters &read) {
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

bool AreInRange(const Parameters &parameters) {
  return parameters.TimeMs >= kShortestTimeMs && parameters.TimeMs <= kLongestTimeMs && parameters.Depth >= 1 &&
         parameters.Depth <= kDepthLimit && IsTableSize(parameters.HashKb);
}

// Plays the position line from the initial position; false when it is no valid one.
bool SetRequestedPosition(char *line) {
  if (!StartsWith(line, kPositionText))
    return false;
  LoadFen(StartFen);
  char *moves = CutMoveList(line);
  return moves == nullptr || ApplyMoveList(moves);
}

void ReadHints(std::FILE *file, Line &line) {
  ClearHints();
  Hint hint{};
  while (!IsHintListFull() && ReadLine(file, line))
    if (std::sscanf(line.data(), "%7s %lf %lf", hint.Text.data(), &hint.Values.Bonus, &hint.Values.Penalty) == 3)
      AddHint(hint);
}

void SearchRequest(const Parameters &parameters) {
  ResizeTransposition(parameters.HashKb);
  RunSearch({parameters.Depth, parameters.TimeMs / 1000.0},
            {parameters.TranspositionMovesFlag != 0, parameters.PawnCacheFlag != 0, parameters.HintsFlag == 1,
             parameters.EndgameHintsFlag == 1});
}

void WriteSearchResult(std::FILE *file, const char *token) {
  const SearchResult &result = Result();
  std::fprintf(file, "%s\nOK\n%s\n%d\n%d\n%lld\n%.0f\n%d\n%d\n", token, result.BestMoveText.Text.data(),
               result.BestScore, result.CompletedDepth, static_cast<long long>(result.Nodes), result.ElapsedMs,
               static_cast<int>(result.BestMoveReason), result.LegalMoveCount);
  for (const PvEntry &entry : FinalPv) {
    const int from = FromOf(entry.Move);
    const int to = ToOf(entry.Move);
    std::fprintf(file, "%d %d %d %d %d %d\n", entry.Valid ? 1 : 0, FileOf(from), RowOf(from), FileOf(to), RowOf(to),
                 PieceCode(entry.Mover));
  }
}

void WriteNoMove(std::FILE *file, const char *token) {
  std::fprintf(file, "%s\nERROR\nKeine gueltige Stellung oder kein legaler Zug\n", token);
}

// What a request file says, as far as it could be read.
struct Request {
  Token TokenText;
  Parameters Limits;
  bool HasToken;
  bool HasPosition;
};

// Reads the whole request; returns the message of the failure, null for none.
const char *ReadRequest(std::FILE *file, Request &request) {
  static Line line;
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
  // Not before the token, which the response to the failure carries.
  if (!headerMatches)
    return "Invalid request header";
  if (!ReadLine(file, line) || !ReadParameters(line, request.Limits))
    return "Invalid search parameters";
  if (!AreInRange(request.Limits))
    return "Search parameters out of range";
  if (!ReadLine(file, line))
    return "Missing position";
  CutLineEnd(line.data());
  request.HasPosition = SetRequestedPosition(line.data());
  ReadHints(file, line);
  return nullptr;
}

} // namespace

int RunRequest(const char *requestPath) {
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

  if (request.HasPosition)
    SearchRequest(request.Limits);
  if (IsStopRequested()) {
    RemoveFile(requestPath);
    RemoveFile(cancelPath.data());
    return kSuccess;
  }
  const bool hasMove = request.HasPosition && Result().BestMove != kNoMove;
  failure = PublishResponse(requestPath,
                            [&](std::FILE *response) { (hasMove ? WriteSearchResult : WriteNoMove)(response, token); });
  return failure == nullptr ? kSuccess : ReportRequestError(requestPath, token, failure);
}

} // namespace zorvane
