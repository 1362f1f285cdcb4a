"""Measures the engine against other programs and earlier builds, and prints medians and ratios.

All programs take turns within each round, so that changes in the machine's speed affect all of them equally.
Ratios are taken within a round, and the median over the rounds is printed.
"""

import argparse
import datetime
import json
import os
import re
import subprocess
import sys
import tempfile
import time
from collections import defaultdict
from math import sqrt
from pathlib import Path
from statistics import median

import charts
import layouts
import measure
from measure import UciEngine, WrongAnswer, run, search

OTHER_POSITION = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1"
RECORDED = json.loads((measure.ROOT / "tools" / "zorvane_numbers.json").read_text())["deepest"]
DEEPEST, DEEPEST_ANSWER = RECORDED["depth"], RECORDED["answer"]
MEAN = "both, geometric mean"
LAYOUT_NOISE = 0.03  # how far two links of the same objects can differ
REPORT = measure.ROOT / "docs" / "performance.md"
BEGIN, END = "<!-- bench/compare: begin -->", "<!-- bench/compare: end -->"


class Plan:
    """How much is measured. A quick plan only shows that the tools work; its numbers are rough."""

    def __init__(self, quick):
        self.perfts = [("initial position", None, 5 if quick else 6),
                       ("middlegame position", OTHER_POSITION, 4 if quick else 5)]
        self.suite = measure.read_suite()[: 6 if quick else None]
        # toga2 prints no rate during its first second.
        self.toga_ms = 1500 if quick else 3000
        self.depth = 6 if quick else DEEPEST
        self.move_ms = 100 if quick else 1000
        self.starts = 30 if quick else 100


# Each step below yields what it measured, for which program, and the value in this round.


def perft(plan, builds, stockfish):
    """Yield leaves per second for each program and position."""
    products = defaultdict(lambda: 1.0)
    for name, fen, depth in plan.perfts:
        stockfish.ask(f"position {'fen ' + fen if fen else 'startpos'}\nisready", "readyok")
        seconds, lines = stockfish.ask(f"go perft {depth}", "Nodes searched")
        leaves = int(lines[-1].split()[-1])
        times = {"stockfish": seconds}
        for who, program in builds.items():
            times[who], output = run(program, "--perft", depth, *([fen] if fen else []))
            if output != f"{leaves}\n":
                raise WrongAnswer(f"--perft {depth}, {name}: {output!r}, should be {leaves}")
        for who, seconds in times.items():
            products[who] *= leaves / seconds
            yield f"`--perft {depth}`, {name}", who, leaves / seconds
    for who, product in products.items():
        yield MEAN, who, sqrt(product)


def suite(plan, builds, toga):
    """Yield nodes per second: for the suite by the run time of the processes, for toga2 as it prints them."""
    what = f"search suite, {len(plan.suite)} positions"
    toga.ask("ucinewgame\nposition startpos\nisready", "readyok")
    lines = toga.ask(f"go movetime {plan.toga_ms}", "bestmove")[1]
    printed = [int(rate) for rate in re.findall(r" nps ([1-9]\d*)", "\n".join(lines))]
    if not printed:
        raise WrongAnswer("toga2 printed no nodes per second")
    yield what, "toga2", printed[-1]
    runs = {who: [] for who in builds}
    for position in plan.suite:
        for who, program in builds.items():
            runs[who].append(search(program, *position))
    for who, taken in runs.items():
        seconds, nodes = map(sum, zip(*taken))
        yield what, who, nodes / seconds


def time_to_depth(plan, builds):
    """Yield the run time in seconds of a search of the initial position to each depth."""
    for depth in range(1, plan.depth + 1):
        # The first few take hardly longer than starting a process, which varies widely.
        repeats = 15 if depth < 6 else 1
        expected = DEEPEST_ANSWER if depth == DEEPEST else None
        runs = [search(builds["engine"], depth, None, expected)[0] for _ in range(repeats)]
        yield f"`--bench {depth}`, initial position", "engine", median(runs)


def iterations(plan, builds):
    """Yield the iterations completed within a time limit, summed over the positions."""
    engines = {who: UciEngine([program]) for who, program in builds.items()}
    depths = defaultdict(int)
    for _, fen, _ in plan.suite:
        for who, engine in engines.items():
            engine.ask(f"ucinewgame\nposition fen {fen}\nisready", "readyok")
            lines = engine.ask(f"go movetime {plan.move_ms}", "bestmove")[1]
            depths[who] += int(re.search(r"depth (\d+)", lines[-2])[1])
    for who, engine in engines.items():
        engine.close()
        yield f"iterations completed, `go movetime {plan.move_ms}`, {len(plan.suite)} positions", who, depths[who]


def start_up(plan, builds):
    """Yield the run time in seconds of a program that has almost nothing to do."""
    program = builds["engine"]
    pairs = [(run(program, "--perft", 0)[0], run("/bin/true")[0]) for _ in range(plan.starts)]
    yield "`--perft 0`, start to end", "engine", median(own for own, _ in pairs)
    yield "more than `/bin/true`, in turn", "engine", median(own - other for own, other in pairs)


def requests(plan, builds):
    """Yield the seconds of a request at depth 1, and from writing a cancel file to the end of the process."""
    with tempfile.TemporaryDirectory() as folder:
        path, response = Path(folder, "request"), Path(folder, "request.response")
        body = "ZORVANE_C_REQUEST_1\nbench\n300000 {} 1024 1 1 0 0\nposition startpos\n"
        times = []
        for _ in range(plan.starts):
            path.write_text(body.format(1))
            times.append(run(builds["engine"], "--request", path)[0])
            if not response.exists() or not response.read_text().startswith("bench\nOK\n"):
                raise WrongAnswer("--request: no response")
            response.unlink()
        yield "`--request` at depth 1, start to end", "engine", median(times)
        path.write_text(body.format(DEEPEST))
        process = subprocess.Popen([builds["engine"], "--request", path], stdin=subprocess.DEVNULL)
        time.sleep(0.2)
        begin = time.perf_counter()
        Path(folder, "request.cancel").touch()
        # No timeout here: with one, wait() only polls.
        status = process.wait()
        yield "cancel file written, to end of process", "engine", time.perf_counter() - begin
        if status != 0 or os.listdir(folder):
            raise WrongAnswer("--request: not cancelled")


def memory(plan, builds):
    """Yield the peak resident set of a search in bytes."""
    engine = UciEngine([builds["engine"]])
    engine.ask(f"position startpos\ngo depth {plan.depth}", "bestmove")
    # Not from wait4: the child inherits the peak of this interpreter, which is larger than the engine's own.
    peak = re.search(r"VmHWM:\s+(\d+) kB", Path(f"/proc/{engine.process.pid}/status").read_text())
    yield f"peak resident memory, search to depth {plan.depth}", "engine", 1024 * int(peak[1])
    engine.close()


def rate(per_second):
    value = per_second / 1e6
    return f"{value:,.0f} million/s" if value >= 1000 else f"{value:.3g} million/s"


def duration(seconds):
    return f"{seconds:.3g} s" if seconds >= 1 else f"{seconds * 1000:.3g} ms"


def mebibytes(size):
    return f"{size / 2**20:.1f} MiB"


# How the values of each step are printed, in the order of the table.
FORMATS = {perft: rate, suite: rate, time_to_depth: duration, iterations: "{:g}".format, start_up: duration,
           requests: duration, memory: mebibytes}


def measure_all(plan, builds, rounds):
    """Return the samples of each step: {what: {program: [value of each round]}}. A step that fails is left out."""
    stockfish = UciEngine(["stockfish"], "setoption name Threads value 1")
    stockfish.ask("position startpos\ngo perft 4", "Nodes searched")
    toga = UciEngine(["toga2"], "setoption name OwnBook value false", "setoption name Number of Threads value 1")
    peers = {perft: [stockfish], suite: [toga]}
    taken = {step: {} for step in FORMATS}
    for number in range(1, rounds + 1):
        for step, samples in list(taken.items()):
            print(f"round {number} of {rounds}: {step.__name__}", file=sys.stderr)
            try:
                for what, who, value in step(plan, builds, *peers.get(step, [])):
                    samples.setdefault(what, {}).setdefault(who, []).append(value)
            except WrongAnswer as problem:
                print(f"{step.__name__} left out: {problem}", file=sys.stderr)
                del taken[step]
        # The two builds swap places after each round.
        builds = dict(reversed(builds.items()))
    stockfish.close()
    toga.close()
    return taken


def table(taken):
    """Return the Markdown table of medians, and of ratios within a round with their range.

    A "≈" marks ratios of two builds of the engine that the layout of their code alone could explain.
    """
    rows = [["what", "this engine", "against", "ratio", "range"], ["---", "---:", "---:", "---:", "---"]]
    for step, samples in taken.items():
        show = FORMATS[step]
        for what, values in samples.items():
            own, others = values["engine"], {who: other for who, other in values.items() if who != "engine"}
            for who, other in others.items():
                ratios = [a / b for a, b in zip(own, other)]
                alike = "≈ " if who == "earlier build" and abs(median(ratios) - 1) < LAYOUT_NOISE else ""
                rows.append([what, show(median(own)), f"{who}: {show(median(other))}", f"{alike}{median(ratios):.2f}",
                             f"{min(ratios):.2f} to {max(ratios):.2f}"])
            if not others:
                rows.append([what, show(median(own)), "", "", f"{show(min(own))} to {show(max(own))}"])
    return "\n".join(f"| {' | '.join(row)} |" for row in rows)


def origin(rounds):
    """Return when, on what kind of machine and against which versions the numbers were taken."""
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    query = ["dpkg-query", "-W", "-f", "${Package} ${Version}; ", "stockfish", "toga2"]
    versions = subprocess.run(query, capture_output=True, text=True).stdout
    machine = f"{model[1].strip() if model else os.uname().machine}, {os.cpu_count()} cores"
    return f"{datetime.date.today()}; {machine}; {versions}rounds: {rounds}."


def write_charts(taken, folder):
    """Write both charts from what was measured, without earlier builds."""
    panels = {what.replace("`", ""): {("this engine" if who == "engine" else who): median(values[who])
                                      for who in ("engine", "stockfish", "toga2") if who in values}
              for step in (perft, suite) for what, values in taken.get(step, {}).items() if what != MEAN}
    if panels:
        charts.bar_chart("Nodes or leaves per second, one thread each", panels, rate, folder / "nodes-per-second.svg")
    if time_to_depth in taken:
        times = [median(values["engine"]) for values in taken[time_to_depth].values()]
        charts.log_chart("Time to depth", "Initial position, process from start to end", "depth in iterations",
                         dict(enumerate(times, 1)), duration, folder / "time-to-depth.svg")


def main():
    about = "Measures the engine against stockfish, toga2 and an earlier build of its own."
    parser = argparse.ArgumentParser(prog="bench/compare", description=about)
    parser.add_argument("--engine", default=measure.ENGINE, type=os.path.abspath, metavar="PROGRAM",
                        help="default: the release build")
    parser.add_argument("--baseline", type=os.path.abspath, metavar="PROGRAM",
                        help="an earlier build to compare with")
    parser.add_argument("--rounds", type=int, metavar="N", help="default: 5, or 1 with --quick")
    parser.add_argument("--layouts", type=int, metavar="N",
                        help="link both builds in N layouts, 2 or more, and compare the means of their times only")
    parser.add_argument("--quick", action="store_true", help="a small, rough run")
    parser.add_argument("--json", type=Path, metavar="FILE", help="write the samples of all rounds")
    parser.add_argument("--report", action="store_true", help="write the table and the charts into docs/")
    options = parser.parse_args()
    rounds = max(options.rounds or (1 if options.quick else 5), 1)
    builds = {"engine": options.engine} | ({"earlier build": options.baseline} if options.baseline else {})
    for program in builds.values():
        if not os.access(program, os.X_OK):
            parser.error(f"{program} does not exist; script/build builds the engine")
    if options.layouts is not None:
        if options.layouts < 2 or not options.baseline:
            parser.error("--layouts needs 2 or more, and --baseline")
        try:
            print(f"{origin(rounds)}\n\n{layouts.table(Plan(options.quick), builds, options.layouts, rounds)}")
        except WrongAnswer as problem:
            sys.exit(str(problem))
        return
    taken = measure_all(Plan(options.quick), builds, rounds)
    text = f"{origin(rounds)}\n\n{table(taken)}"
    print(text)
    if options.json:
        samples = {what: values for step in taken.values() for what, values in step.items()}
        options.json.write_text(json.dumps(samples, indent=1) + "\n")
    if options.report:
        before, _, rest = REPORT.read_text().partition(BEGIN)
        REPORT.write_text(f"{before}{BEGIN}\n{text}\n{END}{rest.partition(END)[2]}")
        write_charts(taken, REPORT.parent)


if __name__ == "__main__":
    main()
