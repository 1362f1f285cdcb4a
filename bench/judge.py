"""Measures how far the marks of zorvane-analyse agree with those of stockfish, over the games of a PGN file.

A move is bad when it costs 0.1 of the winning chances by stockfish, its own choice excepted. For each rule the table
says how many moves it marks, how many of those are bad, how many of the bad moves it marks, of all and of those that
cost 0.2, and what it searches: nodes, beside one search to depth 6 of every position.
"""

import argparse
import contextlib
import itertools
import json
import os
import random
import re
import sys
import threading
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import measure

sys.path.insert(0, str(measure.ROOT / "tools"))

import zorvane_judge as rule  # noqa: E402
from zorvane_pgn import RESULTS, Game, in_batches, parse_batch, read_games, read_text, split  # noqa: E402
from zorvane_uci import mover_score  # noqa: E402

BAD, COSTLY = 1000, 2000  # ten-thousandths of winning chances
UNIT_DEPTH = 6  # of the searches that costs are counted in
CENTIPAWNS = 50  # the loss that was marked before the rule
SHORTEST = 40  # half-moves of a game that is drawn from a file
JUDGE = "stockfish"
INFO = re.compile(r" depth (\d+) .*score (cp|mate) (-?\d+) (?!\w+bound).*nodes (\d+)")


class Answers:
    """What the programs found, by program, position and depth; kept in a file where there is one."""

    def __init__(self, path):
        self.lock = threading.Lock()
        self.known = {}
        self.file = path.open("a+") if path else None
        if self.file:
            self.file.seek(0)
            for line in self.file:
                with contextlib.suppress(ValueError):  # A line may be cut short by what ended its writer.
                    self.known.update([json.loads(line)])

    def get(self, program, position, depth):
        """The answer of a program to a position, searched when it is not known."""
        key = f"{program.name} {depth} {position}"
        if key not in self.known:
            answer = program.search(position, depth)
            with self.lock:
                self.known[key] = answer
                if self.file:
                    print("\n" + json.dumps([key, answer]), end="", file=self.file, flush=True)
        return self.known[key]


class Program:
    """A UCI program, started when it has something to search."""

    def __init__(self, command, *setup):
        self.name, self.command, self.setup, self.engine = Path(command).name, command, setup, None

    def search(self, position, depth):
        """One search: [score from the mover's view, depth, nodes, best move], None without a legal move."""
        self.engine = self.engine or measure.UciEngine([self.command], *self.setup)
        lines = self.engine.ask(f"ucinewgame\nposition {position}\ngo depth {depth}", "bestmove")[1]
        best = lines[-1].split()[1]
        if best in ("(none)", "0000"):
            return None
        found = [match for line in lines if (match := INFO.search(line))]
        reached, kind, score, nodes = found[-1].groups()
        return [mover_score(kind, int(score)), int(reached), int(nodes), best]

    def close(self):
        if self.engine:
            self.engine.close()


class Judged:
    """A game with what is asked about it and answered."""

    def __init__(self, game, options, known):
        self.game, self.known, self.answers = game.view(), known, {}
        self.engine = Program(str(options.engine.resolve()))
        self.judge, self.judge_depth = Program(JUDGE, "setoption name Hash value 32"), options.judge_depth
        self.last_move = options.moves
        self.plies = rule.judged(self.game, rule.Options(moves=(1, self.last_move)))

    def ask(self, program, question):
        moves = [ply.move for ply in self.game.plies[:question.ply]] + list(question.extra)
        start = f"fen {self.game.fen}" if self.game.fen else "startpos"
        found = self.known.get(program, " ".join([start] + ["moves"] * bool(moves) + moves), question.depth)
        if found is None:
            return rule.OVER
        score, depth, nodes, best = found
        black = rule.mover(self.game, question.ply + len(question.extra) + 1)
        return rule.Answer(-score if black else score, depth, nodes, [best])

    def ask_engine(self, questions):
        """Have the engine answer those of the questions that it has not answered yet."""
        for question in questions:
            if question not in self.answers:
                self.answers[question] = self.ask(self.engine, question)

    def close(self):
        self.engine.close()
        self.judge.close()

    def nodes(self, questions):
        return sum(self.answers[asked].nodes for asked in questions if self.answers[asked] != rule.OVER)

    def costs_by_judge(self):
        """What each move cost of the winning chances by the judge."""
        questions = [rule.Question(ply, (), self.judge_depth) for ply in positions(self.plies)]
        found = {asked: self.ask(self.judge, asked) for asked in questions}
        return {ply: lost_at(self.game, found, ply, self.judge_depth)[0] for ply in self.plies}


def positions(plies):
    """The positions before and after half-moves."""
    return sorted({ply - back for ply in plies for back in (0, 1)})


def lost_at(game, answers, ply, depth):
    """What a move lost at one depth, as lost_between gives it."""
    before, after = (rule.Question(ply - back, (), depth) for back in (1, 0))
    if answers[before].line[0] == game.plies[ply - 1].move:
        return 0, 0
    return rule.lost_between(game, answers, ply, before, after)


def by_centipawns(judged, depth):
    """The moves that lose more than CENTIPAWNS at one depth, as they were marked before the rule."""
    return by_one_depth(judged, depth, lambda lost: lost[1] > CENTIPAWNS)


def by_chances(judged, depth):
    """The moves that cost 0.1 of the winning chances at one depth."""
    return by_one_depth(judged, depth, lambda lost: lost[0] >= BAD)


def by_one_depth(judged, depth, marks):
    questions = [rule.Question(ply, (), depth) for ply in positions(judged.plies)]
    judged.ask_engine(questions)
    return {ply for ply in judged.plies if marks(lost_at(judged.game, judged.answers, ply, depth))}, questions


def by_rule(judged, depth):
    """The moves that the rule marks."""
    options, asked = rule.Options(depth=depth, moves=(1, judged.last_move)), {}
    while questions := rule.wanted(judged.game, options, asked):
        judged.ask_engine(questions)
        asked |= {question: judged.answers[question] for question in questions}
    return rule.judge(judged.game, options, asked).marks.keys(), asked


RULES = {"centipawns": by_centipawns, "winning chances": by_chances, "the rule": by_rule}


class Row:
    """What a rule at a depth came to, over all games."""

    def __init__(self):
        self.marks = self.right = self.costly = self.nodes = 0

    def add(self, judged, marked, asked, costs):
        marked = marked & costs.keys()
        self.marks += len(marked)
        self.right += sum(costs[ply] >= BAD for ply in marked)
        self.costly += sum(costs[ply] >= COSTLY for ply in marked)
        self.nodes += judged.nodes(asked)


def measure_game(game, options, known):
    """Judges a game: the costs of its moves, the nodes of the unit, and by rule and depth what came out."""
    with contextlib.closing(Judged(game, options, known)) as judged:
        costs = judged.costs_by_judge()
        unit = [rule.Question(ply, (), UNIT_DEPTH) for ply in positions(judged.plies)]
        judged.ask_engine(unit)
        return judged, costs, judged.nodes(unit), {(name, depth): marks(judged, depth)
                                                   for name, marks in RULES.items() for depth in options.depths}


def print_table(measured):
    """Prints the table of the rules, and what it was measured on."""
    costs = [cost for _, of_game, _, _ in measured for cost in of_game.values()]
    bad, costly = (sum(cost >= least for cost in costs) for least in (BAD, COSTLY))
    unit, rows = sum(nodes for _, _, nodes, _ in measured), defaultdict(Row)
    for judged, of_game, _, outcomes in measured:
        for key, (marked, asked) in outcomes.items():
            rows[key].add(judged, marked, asked, of_game)
    print(f"{len(measured)} games, {len(costs)} moves, {bad} bad, {costly} of them cost 0.2\n")
    print("| rule | marks | right | bad moves found | of those that cost 0.2 | cost |\n|---|---|---|---|---|---|")
    for (name, depth), row in rows.items():
        shares = [f"{part / whole:.0%}".replace("%", " %") if whole else "-"
                  for part, whole in ((row.right, row.marks), (row.right, bad), (row.costly, costly))]
        print(f"| {name}, depth {depth} | {row.marks} | {' | '.join(shares)} | {row.nodes / unit:.2f} |")


def all_games(paths):
    """The games of the files that can be analysed."""
    return [game for path in paths for game in read_games(path) if game.moves]


def drawn_games(paths, seed, first, last):
    """The games from the first to the last, counted from 1, of those drawn from the files by a seed."""
    games = [Game(0, *game) for path in paths for game in split(path.read_bytes())]
    random.Random(seed).shuffle(games)
    suitable = (game for game in in_batches(games, parse_batch) if is_suitable(game))
    return list(itertools.islice(suitable, first - 1, last))


def is_suitable(game):
    """Whether a game is long enough to be drawn and came to a result."""
    return len(game.moves.split()) >= SHORTEST and read_text(game.pgn).result != RESULTS[-1]


def number_range(text):
    first, last = map(int, text.split("-"))
    return first, last


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    add = parser.add_argument
    add("games", type=Path, nargs="+", metavar="GAMES.pgn", help="those that cannot be analysed are left out")
    add("--engine", type=Path, default=measure.ENGINE, help="the engine (build/release/zorvane)")
    add("--depths", type=int, nargs="+", default=[5, 6, 7], metavar="DEPTH", help="depths of the rules (5 6 7)")
    add("--judge-depth", type=int, default=15, metavar="DEPTH", help="depth of stockfish (15)")
    add("--moves", type=int, default=1000, metavar="N", help="moves of each game, from its beginning (all)")
    add("--draw", type=number_range, metavar="FIRST-LAST", help="those of the games drawn by the seed (all games)")
    add("--seed", type=int, default=1, metavar="N", help="of the draw (1)")
    add("--jobs", "-j", type=int, default=os.cpu_count() or 1, metavar="N", help="games side by side (all cores)")
    add("--answers", type=Path, metavar="FILE", help="keeps the answers of both programs, to try other rules at once")
    return parser.parse_args()


def main():
    options = parse_arguments()
    known = Answers(options.answers)
    games = drawn_games(options.games, options.seed, *options.draw) if options.draw else all_games(options.games)
    if not games:
        sys.exit("no game that can be analysed")
    with ThreadPoolExecutor(options.jobs) as pool:
        print_table(list(pool.map(lambda game: measure_game(game, options, known), games)))


if __name__ == "__main__":
    main()
