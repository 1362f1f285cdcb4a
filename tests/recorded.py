"""The recorded answers in tests/data and how to get them from the engine: tests compare, script/record rewrites.

As a program this module rewrites every file with the answers of the engine and prints how many lines of each changed.
"""
import difflib
import json
import os
import pathlib
import re
import shlex
import sys
import tempfile

from engine_process import (DATA, ENGINE, ROOT, Session, comparable, escape, outcome_of, request_text, run, run_engine,
                            side_by_side, table, unescape, without_times)

NUMBERS = ROOT / 'tools' / 'zorvane_numbers.json'
CHECK_DEPTH, DEEPEST_DEPTH = 6, 8       # searches of the initial position
ANALYSIS_DEPTH = 3
HOST_DEPTH = 1


# Tables: each procedure takes a row and returns it with the engine's answers filled in.

def ended(*arguments):
    """Run the engine to its end; raise AssertionError if it crashed."""
    done = run_engine(*arguments)
    if done.returncode not in (0, 2):
        raise AssertionError(f'exit code {done.returncode}: {arguments}')
    return done


def answer_to(*arguments):
    """Return what a run prints, without times and in one line; "error" if it fails."""
    done = ended(*arguments)
    return 'error' if done.returncode else ' | '.join(map(str.strip, without_times(done.stdout).splitlines()))


def perft(row):
    return [*row[:-1], answer_to('--perft', *row[:-1])]


def static_evaluation(row):
    return [*row[:-1], answer_to('--eval', '0', *row[:-1])]


def bench(row):
    return [*row[:-1], answer_to('--bench', *row[:-1])]


def command_line(row):
    done = ended(*row[3:])
    return [str(done.returncode), without_times(done.stdout), done.stderr, *row[3:]]


def request(row):
    numbers, position, hints, _ = row
    return [*row[:3], ask(request_text(numbers=numbers, position=position, hints=filter(None, hints.split(';'))))[1]]


def request_file(row):
    return [row[0], *ask(row[0].encode())]


def ask(content):
    """Return the token and the answer of the response to a request, as answer_of does."""
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, 'r')
        path.write_bytes(content)
        return answer_of(outcome_of(path))


def answer_of(outcome):
    """Return the token of the response ('' without one), and the error message or the numbers of the answer.

    The empty rows at the end of the best line are left out; lines beyond it follow after "; ". Raises AssertionError
    when exit code, complaint, error file and response do not agree.
    """
    token, status, *lines = comparable(outcome.response or '\n').split('\n')
    if outcome.code:
        answer = outcome.complaint.removeprefix('Zorvane request error: ').rstrip('\n')
        whole = (outcome.code, outcome.error, outcome.response) == (
            2, answer + '\n', f'{token}\nERROR\n{answer}\n' if token else None)
    else:
        whole = (outcome.complaint, outcome.error, outcome.files, lines[-1:]) == ('', None, {'', '.response'}, [''])
        if status == 'ERROR':
            answer = lines[0]
        else:
            numbers, best_line, more = lines[:7], lines[7:19], lines[19:-1]
            whole &= status == 'OK' and len(best_line) == 12
            answer = re.sub('(, 0 0 0 0 0 0)*$', '', ', '.join([' '.join(numbers), *best_line]))
            answer += ''.join('; ' + line for line in more)
    if not whole:
        raise AssertionError(f'this does not fit together: {outcome}')
    return token, answer


def host_lines(rows):
    """Take and return all rows at once, since the host answers all lines of its input in one run."""
    done = run([sys.executable, ROOT / 'tools' / 'zorvane-host', '--engine', shlex.join(ENGINE), '--file', '-',
                '--depth', str(HOST_DEPTH)], input=''.join(line + '\n' for line, _ in rows).encode(), stdin=None)
    if done.returncode not in (0, 1):
        raise AssertionError(done.stderr)
    answers = {int(n): answer for answer, n in re.findall(r'^\d+: (.*) \(standard input:(\d+)\)$', done.stdout, re.M)}
    return [[line, answers.get(n, '')] for n, (line, _) in enumerate(rows, 1)]


def quiescence(_):
    """Return all rows, from the unit tests in the engine's build folder."""
    with tempfile.TemporaryDirectory() as folder:
        program = pathlib.Path(ENGINE[0]).parent / 'tests' / 'zorvane_tests'
        done = run([program, '--gtest_filter=QuiescenceTest.EachRule*'], env=os.environ | {'ZORVANE_RECORD': folder})
        if done.returncode:
            raise AssertionError(done.stdout + done.stderr)
        return [line.split('\t') for line in pathlib.Path(folder, 'quiescence.tsv').read_text().splitlines()]


MODES = {'perft': perft, 'eval': static_evaluation, 'bench': bench}
TABLES = {'command_line.tsv': command_line, 'requests.tsv': request, 'request_texts.tsv': request_file}
TABLES |= {path.name: MODES[path.name.split('.')[1]] for path in sorted(DATA.glob('*.*.tsv'))}
WHOLE_TABLES = {'host_lines.tsv': host_lines, 'quiescence.tsv': quiescence}
SESSIONS = sorted(path.name for path in DATA.glob('*.uci'))


def check(case, name, rows):
    """Compare rows of one of TABLES with the engine's answers, each in a subtest of `case`."""
    for row, got in zip(rows, side_by_side(TABLES[name], rows)):
        with case.subTest(name, row=row[:4]):
            case.assertEqual(got, row)


# Other files

def sessions(name):
    """Return the recorded sessions of a file, each a text that begins with a "# name" line."""
    return ['# ' + block.rstrip('\n') for block in (DATA / name).read_text()[2:].split('\n# ')]


def play(session):
    """Return the text of a session with the engine's answers in place of the recorded ones."""
    got, *lines = session.split('\n')
    got = [got]
    with Session() as engine:
        for line in lines:
            if line == '> quit':
                engine.send('quit')
                got.append(line)
            elif line.startswith('> '):
                command = unescape(line[2:])
                answer = engine.go(command) if command.startswith('go') else engine.ask(command)
                got += [line, *('< ' + text for text in answer)]
        rest, code = engine.end()
    return '\n'.join([*got, *('< ' + text for text in rest), f'= {code}'])


def nodes_of(answer):
    return int(re.search(r' nodes (\d+)', answer)[1])


def numbers():
    """Return the contents of NUMBERS; the signature is that of the recorded suite."""
    small, large = (answer_to('--bench', str(depth)) for depth in (CHECK_DEPTH, DEEPEST_DEPTH))
    return {'signature': sum(nodes_of(row[-1]) for row in table('suite.bench.tsv')),
            'check': {'depth': CHECK_DEPTH, 'nodes': nodes_of(small)},
            'deepest': {'depth': DEEPEST_DEPTH, 'nodes': nodes_of(large), 'answer': large}}


def analysed():
    """Return what zorvane-analyse writes for games.pgn, as texts by the names of their files."""
    with tempfile.TemporaryDirectory() as folder:
        out, page = (pathlib.Path(folder, name) for name in ('out.pgn', 'out.html'))
        done = run([sys.executable, ROOT / 'tools' / 'zorvane-analyse', '--engine', shlex.join(ENGINE), '--quiet',
                    '--depth', str(ANALYSIS_DEPTH), DATA / 'games.pgn', '--pgn', out, '--html', page,
                    '--page', DATA / 'page_stub.html'])
        if done.returncode not in (0, 1):
            raise AssertionError(done.stderr)
        return {'analysed.pgn': out.read_text(), 'analysed.json': data_of(page)}


def data_of(page):
    """Return the data in a page without the time when it was written."""
    text = page.read_text().split('id="analysis">')[1].split('</script>')[0]
    return re.sub('"written":"[^"]*",', '', text) + '\n'


# Recording

def rewritten(name, answered):
    """Return the text of a table with these rows instead of its own; comments and equal columns stay as they are."""
    rows = iter(answered)

    def line_of(line):
        if not line or line.startswith('#'):
            return line
        return '\t'.join(old if unescape(old) == new else escape(new) for old, new in zip(line.split('\t'), next(rows)))
    return '\n'.join(map(line_of, (DATA / name).read_text().split('\n')))


def record(path, text):
    old, new = (text.split('\n') for text in (path.read_text(), text))
    matcher = difflib.SequenceMatcher(None, old, new, autojunk=False)
    changed = sum(max(i2 - i1, j2 - j1) for tag, i1, i2, j1, j2 in matcher.get_opcodes() if tag != 'equal')
    if changed:
        path.write_text(text)
    print(f'{path.relative_to(ROOT)}: {changed} of {len(new) - 1} lines changed', flush=True)


def main():
    for name, answered in TABLES.items():
        record(DATA / name, rewritten(name, side_by_side(answered, table(name))))
    for name, answered in WHOLE_TABLES.items():
        record(DATA / name, rewritten(name, answered(table(name))))
    for name in SESSIONS:
        record(DATA / name, '\n'.join(side_by_side(play, sessions(name))) + '\n')
    record(NUMBERS, json.dumps(numbers(), indent=2) + '\n')
    for name, text in analysed().items():   # the PGN contains the signature
        record(DATA / name, text)


if __name__ == '__main__':
    main()
