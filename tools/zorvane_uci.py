"""One search over UCI, in an engine process of its own: for positions that a request file has no form for.

    result = search(['build/release/zorvane'], Position('4k3/8/8/8/8/8/4P3/4K3 w - - 0 1', ['e2e4'], depth=6))

A result is one as in zorvane_requests; its line has the best move only, which is all that UCI gives. Its status may
also be `refused`: the position or a move is not legal, as the engine sees it, and never will be.
"""
import contextlib
import dataclasses
import json
import re
import subprocess
import threading
import time

from zorvane_requests import (GO_ON, LONGEST_LINE, LONGEST_TIME_MS, MATE, NO_SEARCH, OVERDUE_S, POLL_S, Problem, beside,
                              end_process, start)

ANSWER, UNFINISHED = '.answer', '.answer.tmp'
INFO = re.compile(r'info depth (?P<depth>\d+) score (?P<unit>cp|mate) (?P<score>-?\d+) nodes (?P<nodes>\d+)')


@dataclasses.dataclass
class Position:
    """What is to be searched: a start, the moves from there in coordinate text, and limits."""
    fen: str
    moves: list
    time_ms: float = LONGEST_TIME_MS
    depth: int = 8
    token: str = ''  # for the caller, like the place
    place: object = ''

    def __post_init__(self):
        if len(self.text().partition('\n')[0]) > LONGEST_LINE:
            raise Problem(f'{len(self.moves)} moves do not fit a line of UCI')

    def text(self):
        """The lines for the engine. A depth alone has the longest time."""
        moves = ' '.join(['', 'moves', *self.moves]) if self.moves else ''
        limit = '' if self.time_ms >= LONGEST_TIME_MS else f' movetime {self.time_ms:.15g}'
        return f'position fen {self.fen}{moves}\ngo depth {self.depth}{limit}\n'


def search(engine, position, urgency=lambda: GO_ON):
    """Have an engine search a position, give the result. It is killed when it is overdue or `urgency` says so."""
    end = time.monotonic() + min(LONGEST_TIME_MS, position.time_ms) / 1000 + OVERDUE_S
    process = start(engine, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    lines, read = [], threading.Event()
    reader = threading.Thread(target=_read, args=(process, position.text(), lines, read), daemon=True)
    reader.start()
    urged = False
    while not read.wait(POLL_S) and not urged:
        urged = urgency() or time.monotonic() > end
    end_process(process)
    reader.join(OVERDUE_S)
    for pipe in (process.stdin, process.stdout):
        with contextlib.suppress(OSError):
            pipe.close()
    if urged and not (lines and lines[-1].startswith('bestmove')):
        late = f'no answer {OVERDUE_S} s after the time limit: the engine was killed'
        return {'status': 'cancelled'} if urgency() else {'status': 'error', 'error': late}
    return read_lines(lines, position)


def _read(process, text, lines, read):
    """Send the lines and read the answer; the input stays open until it is there, as its end would end the search."""
    try:
        with contextlib.suppress(OSError):  # The engine may have ended without reading; what it said counts.
            process.stdin.write(text.encode())
            process.stdin.flush()
        for line in process.stdout:
            lines.append(line.decode(errors='replace').rstrip())
            if lines[-1].startswith('bestmove'):
                break
    finally:
        read.set()


def read_lines(lines, position):
    """Give the result that an engine's lines are."""
    infos = [info for info in map(INFO.match, lines) if info]
    best = lines[-1].split() if lines else []
    complaint = next((line for line in lines if line.startswith('info string')), '')
    if complaint:
        return {'status': 'refused', 'error': complaint.removeprefix('info string ')}
    if not infos or best[:1] != ['bestmove'] or len(best) < 2:
        return {'status': 'error', 'error': ' '.join(lines) or 'the engine ended without an answer'}
    if best[1] == '0000':
        return {'status': 'error', 'error': NO_SEARCH}
    info = infos[-1]
    score = mover_score(info['unit'], int(info['score']))
    black = (position.fen.split()[1] == 'b') != len(position.moves) % 2
    return {'status': 'ok', 'move': best[1], 'score': score * (-1 if black else 1), 'depth': int(info['depth']),
            'nodes': int(info['nodes']), 'line': [best[1]]}


def mover_score(unit, number):
    """Give centipawns from the mover's view for the words `cp N` or `mate N` of UCI, mates as requests have them."""
    if unit == 'cp':
        return number
    return MATE - (2 * number - 1) if number > 0 else -(MATE + 2 * number)


def answer_file(engine, path):
    """Answer the position in a file beside it, for a job runner."""
    try:
        position = Position(**json.loads(path.read_text('ascii')))
    except (ValueError, TypeError):
        raise Problem(f'{path} is not a position that --print-jobs wrote') from None
    answer = json.dumps({'token': position.token, 'result': search(engine, position)})
    beside(path, UNFINISHED).write_text(answer, 'ascii')
    beside(path, UNFINISHED).replace(beside(path, ANSWER))


def write(path, position):
    """Write a position for answer_file."""
    path.write_text(json.dumps(dataclasses.asdict(position)), 'ascii')


def read_answer(path, token):
    """Give the result beside a position's file. A damaged one is missing, so that it is asked for again."""
    try:
        answer = json.loads(beside(path, ANSWER).read_text('ascii'))
    except (FileNotFoundError, ValueError):
        return {'status': 'missing'}
    return answer['result'] if answer['token'] == token else {'status': 'error', 'error': 'the answer is to another'}


def clean_up(path):
    """Remove all files of a position that no job works on any more."""
    for ending in ('', ANSWER, UNFINISHED):
        beside(path, ending).unlink(missing_ok=True)
