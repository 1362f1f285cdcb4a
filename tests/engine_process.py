"""Shared by the Python tests: the engine as a process, UCI sessions, requests, tables of recorded values.

Environment:
  ZORVANE_ENGINE        command line of the engine, e.g. "wine64 /path/zorvane.exe"
  ZORVANE_TEST_SAMPLE   take only every n-th recorded case (1)
  ZORVANE_TEST_NODES    skip recorded trees larger than this (10000000)
  ZORVANE_TEST_HANG_S   seconds after which a process counts as hanging (120)
"""
import concurrent.futures
import contextlib
import dataclasses
import itertools
import os
import pathlib
import re
import shlex
import subprocess
import tempfile
import threading
import time
import unittest

# Settings of one machine must neither hide nor cause a fault in the tools, so they start without them.
KEPT = 'PYTHONDONTWRITEBYTECODE', 'PYTHONPYCACHEPREFIX'
for name in [name for name in os.environ if name.startswith('PYTHON') and name not in KEPT]:
    del os.environ[name]

ROOT = pathlib.Path(__file__).resolve().parent.parent
DATA = ROOT / 'tests' / 'data'
ENGINE = shlex.split(os.environ.get('ZORVANE_ENGINE', str(ROOT / 'build' / 'release' / 'zorvane')))
SAMPLE = int(os.environ.get('ZORVANE_TEST_SAMPLE', '1'))
LARGEST_TREE = int(os.environ.get('ZORVANE_TEST_NODES', '10000000'))
HANG_S = float(os.environ.get('ZORVANE_TEST_HANG_S', '120'))

# After these moves a search to depth 8 takes more than a hundred million nodes.
LONG_SEARCH = ('d2d4 g8f6 d1d3 e7e6 g1f3 f6e4 d3d1 c7c5 f3e5 h7h6 e2e3 d8b6 g2g3 b8c6 e5d3 c5d4 h2h3 h6h5 c2c4 f7f6 '
               'd1a4 g7g5 f1e2')

# A program that runs the engine, such as wine, ends with this code if it could not start it on a busy machine; the
# engine itself never does.
NOT_STARTED = 1
START_ATTEMPTS = 3 if len(ENGINE) > 1 else 1

# How often to time what a busy machine may delay, and how late it may be. The start of a program that runs the engine
# takes time of its own.
TIMED_ATTEMPTS = 10
LATE_MS = 300 if len(ENGINE) == 1 else 5000

# Bytes in a pipe, the fewest that the system has: who writes more than that waits for its reader.
SMALL_PIPE = 4096

native_only = unittest.skipIf(len(ENGINE) > 1, 'another program runs the engine here')


def run(command, **how):
    """Run a command to its end, by default without standard input; output and errors are text."""
    how = {'stdin': subprocess.DEVNULL, 'stdout': subprocess.PIPE, 'stderr': subprocess.PIPE, 'timeout': HANG_S} | how
    for _ in range(START_ATTEMPTS):
        done = subprocess.run(command, **how)
        if done.returncode != NOT_STARTED:
            break
    done.stdout, done.stderr = ((text or b'').decode(errors='replace').replace('\r\n', '\n')
                                for text in (done.stdout, done.stderr))
    return done


@contextlib.contextmanager
def started(command, **how):
    """Start a process that is killed at the end of the block if it still runs."""
    with subprocess.Popen(command, **how) as process:
        try:
            yield process
        finally:
            process.kill()


def in_time(measure, limit_ms):
    """Return whether measure(), in milliseconds, is at most LATE_MS over the limit in one of a few attempts."""
    return any(measure() <= limit_ms + LATE_MS for _ in range(TIMED_ATTEMPTS))


def run_engine(*arguments, **how):
    return run([*ENGINE, *arguments], **how)


def run_in_shell(line):
    """Run a shell command in which "$@" is the engine."""
    return run(['sh', '-c', line, 'sh', *ENGINE])


def side_by_side(work, items):
    """Return work(item) for all items, in order, running several at a time."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(work, items))


def without_times(line):
    return re.sub(r' (time|nps) -?\d+', '', line)


def unescape(text):
    """Return the text with escapes such as "\\n" replaced."""
    return text.encode().decode('unicode_escape')


def escape(text):
    return text.encode('unicode_escape').decode()


def table(name):
    """Return the rows of a table as lists of columns. Lines that begin with "#" are comments."""
    return [[unescape(column) for column in line.split('\t')]
            for line in (DATA / name).read_text().splitlines() if not line.startswith('#')]


class Session:
    """A UCI session over pipes. A hanging engine is killed, which ends its output."""

    def __enter__(self):
        self.process = subprocess.Popen(ENGINE, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.watchdog = threading.Timer(HANG_S, self.process.kill)
        self.watchdog.start()
        return self

    def __exit__(self, failure, *_):
        if failure is None and self.process.returncode is None:
            self.end()
        self.watchdog.cancel()
        self.process.kill()
        self.process.wait(HANG_S)
        for pipe in (self.process.stdin, self.process.stdout):
            with contextlib.suppress(OSError):
                pipe.close()
        if failure is None and self.process.returncode != 0:
            raise AssertionError(f'the engine ended with {self.process.returncode}')

    def send(self, *lines):
        """Send lines in one write."""
        self.process.stdin.write(''.join(line + '\n' for line in lines).encode())
        self.process.stdin.flush()

    def read_until(self, start):
        """Return the lines up to and including the first that begins with `start`, without times."""
        lines = []
        while not lines or not lines[-1].startswith(start):
            line = self.process.stdout.readline()
            if not line:
                raise AssertionError(f'the output ended before "{start}": {lines}')
            lines.append(without_times(line.decode().rstrip('\r\n')))
        return lines

    def ask(self, *lines):
        """Send lines that start no search and return the answers."""
        self.send(*lines, 'isready')
        return self.read_until('readyok')[:-1]

    def go(self, line):
        """Send a line that starts a search and return the answers up to its best move."""
        self.send(line)
        return self.read_until('bestmove')

    def memory_kib(self, field):
        """Return what the system reports about the memory of the process under this name."""
        return int(re.search(rf'{field}:\s+(\d+) kB', pathlib.Path(f'/proc/{self.process.pid}/status').read_text())[1])

    def processor_seconds(self):
        fields = pathlib.Path(f'/proc/{self.process.pid}/stat').read_text().rpartition(')')[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf('SC_CLK_TCK')

    def end(self):
        """Close the engine's input and return the rest of its output and its exit code."""
        rest = self.process.communicate()[0].decode().splitlines()
        return [without_times(line) for line in rest], self.process.returncode


@dataclasses.dataclass
class Outcome:
    """What a request left behind; `files` are the endings of the files beside it, '' is the request."""
    code: int
    complaint: str
    response: str | None
    error: str | None
    files: set


def request_text(token='tok', numbers='300000 1 0 0 0 0 0', position='position startpos', hints=(),
                 header='ZORVANE_C_REQUEST_1'):
    return ''.join(line + '\n' for line in (header, token, numbers, position, *hints)).encode()


def comparable(response):
    """Return a response without the elapsed time, which differs between equal requests."""
    lines = response.split('\n')
    if len(lines) > 6 and lines[1] == 'OK':
        lines[6] = '*'
    return '\n'.join(lines)


def beside(path, ending):
    return pathlib.Path(str(path) + ending)


def outcome_of(path, given=None, **how):
    """Run the engine on a request file, with the path in this form, and return the outcome."""
    done = run_engine('--request', given or path, **how)

    def text(ending):
        file = beside(path, ending)
        return file.read_bytes().decode() if file.is_file() else None
    name = os.path.basename(path)
    files = {file.name.removeprefix(name) for file in pathlib.Path(path).parent.iterdir()
             if file.name == name or file.name.startswith(name + '.')}
    return Outcome(done.returncode, done.stderr, text('.response'), text('.error.txt'), files)


class RequestCase(unittest.TestCase):
    """Base of tests that run requests, in a folder of their own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.names = map(str, itertools.count())

    def wait_for(self, condition):
        end = time.monotonic() + HANG_S
        while not condition():
            self.assertLess(time.monotonic(), end, 'nothing happened for too long')
            time.sleep(0.01)

    def run_request(self, content, name=None, **how):
        """Write a request (None: do not) under a name, by default a new one; run the engine and return the outcome."""
        path = os.path.join(self.folder, name or next(self.names))
        if content is not None:
            pathlib.Path(path).write_bytes(content)
        return outcome_of(path, **how)
