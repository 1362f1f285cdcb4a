"""Shared by the measuring scripts: timing programs, talking UCI, and reading the search suite."""

import re
import subprocess
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
ENGINE = ROOT / "build" / "release" / "zorvane"
SUITE = ROOT / "tests" / "data" / "suite.bench.tsv"


class WrongAnswer(Exception):
    """A program did not do the work that was to be timed, so its time means nothing."""


def run(*command):
    """Run a program to its end and return (seconds, its standard output)."""
    begin = time.perf_counter()
    # With close_fds=False Python can avoid fork, which would take longer than the shortest runs.
    done = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          close_fds=False, text=True)
    seconds = time.perf_counter() - begin
    if done.returncode != 0:
        raise WrongAnswer(f"{' '.join(map(str, command))}: exit status {done.returncode}")
    return seconds, done.stdout


class UciEngine:
    """A UCI program over pipes, running until close."""

    def __init__(self, command, *setup):
        self.name = command[-1]
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)
        self.ask("uci", "uciok")
        self.ask("\n".join([*setup, "isready"]), "readyok")

    def ask(self, commands, last):
        """Send commands and return (seconds until a line that begins with last, all lines up to it)."""
        begin = time.perf_counter()
        try:
            self.process.stdin.write(commands + "\n")
        except BrokenPipeError:
            pass  # the loop below sees the end of its output
        lines = []
        for line in self.process.stdout:
            lines.append(line.rstrip("\n"))
            if line.startswith(last):
                return time.perf_counter() - begin, lines
        raise WrongAnswer(f"{self.name}: ended before it answered {last!r}")

    def close(self):
        self.process.communicate("quit\n")


def read_suite():
    """Return the search suite: a list of (depth, FEN, answer without times)."""
    return [line.split("\t") for line in SUITE.read_text().splitlines()]


def without_times(output):
    """Return what a search printed without its times, in one line."""
    return " | ".join(re.sub(r" (time|nps) -?\d+", "", line).rstrip() for line in output.splitlines())


def search(program, depth, fen, expected=None):
    """Run one search on the command line and return (seconds, nodes)."""
    seconds, output = run(program, "--bench", depth, *([fen] if fen else []))
    answer = without_times(output)
    if expected and answer != expected:
        raise WrongAnswer(f"depth {depth}, {fen or 'initial position'}: {answer!r}")
    return seconds, int(re.search(r" nodes (\d+)", output)[1])
