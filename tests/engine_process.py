"""What the Python tests share: the engine as a process, sessions with it, requests, recorded values.

Environment:
  ZORVANE_ENGINE        command line of the engine, e.g. "wine64 /path/zorvane.exe"
  ZORVANE_TEST_SAMPLE   take every n-th recorded case only (1)
  ZORVANE_TEST_NODES    pass over recorded trees larger than this (10000000)
  ZORVANE_TEST_HANG_S   seconds after which a process counts as hanging (120)
"""
import concurrent.futures
import dataclasses
import itertools
import os
import pathlib
import re
import shlex
import subprocess
import tempfile
import threading
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent
DATA = ROOT / 'tests' / 'data'
ENGINE = shlex.split(os.environ.get('ZORVANE_ENGINE', str(ROOT / 'build' / 'release' / 'zorvane')))
SAMPLE = int(os.environ.get('ZORVANE_TEST_SAMPLE', '1'))
LARGEST_TREE = int(os.environ.get('ZORVANE_TEST_NODES', '10000000'))
HANG_S = float(os.environ.get('ZORVANE_TEST_HANG_S', '120'))

# A search to depth 8 behind these moves takes a hundred million nodes and more.
LONG_SEARCH = ('d2d4 g8f6 d1d3 e7e6 g1f3 f6e4 d3d1 c7c5 f3e5 h7h6 e2e3 d8b6 g2g3 b8c6 e5d3 c5d4 h2h3 h6h5 c2c4 f7f6 '
               'd1a4 g7g5 f1e2')

# A program that runs the engine, such as wine, ends with this code when it could not start it on a busy machine; the
# engine itself never does.
NOT_STARTED = 1
START_ATTEMPTS = 3 if len(ENGINE) > 1 else 1

native_only = unittest.skipIf(len(ENGINE) > 1, 'the engine does not run on this system itself')


def run(command, **how):
    """Run a command to its end, by default with no standard input; output and errors are text."""
    how = {'stdin': subprocess.DEVNULL, 'stdout': subprocess.PIPE, 'stderr': subprocess.PIPE, 'timeout': HANG_S} | how
    for _ in range(START_ATTEMPTS):
        done = subprocess.run(command, **how)
        if done.returncode != NOT_STARTED:
            break
    done.stdout, done.stderr = ((text or b'').decode(errors='replace').replace('\r\n', '\n')
                                for text in (done.stdout, done.stderr))
    return done


def run_engine(*arguments, **how):
    return run([*ENGINE, *arguments], **how)


def run_in_shell(line):
    """Run a line of the shell in which "$@" is the engine."""
    return run(['sh', '-c', line, 'sh', *ENGINE])


def side_by_side(work, items):
    """The results of work(item) for all items, in order, some at a time."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(work, items))


def without_times(line):
    return re.sub(r' (time|nps) -?\d+', '', line)


def unescape(text):
    """The text with "\\n" and the like in place."""
    return text.encode().decode('unicode_escape')


def table(name):
    """The rows of a table, as lists of columns; lines that begin with "#" say what they mean."""
    return [[unescape(column) for column in line.split('\t')]
            for line in (DATA / name).read_text().splitlines() if not line.startswith('#')]


def recorded_blocks(name):
    """The cases of a recorded file, as lists of lines that begin with a "# name" line."""
    return ['# ' + block for block in (DATA / name).read_text()[2:].split('\n# ')][::SAMPLE]


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
        self.process.wait()
        if failure is None and self.process.returncode != 0:
            raise AssertionError(f'the engine ended with {self.process.returncode}')

    def send(self, *lines):
        """Send lines in one piece."""
        self.process.stdin.write(''.join(line + '\n' for line in lines).encode())
        self.process.stdin.flush()

    def read_until(self, start):
        """The lines up to and with the first that begins with `start`, without times."""
        lines = []
        while not lines or not lines[-1].startswith(start):
            line = self.process.stdout.readline()
            if not line:
                raise AssertionError(f'the output ended before "{start}": {lines}')
            lines.append(without_times(line.decode().rstrip('\r\n')))
        return lines

    def ask(self, *lines):
        """Send lines that start no search, give what the engine says to them."""
        self.send(*lines, 'isready')
        return self.read_until('readyok')[:-1]

    def go(self, line):
        """Send a line that starts a search, give all that is said up to its best move."""
        self.send(line)
        return self.read_until('bestmove')

    def end(self):
        """Close the engine's input, give the rest of its output and its exit code."""
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
    """A response without the elapsed time, which differs between equal requests."""
    lines = response.split('\n')
    if len(lines) > 6 and lines[1] == 'OK':
        lines[6] = '*'
    return '\n'.join(lines)


class RequestCase(unittest.TestCase):
    """Tests that run requests in a folder of their own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.names = map(str, itertools.count())

    def beside(self, path, ending):
        return pathlib.Path(str(path) + ending)

    def outcome(self, path, code, complaint):
        def text(ending):
            file = self.beside(path, ending)
            return file.read_bytes().decode() if file.is_file() else None
        name = os.path.basename(path)
        files = {file.name.removeprefix(name) for file in pathlib.Path(path).parent.iterdir()
                 if file.name == name or file.name.startswith(name + '.')}
        return Outcome(code, complaint, text('.response'), text('.error.txt'), files)

    def run_request(self, content, name=None, **how):
        """Write a request (None: do not) under a name, by default a new one; run the engine, give the outcome."""
        path = os.path.join(self.folder, name or next(self.names))
        if content is not None:
            pathlib.Path(path).write_bytes(content)
        done = run_engine('--request', path, **how)
        return self.outcome(path, done.returncode, done.stderr)
