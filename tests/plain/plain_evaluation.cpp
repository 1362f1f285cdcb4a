#include "plain_evaluation.h"

#include <algorithm>

#include "plain_rules.h"

namespace plain {

namespace {

struct Phase {
  int Middle = 0; // 6400 with all pieces on the board, 0 with bare kings and pawns
  int End = 0;
};

int Centrality(int v) { return 7 - std::abs(2 * v - 7); }
int RelativeRank(int side, int y) { return side == 1 ? 7 - y : y; }

Phase GamePhase() {
  constexpr int kMaterial[] = {0, 0, 500, 320, 330, 900, 0};
  int sum = 0;
  for (const Square s : kSquares)
    sum += kMaterial[PieceType(At(s))];
  return {std::min(sum, 6400), 6400 - std::min(sum, 6400)};
}

int OfficerTerm(Square s, Phase phase) {
  const int side = PieceSide(At(s));
  const int r = RelativeRank(side, s.Y);
  const int f = Centrality(s.X);
  const int centre = f + Centrality(r);
  const int home = r == 0 ? -10 : 0;
  const int type = PieceType(At(s));
  if (type == kRook) {
    const auto &file = Position.Board[s.X];
    const bool own = std::count(file, file + 8, Code(side, kPawn)) > 0;
    const bool enemy = std::count(file, file + 8, Code(3 - side, kPawn)) > 0;
    return 500 + 2 * f + (r == 6 ? 20 : 0) + (own ? 0 : enemy ? 12 : 22);
  }
  if (type == kKnight)
    return 320 + 4 * centre - 24 + home;
  if (type == kBishop)
    return 330 + 2 * centre + home;
  return 900 + centre - (r > 1 ? 15 * phase.Middle / 6400 : 0);
}

struct PawnFacts {
  int SameFile = 0;
  bool Isolated = true;
  bool Passed = true;
  bool Connected = false;
  bool Guarded = false;
};

PawnFacts FactsOfPawn(Square pawn) {
  PawnFacts facts;
  const int side = PieceSide(At(pawn));
  for (const Square s : kSquares) {
    const int behind = (pawn.Y - s.Y) * Forward(side); // rows, below 0 ahead of the pawn
    if (std::abs(s.X - pawn.X) > 1)
      continue;
    if (At(s) == Code(3 - side, kPawn) && behind < 0)
      facts.Passed = false;
    if (At(s) == At(pawn) && s.X == pawn.X) {
      ++facts.SameFile;
    } else if (At(s) == At(pawn)) {
      facts.Isolated = false;
      facts.Connected = facts.Connected || std::abs(behind) <= 1;
      facts.Guarded = facts.Guarded || behind == 1;
    }
  }
  return facts;
}

// Fractional for five, seven or eight pawns on a file.
double PawnTerm(Square s, Phase phase) {
  const int side = PieceSide(At(s));
  const int r = RelativeRank(side, s.Y);
  const bool centre = (s.X == 3 || s.X == 4) && (r == 3 || r == 4);
  const PawnFacts facts = FactsOfPawn(s);
  const double n = facts.SameFile;
  double t = 100 + 5 * r + 2 * Centrality(s.X) + (r >= 3 ? 2 * Centrality(r) : 0);
  t += centre ? 18 * phase.Middle / 6400 : 0;
  t += n > 1 ? (n - 1) * -12 / n : 0;
  t -= facts.Isolated ? 15 : 0;
  if (!facts.Passed)
    return t;
  const int march = 3 * r * r * phase.End / 6400;
  t += 2 * r * r + march;
  t += facts.Connected ? 8 + 2 * r : 0;
  t += facts.Guarded ? 10 + 2 * r : 0;
  const Square own = FindKing(side);
  const Square enemy = FindKing(3 - side);
  const int lead = OnBoard(own) && OnBoard(enemy) ? Distance(enemy, s) - Distance(own, s) : 0;
  return t + std::clamp(4 * lead * phase.End / 6400, -24, 24);
}

// Squares next to the king, up to one row behind it and two in front, three when no pawn shields it.
bool IsInKingZone(Square king, int side, int shield, Square s) {
  const int ahead = (s.Y - king.Y) * Forward(side);
  return std::abs(s.X - king.X) <= 1 && ahead >= -1 && ahead <= (shield > 0 ? 2 : 3);
}

int KingAttackPenalty(Square king, int shield, Phase phase) {
  constexpr int kWeights[] = {0, 1, 3, 2, 2, 5, 1};
  const int side = PieceSide(At(king));
  int sum = 0;
  int attackers = 0;
  bool queen = false;
  for (const Square from : kSquares) {
    if (PieceSide(At(from)) != 3 - side)
      continue;
    const auto count = std::count_if(kSquares.begin(), kSquares.end(), [&](Square s) {
      return IsInKingZone(king, side, shield, s) && PieceAttacksSquare({from, s});
    });
    queen = queen || PieceType(At(from)) == kQueen;
    attackers += count > 0;
    sum += kWeights[PieceType(At(from))] * std::min(static_cast<int>(count), 3);
  }
  const int raw = attackers < 2 ? 0 : std::min((3 - shield) * sum + sum * sum / 4, 260);
  const int scaled = phase.Middle * raw / 6400;
  return queen ? scaled : scaled / 4;
}

int KingTerm(Square s, Phase phase) {
  const int side = PieceSide(At(s));
  const int r = RelativeRank(side, s.Y);
  int shield = 0;
  for (const int dx : {-1, 0, 1}) {
    const Square front = s + Square{dx, Forward(side)};
    shield += OnBoard(front) && At(front) == Code(side, kPawn);
  }
  const int castled = r == 0 && (s.X == 2 || s.X == 6) ? 35 : 0;
  const int middle = 12 * shield - 12 * r - 3 * Centrality(s.X) + castled;
  const int end = 5 * (Centrality(s.X) + Centrality(r));
  return (middle * phase.Middle + end * phase.End) / 6400 + 20000 - KingAttackPenalty(s, shield, phase);
}

// Drives a bare king to the edge when the other side has a rook or a queen.
int MatingDrive() {
  int men[3] = {};
  bool heavy[3] = {};
  for (const Square s : kSquares) {
    const int side = PieceSide(At(s));
    men[side] += PieceType(At(s)) != kKing;
    heavy[side] = heavy[side] || (IsOfficer(At(s)) && !IsMinor(At(s)));
  }
  const int strong = men[2] == 0 && heavy[1] ? 1 : men[1] == 0 && heavy[2] ? 2 : 0;
  const Square king = FindKing(strong);
  const Square bare = FindKing(3 - strong);
  if (strong == 0 || !OnBoard(king) || !OnBoard(bare))
    return 0;
  const auto moves = std::count_if(kSquares.begin(), kSquares.end(), [&](Square s) {
    return PieceAttacksSquare({bare, s}) && IsLegalMove({bare, s});
  });
  const int edge = std::min({bare.X, 7 - bare.X, bare.Y, 7 - bare.Y});
  const int drive = (8 - static_cast<int>(moves)) * 16 + (3 - edge) * 35 + (14 - Distance(king, bare)) * 18;
  return strong == 1 ? drive : -drive;
}

} // namespace

int ComputeEvaluation() {
  const Phase phase = GamePhase();
  double score = 0;
  int bishops[3] = {};
  for (const Square s : kSquares) {
    const int side = PieceSide(At(s));
    const int type = PieceType(At(s));
    bishops[side] += type == kBishop;
    if (side != 0) {
      const double term = type == kPawn   ? PawnTerm(s, phase)
                          : type == kKing ? KingTerm(s, phase)
                                          : OfficerTerm(s, phase);
      score += side == 1 ? term : -term;
    }
  }
  score += bishops[1] >= 2 ? 30 : 0;
  score -= bishops[2] >= 2 ? 30 : 0;
  return static_cast<int>(score + MatingDrive());
}

} // namespace plain
