"""Compares two builds of the engine, each linked in several layouts of its code and data.

Where the linker puts functions and data changes a program's speed by 1.4 to 3 %, whatever was edited. So both builds
are linked again from their objects, in the same drawn orders, and the means over all layouts are compared. Of each
command the quickest run counts, in processor time: what else the machine does only makes runs slower.
"""

import os
import subprocess
import sys
import tempfile
from collections import defaultdict
from pathlib import Path
from statistics import mean, stdev

from measure import WrongAnswer, without_times

SHUFFLED = (".text*", ".rodata*", ".data*", ".bss*")  # others may depend on their order


def link(program, seed, layout):
    """Link a program again as the file `layout`, in the order of sections that the seed, 1 or more, stands for."""
    listed = subprocess.run(["ninja", "-C", program.parent, "-t", "commands", program.name],
                            capture_output=True, text=True).stdout.splitlines()
    output = f" -o {program.name} "
    if not listed or output not in listed[-1]:
        sys.exit(f"{program} cannot be linked again: give the program in the folder where it was built")
    shuffle = " ".join(f"-Wl,--shuffle-sections='{section}={seed}'" for section in SHUFFLED)
    subprocess.run(listed[-1].replace(output, f" -o '{layout}' {shuffle} "), shell=True, cwd=program.parent, check=True)


def workloads(plan):
    """Return the commands of each row of the table."""
    rows = {f"search suite, {len(plan.suite)} positions": [("--bench", depth, fen) for depth, fen, _ in plan.suite]}
    for name, fen, depth in plan.perfts:
        rows[f"`--perft {depth}`, {name}"] = [("--perft", depth, *([fen] if fen else []))]
    return rows


def run(program, command):
    """Run a command of a program and return (processor time in seconds, its output)."""
    with subprocess.Popen([program, *map(str, command)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          text=True) as process:
        output = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise WrongAnswer(f"{command}: exit status {process.returncode}")
    return usage.ru_utime + usage.ru_stime, output


def quickest(commands, programs, rounds):
    """Return for each program the sum over the commands of its quickest run, in seconds; they take turns."""
    total = defaultdict(float)
    for command in commands:
        times, answers = defaultdict(list), set()
        for number in range(rounds):
            for program in programs if number % 2 else reversed(programs):
                seconds, output = run(program, command)
                times[program].append(seconds)
                answers.add(without_times(output))
        if len(answers) != 1:
            raise WrongAnswer(f"{' '.join(map(str, command))}: the builds differ")
        for program in programs:
            total[program] += min(times[program])
    return total


def table(plan, builds, layouts, rounds):
    """Return a Markdown table of both builds: means over the layouts and their spread."""
    rows = ["| what | this engine | earlier build | time | spread over layouts |", "| --- | ---: | ---: | ---: | --- |"]
    with tempfile.TemporaryDirectory() as folder:
        linked = {who: [Path(folder, f"{who} {seed}") for seed in range(1, layouts + 1)] for who in builds}
        for who, programs in linked.items():
            for seed, layout in enumerate(programs, 1):
                link(Path(builds[who]), seed, layout)
        for what, commands in workloads(plan).items():
            print(f"{layouts} layouts: {what}", file=sys.stderr)
            total = quickest(commands, [program for pair in zip(*linked.values()) for program in pair], rounds)
            own, other = ([total[program] for program in programs] for programs in linked.values())
            spread = ", ".join(f"{stdev(times) / mean(times):.1%}".replace("%", " %") for times in (own, other))
            cells = what, f"{mean(own):.3f} s", f"{mean(other):.3f} s", f"{mean(own) / mean(other):.3f}", spread
            rows.append(f"| {' | '.join(cells)} |")
    return "\n".join(rows)
