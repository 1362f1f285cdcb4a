"""One search by Zorvane's request files: write a request, run an engine on it, read the result.

    path = pathlib.Path('an/empty/folder/1.request')
    result = run(['build/release/zorvane'], path, Request(['e2e4', 'e7e5'], depth=6))
    clean_up(path)

A result is a dictionary. Its 'status' says what became of the request:
  ok         'move', 'score', 'depth', 'nodes', 'elapsed_ms', 'reason', 'legal_moves' as in the response, and
             'line', the best line as coordinate moves
  error      'error', what failed; perhaps 'explanation' and 'exit_code'
  cancelled  the request is gone without an answer, or its engine was asked to end
  missing    no answer yet: the engine still works, was killed, or has never run
docs/request-protocol.md describes the files. Needs Python 3.9 (dictionaries joined with "|").
"""
import dataclasses
import os
import secrets
import signal
import subprocess
import time

HEADER = 'ZORVANE_C_REQUEST_1'
POSITION = 'position startpos moves'
LONGEST_LINE = 16383
LONGEST_TIME_MS = 300000
MOST_HINTS = 256
RESPONSE_LINES = 21  # later engines may add more after them
NUMBERS = ('score', 'depth', 'nodes', 'elapsed_ms', 'reason', 'legal_moves')
FILES, RANKS = 'abcdefgh', '87654321'
MATE, LEAST_MATE = 900000, 800000
NO_SEARCH = 'Keine gueltige Stellung oder kein legaler Zug'
NO_SEARCH_MEANS = 'a move that is not legal, or mate or stalemate on the board'

# The files of a request, by what is added to its name.
RESPONSE, TEMPORARY, CANCEL, ERROR = '.response', '.response.tmp', '.cancel', '.error.txt'

# How urgently a running engine is to end.
GO_ON, CANCEL_IT, KILL_IT = range(3)

POLL_S = 0.05
OVERDUE_S = 10  # what an engine may take beyond its time limit, to start on a busy machine and to write
HEED_CANCEL_S = 5


class Problem(Exception):
    """What cannot be done, in words for the user."""


@dataclasses.dataclass
class Request:
    """What is to be searched. The defaults are the widest limits but for the time."""
    moves: list  # of the game from the initial position, in coordinate text
    time_ms: float = 10000
    depth: int = 8
    hash_kib: int = 1024
    flags: tuple = (1, 1, 0, 1)
    hints: tuple = ()  # of lines "move bonus penalty"
    token: str = dataclasses.field(default_factory=lambda: secrets.token_hex(8))  # unlike all others
    place: object = ''  # where it came from, for the caller; the engine does not see it

    def __post_init__(self):
        if len(POSITION) + sum(map(len, self.moves)) + len(self.moves) > LONGEST_LINE:
            raise Problem(f'{len(self.moves)} moves do not fit the line of a request')
        if len(self.hints) > MOST_HINTS:
            raise Problem(f'{len(self.hints)} hints, but a request holds {MOST_HINTS}')

    def text(self):
        """Give what the request file holds."""
        numbers = [f'{self.time_ms:.15g}', *(str(int(n)) for n in (self.depth, self.hash_kib, *self.flags))]
        position = ' '.join([POSITION, *self.moves]) if self.moves else POSITION.removesuffix(' moves')
        return '\n'.join([HEADER, self.token, ' '.join(numbers), position, *self.hints]) + '\n'


def beside(path, ending):
    """Give the path with an ending added to its name."""
    return path.with_name(path.name + ending)


def write(path, request):
    """Write the request file."""
    path.write_bytes(request.text().encode())


def cancel(path):
    """Ask the engine that works on the request to end."""
    beside(path, CANCEL).touch()


def clean_up(path):
    """Remove all files of a request, when no engine works on it any more."""
    for ending in ('', RESPONSE, TEMPORARY, CANCEL, ERROR):
        beside(path, ending).unlink(missing_ok=True)


def start(engine, *arguments, **pipes):
    """Start an engine, a list of a program and its first arguments.

    It is not hit by the terminal's Ctrl-C, so that whoever started it decides.
    """
    try:
        return subprocess.Popen([*engine, *arguments], start_new_session=True, **pipes,
                                creationflags=getattr(subprocess, 'CREATE_NEW_PROCESS_GROUP', 0))
    except OSError as problem:
        raise Problem(f'the engine {engine[0]} does not start: {problem.strerror}') from None


def end_process(process):
    """Kill an engine that start() started, with the program that runs it if there is one, unless it has ended."""
    if os.name == 'nt':
        process.kill()
    elif process.poll() is None:
        os.killpg(process.pid, signal.SIGKILL)
    process.wait()


def run(engine, path, request, urgency=lambda: GO_ON):
    """Write the request, have an engine answer it, give the result. The files stay.

    An engine that has not ended soon after its time limit, or at once when `urgency` says so, gets the cancel file and
    then is killed. `urgency` is asked every POLL_S.
    """
    write(path, request)
    end = time.monotonic() + min(LONGEST_TIME_MS, request.time_ms) / 1000 + OVERDUE_S
    complaint, urged, cancelled, killed = b'', GO_ON, False, False
    process = start(engine, '--request', str(path), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                    stderr=subprocess.PIPE)
    try:
        while not killed:
            try:
                complaint = process.communicate(timeout=POLL_S)[1]
                break
            except subprocess.TimeoutExpired:
                urged, now = urgency(), time.monotonic()
            if cancelled:
                killed = urged == KILL_IT or now > end
            elif urged or now > end:
                cancel(path)
                cancelled, end = True, now + HEED_CANCEL_S
    finally:
        end_process(process)
        process.stderr.close()
    result = read_result(path, request.token, process.returncode, complaint.decode(errors='replace'))
    if result['status'] == 'ok' or not killed and not (cancelled and result['status'] == 'cancelled'):
        return result
    late = f'no answer {OVERDUE_S} s after the time limit: the engine was {"killed" if killed else "asked to end"}'
    return {'status': 'cancelled'} if urged else {'status': 'error', 'error': late}


def read_result(path, token, exit_code=None, complaint=''):
    """Give what became of a request, from the files beside it.

    `exit_code` and `complaint`, the engine's text on standard error, are for who ran the engine itself.
    """
    response, error = beside(path, RESPONSE), beside(path, ERROR)
    reason = error.read_text('utf-8', 'replace').strip() if error.exists() else ''
    if response.exists():
        result = read_response(response.read_text('utf-8', 'replace'), token)
    elif not path.exists() and not exit_code:
        return {'status': 'cancelled'}  # An error file is left by an engine that came later.
    elif exit_code is None and not reason:
        return {'status': 'missing'}  # An empty error file is no answer.
    else:
        result = {'status': 'error', 'error': reason or complaint.strip() or 'the engine ended without an answer'}
    if result.get('error') == NO_SEARCH:
        result['explanation'] = NO_SEARCH_MEANS
    return result if exit_code is None or result['status'] == 'ok' else result | {'exit_code': exit_code}


def read_response(text, token):
    """Give the result that a response is. Lines after those that we know are for later hosts."""
    lines = text.split('\n')[:-1]  # A line that was cut short is none.
    if lines[:2] == [token, 'ERROR'] and len(lines) > 2:
        return {'status': 'error', 'error': lines[2].strip()}
    try:
        if lines[:2] == [token, 'OK'] and len(lines) >= RESPONSE_LINES:
            return {'status': 'ok', 'move': lines[2], **dict(zip(NUMBERS, map(int, lines[3:9]))),
                    'line': best_line(lines[9:RESPONSE_LINES])}
    except (ValueError, IndexError):
        pass  # no numbers, or no squares
    return {'status': 'error', 'error': 'the response is not one to this request'}


def best_line(rows):
    """The moves of the response's last twelve lines, in coordinate text."""
    moves = []
    for row in rows:
        counts, from_file, from_row, to_file, to_row, piece = map(int, row.split())
        if not counts:
            break
        promotion = 'q' if piece in (1, 11) and to_row in (0, 7) else ''
        moves.append(FILES[from_file] + RANKS[from_row] + FILES[to_file] + RANKS[to_row] + promotion)
    return moves


def mate_in(score):
    """The moves to the mate that a score means, negative when White is mated; 0 when it means none."""
    half_moves = MATE - abs(score)
    return 0 if half_moves > MATE - LEAST_MATE else (half_moves + 1) // 2 * (1 if score > 0 else -1)
