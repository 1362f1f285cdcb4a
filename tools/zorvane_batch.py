"""Many searches side by side by Zorvane's request files: what the command line tools share.

    with Batch(find_engine(), jobs=4) as batch:
        for request, result in batch.results(requests):
            ...
    if batch.interrupts:
        ...

`requests` may be a generator: it is asked, in another thread, for the next request when an engine is free, so that
few are held at a time. Results come in its order. What it raises, such as a Problem, comes out of `results` after
the results of all requests before it. zorvane_requests says what a request and a result are.
"""
import argparse
import contextlib
import json
import os
import pathlib
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

from zorvane_requests import CANCEL_IT, GO_ON, KILL_IT, POLL_S, Problem, clean_up, run

REQUEST_SUFFIX = '.request'
MOST_WAITING = 4096  # results that wait for an earlier one
HANGUP = getattr(signal, 'SIGHUP', signal.SIGTERM)  # Windows has none
PROGRAM = 'zorvane.exe' if os.name == 'nt' else 'zorvane'
# From the folder above this one: a build, the unpacked package for Windows, an installation.
PROGRAM_FOLDERS = ('build/release', '.', '../bin')


def split_command(command, windows=os.name == 'nt'):
    """Give the words of a command line by the rules of the system's shell."""
    words = shlex.shlex(command, posix=True)
    words.whitespace_split, words.commenters = True, ''
    if windows:
        words.quotes, words.escape = '"', ''
    try:
        return list(words)
    except ValueError:
        raise Problem(f'the engine {command} has a quotation that does not end') from None


def find_engine(command=None, run_here=True):
    """Give the engine's command line as a list: a program, or a program and its first arguments.

    None is the default. One to `run_here` must be there.
    """
    if command is None:
        above = pathlib.Path(__file__).resolve().parent.parent
        near = (above / folder / PROGRAM for folder in PROGRAM_FOLDERS)
        engine = [next((os.path.normpath(program) for program in near if program.is_file()), PROGRAM)]
    else:
        engine = [command] if shutil.which(command) else split_command(command)
    if not engine:
        raise Problem('the name of the engine is empty')
    if run_here and not shutil.which(engine[0]):
        raise Problem(f'there is no engine {engine[0]} to run: build it, or name it with --engine')
    return engine


def json_lines(path):
    """Give the values of a file of JSON, one a line. A line may be cut short by what ended its writer."""
    with open(path, encoding='ascii') as lines:
        for line in lines:
            with contextlib.suppress(ValueError):
                yield json.loads(line)


def ending_signals():
    """Give the signals that end a tool. Ctrl-C does even in a shell's background job, which begins without it."""
    ignored = {HANGUP} if signal.getsignal(HANGUP) == signal.SIG_IGN else set()  # as nohup wants it
    return {signal.SIGINT, signal.SIGTERM, HANGUP} - ignored


def request_path(folder, number):
    """Give where the request of a number is."""
    return folder / f'{number:06}{REQUEST_SUFFIX}'


class Batch:
    """Engines that work side by side, one on each request.

    Without a folder for the files it makes one of its own. With `keep` the files stay. It shows its progress, of
    `total` requests where that is known. `run` answers one request, as in zorvane_requests.

    Inside the context a first Ctrl-C, SIGTERM or SIGHUP cancels what runs and starts nothing more, a second kills;
    `results` ends after what was started. Leaving it cancels what still runs and waits for it.
    """

    def __init__(self, engine, folder=None, jobs=1, keep=False, total=None, quiet=True, run=run):
        self.engine, self.folder, self.jobs, self.keep, self.run = engine, folder, jobs, keep, run
        self.progress = Progress(total, quiet)
        self.leaving = self.ended = False
        self.interrupts = self.started = self.given = 0
        self.finished = {}  # but not given, by number
        self.reading = threading.Lock()
        self.changed = threading.Condition()

    def __enter__(self):
        self.handlers = {number: signal.signal(number, self._interrupt) for number in ending_signals()}
        self.temporary = None if self.folder else tempfile.TemporaryDirectory(prefix='zorvane-')
        self.folder = self.folder or pathlib.Path(self.temporary.name)
        return self

    def __exit__(self, *_):
        self.leaving = True
        with self.changed:
            while self.started > self.given + len(self.finished):
                self.changed.wait(POLL_S)
        if self.temporary:
            self.temporary.cleanup()
        for number, handler in self.handlers.items():
            signal.signal(number, handler)

    def results(self, requests):
        """Run an engine on each request; give pairs of request and result."""
        self.source = iter(requests)
        self._add_worker()
        while True:
            with self.changed:
                finished = self.given + len(self.finished)
                end = self.given == self.started and (self.ended or self.interrupts)
                self.progress.show(finished, self.started - finished, end)
                if end:
                    return
                if self.given + 1 not in self.finished:
                    self.changed.wait(POLL_S)
                    continue
                self.given += 1
                request, result = self.finished.pop(self.given)
            if isinstance(result, Exception):
                raise result
            yield request, result

    def _interrupt(self, *_):
        self.interrupts += 1

    def _urgency(self):
        return KILL_IT if self.interrupts > 1 else CANCEL_IT if self.interrupts or self.leaving else GO_ON

    def _add_worker(self):
        # A worker may wait for input for ever; as a daemon it does not keep the program from ending.
        threading.Thread(target=self._work, daemon=True).start()

    def _work(self):
        for number, request in iter(self._take, None):
            path = request_path(self.folder, number)
            try:
                if isinstance(request, Exception):
                    raise request
                try:
                    result = self.run(self.engine, path, request, self._urgency)
                finally:
                    if not self.keep:
                        clean_up(path)
            except Exception as problem:
                result = problem
            with self.changed:
                self.finished[number] = request, result
                self.changed.notify_all()

    def _take(self):
        """Give the next number and request, or what was raised instead; None when nothing more is to be started."""
        with self.reading:
            while self.started - self.given >= MOST_WAITING + self.jobs and not self._urgency():
                time.sleep(POLL_S)
            try:
                request = None if self.ended or self._urgency() else next(self.source, None)
            except Exception as problem:
                request = problem
            with self.changed:
                if request is None or self._urgency():
                    self.ended = True
                    self.changed.notify_all()
                    return None
                self.started += 1
                if self.started < self.jobs:
                    with contextlib.suppress(RuntimeError):  # The system gives no more; those that are there go on.
                        self._add_worker()
                return self.started, request


class Progress:
    """A line on standard error: rewritten in place on a terminal, now and then elsewhere."""

    def __init__(self, total, quiet):
        self.total = total
        self.quiet = quiet or sys.stderr is None
        self.terminal = not self.quiet and sys.stderr.isatty()
        self.start, self.last_s = time.monotonic(), 0

    def show(self, finished, running, end=False):
        """Show how many requests are done and running, unless that was shown just now."""
        elapsed = time.monotonic() - self.start
        if self.quiet or not end and elapsed - self.last_s < (0.2 if self.terminal else 2):
            return
        self.last_s = elapsed
        self.wipe()
        of = f' of {self.total}' if self.total is not None else ''
        text = f'{finished}{of} done, {running} running, {elapsed:.1f} s'
        if finished and self.total and not end:
            minutes, seconds = divmod(round(elapsed / finished * (self.total - finished)), 60)
            text += f', {finished / elapsed:.3g} a second, {minutes}:{seconds:02} left'
        print(text, end='' if self.terminal and not end else '\n', file=sys.stderr, flush=True)

    def wipe(self):
        """Make room for a line of other text."""
        if self.terminal:
            print('\r\033[K', end='', file=sys.stderr, flush=True)


def tool_parser(text):
    """Give the parser for a tool's command line, with what all tools have; `text` describes the tool."""
    head, _, rest = text.partition('\n')
    parser = argparse.ArgumentParser(description=head, epilog=rest,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    add = parser.add_argument
    add('--engine', metavar='COMMAND', help='the engine (one beside this program, or zorvane in the path)')
    add('--jobs', '-j', type=int, default=os.cpu_count() or 1, metavar='N', help='processes side by side (all cores)')
    add('--print-jobs', action='store_true', help='write the requests, print the command lines, run nothing')
    add('--quiet', '-q', action='store_true', help='no progress and no summary')
    return parser


def absolute(engine):
    """Give an engine's command line that holds in any current folder; a program in the search path keeps its name."""
    return [os.path.abspath(engine[0]) if os.path.dirname(engine[0]) else engine[0], *engine[1:]]


def job(engine, path):
    """Give the command line that answers a request, for a job runner."""
    return command_line([*absolute(engine), '--request', str(path)])


def command_line(words):
    """Give words as the system's shell reads them."""
    return subprocess.list2cmdline(words) if os.name == 'nt' else shlex.join(words)


def say(text):
    """Print a line for the user; what comes from a file must not drive the terminal."""
    name = os.path.basename(sys.argv[0])
    print(f'{name}:', ''.join(c if c.isprintable() else '?' for c in str(text)), file=sys.stderr)


def run_tool(main):
    """Run a tool to its exit status; what keeps it from its work is one line."""
    for number in ending_signals():
        signal.signal(number, signal.default_int_handler)
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        say('interrupted')
        sys.exit(130)
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        sys.exit(1)
    except (Problem, OSError, UnicodeError, subprocess.SubprocessError) as problem:
        named = isinstance(problem, OSError) and problem.filename is not None
        say(f'{problem.filename}: {problem.strerror}' if named else problem)
        sys.exit(2)
