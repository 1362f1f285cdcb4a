"""Matches against stockfish at reduced strength, and what they say about the engine's own.

Games are played one at a time, so that no program has to share its processor with another game. Each opening is
played twice, with colours exchanged. A second stockfish, at full strength, is the referee: it lists the legal moves
and gives the position after each move.
"""

import argparse
import math
import os
import sys
import threading
import time
from collections import Counter

import measure
from measure import UciEngine, WrongAnswer

# Common openings after four to six half-moves: enough for different games, little enough to decide nothing.
OPENINGS = [line.split() for line in (
    "e2e4 e7e5 g1f3 b8c6 f1b5",
    "e2e4 e7e5 g1f3 b8c6 f1c4",
    "e2e4 e7e5 g1f3 g8f6",
    "e2e4 c7c5 g1f3 d7d6 d2d4 c5d4",
    "e2e4 c7c5 b1c3 b8c6",
    "e2e4 e7e6 d2d4 d7d5 b1c3",
    "e2e4 c7c6 d2d4 d7d5 b1c3",
    "e2e4 d7d6 d2d4 g8f6 b1c3",
    "d2d4 d7d5 c2c4 e7e6 b1c3",
    "d2d4 d7d5 c2c4 c7c6 g1f3",
    "d2d4 g8f6 c2c4 e7e6 b1c3",
    "d2d4 g8f6 c2c4 g7g6 b1c3",
    "d2d4 f7f5 g2g3 g8f6",
    "c2c4 e7e5 b1c3 g8f6",
    "g1f3 d7d5 g2g3 g8f6",
)]

LONGEST_GAME = 600  # half-moves; a longer one counts as a draw
HANG_S = 10         # an engine that is late by this much is killed


class Clock:
    """The time control of a game: seconds for each side, and an increment for each move."""

    def __init__(self, text):
        base, _, increment = text.partition("+")
        self.left = [float(base)] * 2
        self.increment = float(increment or 0)

    def go_command(self):
        white, black = (max(1, round(1000 * seconds)) for seconds in self.left)
        increment = round(1000 * self.increment)
        return f"go wtime {white} btime {black} winc {increment} binc {increment}"

    def spend(self, side, seconds):
        """Takes a move's time off the clock of a side; false when that side has run out of time."""
        self.left[side] -= seconds
        if self.left[side] < 0:
            return False
        self.left[side] += self.increment
        return True


class Referee:
    """The rules of chess, asked of stockfish."""

    def __init__(self):
        self.engine = UciEngine(["stockfish"])
        self.seen = Counter()

    def begin(self):
        self.seen.clear()

    def look(self, moves):
        """The position after the moves: (legal moves, the result if the game is over or None)."""
        lines = self.engine.ask(f"position startpos moves {' '.join(moves)}\ngo perft 1", "Nodes searched")[1]
        legal = {line.split(":")[0] for line in lines if line.endswith(": 1")}
        fields = dict(line.split(": ", 1) for line in self.engine.ask("d", "Checkers")[1] if ": " in line)
        board, side, castling, passant, halfmoves, _ = fields["Fen"].split()
        position = board, side, castling, passant
        self.seen[position] += 1
        if not legal:
            mated = fields.get("Checkers", "").strip()
            return legal, ("0-1" if side == "w" else "1-0") if mated else "1/2-1/2"
        pieces = [letter for letter in board.lower() if letter.isalpha() and letter != "k"]
        is_dead = not pieces or pieces in (["n"], ["b"])
        if is_dead or int(halfmoves) >= 100 or self.seen[position] == 3 or len(moves) >= LONGEST_GAME:
            return legal, "1/2-1/2"
        return legal, None


def ask_for_move(engine, moves, clock, side):
    """An engine's move and the seconds that it took."""
    watchdog = threading.Timer(clock.left[side] + HANG_S, engine.process.kill)
    watchdog.start()
    try:
        seconds, lines = engine.ask(f"position startpos moves {' '.join(moves)}\n{clock.go_command()}", "bestmove")
    finally:
        watchdog.cancel()
    return lines[-1].split()[1], seconds


def play(players, referee, opening, clock):
    """One game, players being White's engine and Black's: (result, how it was lost if not over the board)."""
    moves = list(opening)
    referee.begin()
    for engine in players:
        engine.ask("ucinewgame\nisready", "readyok")
    while True:
        legal, result = referee.look(moves)
        if result:
            return result, None
        side = len(moves) % 2
        lost = ("0-1", "1-0")[side]
        move, seconds = ask_for_move(players[side], moves, clock, side)
        if not clock.spend(side, seconds):
            return lost, "time"
        if move not in legal:
            return lost, f"the illegal move {move} after {' '.join(moves)}"
        moves.append(move)


def match(program, elo, games, control, referee):
    """A match against stockfish at one strength: the points of each game, from the engine's view."""
    own = UciEngine([program])
    other = UciEngine(["stockfish"], "setoption name UCI_LimitStrength value true",
                      f"setoption name UCI_Elo value {elo}")
    points = []
    for number in range(games):
        opening = OPENINGS[number // 2 % len(OPENINGS)]
        is_white = number % 2 == 0
        begin = time.monotonic()
        result, forfeit = play([own, other] if is_white else [other, own], referee, opening, Clock(control))
        points.append({"1-0": 1.0, "0-1": 0.0}.get(result, 0.5) if is_white else
                      {"1-0": 0.0, "0-1": 1.0}.get(result, 0.5))
        if forfeit:
            loser = "this engine" if points[-1] == 0 else "stockfish"
            print(f"game {number + 1}: {loser} lost by {forfeit}", file=sys.stderr)
        print(f"UCI_Elo {elo}, game {number + 1} of {games}: {result}, this engine {'White' if is_white else 'Black'}, "
              f"{time.monotonic() - begin:.0f} s; {sum(points):g} points", file=sys.stderr, flush=True)
    own.close()
    other.close()
    return points


def expected(rating, elo):
    """The share of points that a rating difference predicts."""
    return 1 / (1 + 10 ** ((elo - rating) / 400))


def estimate(results):
    """The rating under which the matches are most likely, and the half-width of its 95 % interval.

    results maps the opponents' ratings to the points of the games against them. When every point was won, or none,
    there is no such rating: then the answer is an infinity.
    """
    total = sum(map(sum, results.values()))
    games = sum(map(len, results.values()))
    if total in (0, games):
        return (math.inf if total else -math.inf), math.inf
    low, high = min(results) - 2000.0, max(results) + 2000.0
    while high - low > 0.1:
        middle = (low + high) / 2
        if sum(len(points) * expected(middle, elo) for elo, points in results.items()) < total:
            low = middle
        else:
            high = middle
    # Draws spread less than a win and a loss; the interval ignores that and so is a little too wide.
    information = sum(len(points) * expected(low, elo) * (1 - expected(low, elo)) for elo, points in results.items())
    return low, 1.96 * 400 / math.log(10) / math.sqrt(information)


def main():
    about = "Plays against stockfish at reduced strength and estimates the engine's rating on that scale."
    parser = argparse.ArgumentParser(prog="bench/strength", description=about)
    parser.add_argument("--engine", default=measure.ENGINE, type=os.path.abspath, metavar="PROGRAM",
                        help="default: the release build")
    parser.add_argument("--elo", type=int, nargs="+", default=[1350, 1600, 1850, 2100], metavar="ELO",
                        help="values of stockfish's UCI_Elo, at least 1350 (default: 1350 1600 1850 2100)")
    parser.add_argument("--games", type=int, default=60, metavar="N", help="for each of them (default: 60)")
    parser.add_argument("--time", default="2+0.02", metavar="BASE+INCREMENT", help="in seconds (default: 2+0.02)")
    options = parser.parse_args()
    if not os.access(options.engine, os.X_OK):
        parser.error(f"{options.engine} does not exist; script/build builds the engine")
    try:
        clock = Clock(options.time)
    except ValueError:
        parser.error(f"--time {options.time} is not BASE+INCREMENT")
    if options.games < 1 or not clock.left[0] > 0 or clock.increment < 0 or min(options.elo) < 1350:
        parser.error("--games and --time must be positive, --elo at least 1350")

    referee = Referee()
    try:
        results = {elo: match(options.engine, elo, options.games, options.time, referee) for elo in options.elo}
    except WrongAnswer as problem:
        sys.exit(f"bench/strength: {problem}")
    print("| UCI_Elo | won | drawn | lost | score |\n| ---: | ---: | ---: | ---: | ---: |")
    for elo, points in results.items():
        print(f"| {elo} | {points.count(1)} | {points.count(0.5)} | {points.count(0)} | "
              f"{100 * sum(points) / len(points):.1f} % |")
    rating, error = estimate(results)
    if math.isinf(rating):
        print("\nNo estimate: one side won every game.")
    else:
        print(f"\nAbout {rating:.0f} ± {error:.0f} (95 %) on the scale of stockfish's UCI_Elo at {options.time} s.")


if __name__ == "__main__":
    main()
