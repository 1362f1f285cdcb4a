"""What the measuring scripts share: running programs against the clock, and the search suite."""

import os
import re
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
ENGINE = ROOT / "build" / "release" / "zorvane"
SUITE = ROOT / "tests" / "data" / "suite.bench.tsv"


def three_digits(value):
    """A number with three digits, or with all of those before its point."""
    return f"{value:,.0f}" if value >= 1000 else f"{value:.3g}"


class WrongAnswer(Exception):
    """A program did not do the work that was to be timed, so its time means nothing."""


def install(packages):
    """Installs the Debian packages (package name to one of its files) whose file is missing."""
    missing = [package for package, path in packages.items() if not os.path.exists(path)]
    if missing:
        command = ["apt-get", "install", "-y", "-q", "--no-install-recommends", *missing]
        if os.geteuid() != 0:
            command.insert(0, "sudo")
        environment = dict(os.environ, DEBIAN_FRONTEND="noninteractive")
        if subprocess.run(command, env=environment, stdout=sys.stderr).returncode != 0:
            sys.exit("cannot install " + " ".join(missing))


def start(*command, stdout=None):
    """Starts a program on an empty standard input and returns its process id."""
    actions = [(os.POSIX_SPAWN_OPEN, 0, os.devnull, os.O_RDONLY, 0)]
    if stdout is not None:
        actions.append((os.POSIX_SPAWN_DUP2, stdout, 1))
    command = [str(word) for word in command]
    return os.posix_spawn(command[0], command, os.environ, file_actions=actions)


def run(*command):
    """Runs a program to its end: (seconds from start to end, its standard output).

    posix_spawn and a bare pipe, since subprocess adds about a millisecond of its own.
    """
    read_end, write_end = os.pipe()
    begin = time.perf_counter()
    pid = start(*command, stdout=write_end)
    os.close(write_end)
    with open(read_end, "rb") as pipe:
        output = pipe.read()
    status = os.waitpid(pid, 0)[1]
    seconds = time.perf_counter() - begin
    if status != 0:
        raise WrongAnswer(f"{' '.join(map(str, command))}: exit status {status}")
    return seconds, output.decode()


class UciEngine:
    """A UCI program over pipes, running until close."""

    def __init__(self, program, *setup):
        self.name = os.path.basename(program)
        self.process = subprocess.Popen(
            [program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1
        )
        self.ask("uci", "uciok")
        for line in setup:
            self.process.stdin.write(line + "\n")
        self.ask("isready", "readyok")

    def ask(self, commands, last):
        """Sends commands: (seconds until a line that begins with last, all lines up to it)."""
        begin = time.perf_counter()
        try:
            self.process.stdin.write(commands + "\n")
        except BrokenPipeError:
            pass  # its end shows below
        lines = []
        for line in self.process.stdout:
            lines.append(line.rstrip("\n"))
            if line.startswith(last):
                return time.perf_counter() - begin, lines
        raise WrongAnswer(f"{self.name}: ended before it answered {last!r}")

    def peak_memory(self):
        """Largest resident set so far in KiB.

        From /proc, not from wait4: the kernel hands the peak of the process that spawns on to the
        program it spawns, and this interpreter is larger than the engine.
        """
        status = Path(f"/proc/{self.process.pid}/status").read_text()
        return int(re.search(r"VmHWM:\s+(\d+) kB", status)[1])

    def close(self):
        self.process.communicate("quit\n")


def read_suite(path=SUITE):
    """The search suite: a list of (depth, FEN, answer without times)."""
    return [tuple(line.split("\t")) for line in path.read_text().splitlines()]


def answer(output):
    """The two result lines of a search in the form of the suite: without times, ends trimmed."""
    return " | ".join(re.sub(r" (time|nps) -?\d+", "", line).rstrip() for line in output.splitlines())


def nodes_of(text):
    return int(re.search(r" nodes (\d+)", text)[1])


def search(program, depth, fen, expected=None):
    """One search on the command line: (seconds from start to end, nodes)."""
    seconds, output = run(program, "--bench", depth, *([fen] if fen else []))
    if expected and not re.fullmatch(expected, answer(output)):
        raise WrongAnswer(f"depth {depth}, {fen or 'initial position'}: {answer(output)!r}")
    return seconds, nodes_of(output)
