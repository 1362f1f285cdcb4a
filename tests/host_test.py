"""The example host tools/zorvane-host with the real engine: results, cancelling, job lines, many at once."""
import functools
import json
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import sys
import threading
import time
import unittest
import unittest.mock

from engine_process import (ENGINE, HANG_S, LONG_SEARCH, ROOT, SMALL_PIPE, RequestCase, native_only, side_by_side,
                            started, table)
from recorded import answer_to, nodes_of

sys.path.insert(0, str(ROOT / 'tools'))
import zorvane_batch  # noqa: E402
import zorvane_requests  # noqa: E402
import zorvane_uci  # noqa: E402
from zorvane_judge import RULE  # noqa: E402
from zorvane_pgn import START_FEN  # noqa: E402
from zorvane_requests import CANCEL_IT, GO_ON, KILL_IT  # noqa: E402

HOST = [sys.executable, str(ROOT / 'tools' / 'zorvane-host'), '--engine', shlex.join(ENGINE)]
ENDLESS = LONG_SEARCH + ' depth=8 time=300000'
QUICK = ['startpos', *'a2a3 b2b3 c2c4 d2d4 e2e4 f2f3 g1f3 b1c3 h2h4 g2g3'.split(), 'e2e4 e7e5 g1f3 b8c6 f1b5',
         'd2d4 g8f6 c2c4 g7g6 b1c3 f8g7 e2e4']


class Host(RequestCase):

    def run_to_end(self, *arguments, text=''):
        """Run the host to its end and give the finished process."""
        return subprocess.run([*HOST, *arguments], input=text, capture_output=True, text=True, timeout=3 * HANG_S,
                              cwd=self.folder)

    def host(self, *arguments, code=0, text=''):
        """Run the host to its end; its output as lines."""
        done = self.run_to_end(*arguments, text=text)
        self.complaint = done.stderr
        self.assertEqual(done.returncode, code, done.stderr)
        return done.stdout.splitlines()

    def file(self, name, *lines):
        """A file of these lines."""
        path = self.folder / name
        path.write_text(''.join(line + '\n' for line in lines))
        return path

    def test_one_position(self):
        line, = self.host('startpos', '--depth', '2')
        info = re.search(r' score cp (.*) nodes (.*) pv (.*) \|', answer_to('--bench', '2'))
        self.assertRegex(line, '^1: {2} score {0} depth 2 nodes {1} reason 0 line {2} ....$'.format(*info.groups()))
        self.assertRegex(self.complaint, r'1 of 1 done, 0 running, \d{1,3}\.\d s\n')
        engine = self.folder / 'an engine'
        engine.symlink_to(shutil.which(ENGINE[0]))
        hints = self.file('hints', *['g1f3 1 0'] * 255, 'a7a8q 1 0')
        line, = self.host('--quiet', '--depth', '1', '--hints', hints, 'startpos',
                          *(['--engine', engine] if len(ENGINE) == 1 else []))
        self.assertRegex(line, '^1: g1f3 score -?[0-9]+ depth 1 nodes [0-9]+ reason 2 line g1f3$')
        self.assertEqual(self.complaint, '')

    @native_only
    def test_terminal(self):
        """There, progress is one line, which makes room for results."""
        slow = shlex.join(['sh', '-c', f'sleep 0.5; exec {shlex.join(ENGINE)} "$@"', 'sh'])
        reader, terminal = os.openpty()
        with open(reader, newline='\n') as screen:
            with open(terminal) as output:
                subprocess.run([*HOST, '--engine', slow, 'startpos', '--depth', '1'], stdout=output, stderr=output,
                               timeout=HANG_S)
            first, last = screen.readline(), screen.readline()
        self.assertRegex(first, r'^(\r\x1b\[K[01] of 1 done, [01] running, [^\r\n]*)+\r\x1b\[K1: .* line ....\r\n$')
        self.assertRegex(last, r'^\r\x1b\[K1 of 1 done, 0 running, \d+\.\d s\r\n$')

    def test_lines_and_json(self):
        self.file('-', 'not this')
        rows = table('host_lines.tsv')
        text = ''.join(line + '\n' for line, _ in rows)
        want = [f'{answer} (standard input:{n})' for n, (_, answer) in enumerate(rows, 1) if answer]
        lines = self.host('--file', '-', '--depth', '1', text=text, code=1)
        self.assertEqual(lines, [f'{number}: {line}' for number, line in enumerate(want, 1)])
        results = [json.loads(line) for line in self.host('--file', '-', '--json', '--depth', '1', text=text, code=1)]
        self.assertEqual([r['number'] for r in results], list(range(1, len(want) + 1)))
        del results[0]['elapsed_ms']
        self.assertEqual(results[0], {
            'number': 1, 'place': 'standard input:2', 'moves': ['f2f3', 'e7e5', 'g2g4'], 'status': 'ok',
            'move': 'd8h4', 'score': -899999, 'depth': 1, 'nodes': nodes_of(want[0]), 'reason': 0, 'legal_moves': 30,
            'line': ['d8h4']})
        self.assertEqual((results[2]['error'], results[2]['exit_code']), ('Search parameters out of range', 2))

    def test_wrong_use(self):
        self.file('hints', 'e2e4 1 2', 'Nf3 8 0')
        self.file('long', 'e2e4 ' * 3271 + 'a7a8q')
        self.file('empty', '# none')
        self.file('no comment', 'e2e4#')
        (self.folder / 'old').mkdir()
        self.file('old/000001.request.response')
        self.file('digits', '46440 1 0', '46441 1 0')
        self.file('many', *['g1f3 1 0'] * 257)
        (self.folder / 'latin').write_bytes(b'e2e4\n# Gr\xfc\xdfe\n')
        rows = table('host_wrong_use.tsv')
        commands = [[word.format(folder=self.folder) for word in shlex.split(arguments)] for arguments, _ in rows]
        outcomes = side_by_side(lambda command: self.run_to_end(*command), commands)
        for (arguments, complaint), done in zip(rows, outcomes):
            self.assertEqual(done.returncode, 2, done.stderr)
            self.assertIn(complaint, done.stderr, arguments)
        self.assertFalse((self.folder / 'new').exists())

    def started_on(self, lines, folder, *arguments):
        """A host that works on these lines in a folder."""
        return started([*HOST, '--file', lines, '--folder', folder, '--jobs', '2', *arguments],
                       stdout=subprocess.PIPE, stderr=subprocess.PIPE, pipesize=SMALL_PIPE, text=True)

    def test_interrupt(self):
        """Ctrl-C and its kind cancel what runs, start nothing more, and leave no files; so does a lost reader."""
        lines, folder = self.file('lines', 'e2e4 depth=1', *[ENDLESS] * 5), self.folder / 'run'
        running = self.folder / 'running'
        engine = shlex.join(['sh', '-c', f'echo >>{shlex.quote(str(running))}; exec {shlex.join(ENGINE)} "$@"', 'sh'])
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            running.write_text('')
            with self.started_on(lines, folder, '--engine', engine, '--quiet') as host:
                first = host.stdout.readline()
                self.wait_for(lambda: running.read_text() == '\n' * 3)
                host.send_signal(number)
                rest, complaint = host.communicate(timeout=HANG_S)
            self.assertTrue(first.startswith('1: '))
            self.assertEqual(rest.splitlines(), [f'{n}: cancelled ({lines}:{n})' for n in (2, 3)])
            self.assertEqual(complaint, f'zorvane-host: interrupted; nothing after {lines}:3 was started\n')
            self.assertEqual((host.returncode, list(folder.iterdir())), (130, []))
        with self.started_on(self.file('quick', *QUICK * 20), folder, '--depth', '1') as host:
            host.stdout.readline()
            host.stdout.close()
            self.assertEqual((host.wait(HANG_S), list(folder.iterdir())), (1, []))

    def test_under_nohup(self):
        with started(['sh', '-c', 'trap "" HUP; exec "$@"', 'sh', *HOST, '--file', self.file('quick', *QUICK * 5),
                      '--depth', '1', '--quiet'], stdout=subprocess.PIPE) as host:
            host.stdout.readline()
            host.send_signal(signal.SIGHUP)
            self.assertEqual((len(host.stdout.readlines()), host.wait(HANG_S)), (64, 0))

    def test_commands(self):
        self.assertEqual(zorvane_batch.job(['bin/engine', 'a b'], 'r'), f"{os.getcwd()}/bin/engine 'a b' --request r")
        self.assertEqual(zorvane_batch.job(['engine'], 'r'), 'engine --request r')
        self.assertEqual(zorvane_batch.split_command('C:\\engine.exe "a b"', True), ['C:\\engine.exe', 'a b'])
        handler = signal.getsignal(signal.SIGINT)
        with zorvane_batch.Batch([]):
            self.assertNotEqual(signal.getsignal(signal.SIGINT), handler)
        self.assertEqual(signal.getsignal(signal.SIGINT), handler)
        batch = zorvane_batch.Batch([])
        for batch.interrupts, urgency in enumerate((GO_ON, CANCEL_IT, KILL_IT)):
            self.assertEqual(batch._urgency(), urgency)
        with zorvane_batch.Batch([], self.folder, run=lambda _, path, *__: path.touch()) as batch:
            self.assertEqual(list(batch.results('ab')), [('a', None), ('b', None)])
            self.assertEqual(os.listdir(self.folder), [])

    def test_killed(self):
        """What a killed host has not shown can be collected, and then the folder be used again."""
        lines, folder = self.file('lines', 'e2e4 depth=1', 'd2d4 depth=2', ENDLESS), self.folder / 'run'
        running, free = self.folder / 'running', self.folder / 'free'
        gate = (f'case $2 in *1.request) ;; *) echo >>{shlex.quote(str(running))}; '
                f'until [ -e {shlex.quote(str(free))} ]; do sleep 0.1; done; esac; ')
        engine = shlex.join(['sh', '-c', gate + f'exec {shlex.join(ENGINE)} "$@"', 'sh'])
        with self.started_on(lines, folder, '--engine', engine) as host:
            self.assertTrue(host.stdout.readline().startswith('1: '))
            self.wait_for(lambda: running.exists() and running.read_text() == '\n\n'
                          and not list(folder.glob('000001.*')))
            host.kill()
        (folder / '000001.request.response').touch()  # as if killed before it was removed
        with open(folder / 'zorvane.jobs', 'a') as record:
            record.write('\n{"number": 4, "pla')  # and while it wrote that
        free.touch()
        self.wait_for((folder / '000002.request.response').exists)
        self.host('startpos', '--folder', str(folder), code=2)
        self.assertIn('already holds', self.complaint)
        (folder / '000003.request.cancel').touch()
        self.wait_for(lambda: not (folder / '000003.request').exists())
        second, third = self.host('--collect', str(folder), code=1)
        self.assertRegex(second, '^2: .* depth 2 ')
        self.assertEqual(third, f'3: cancelled ({lines}:3)')
        self.host('startpos', '--folder', str(folder), '--depth', '1')
        self.assertEqual(os.listdir(folder), [])

    def test_watchdog(self):
        """An engine beyond its time is cancelled, and killed when it does not heed that, with all that it started."""
        child, path = self.folder / 'child', self.folder / 'r'
        deaf = ['sh', '-c', f'sleep 1000 & echo $! >{shlex.quote(str(child))}; wait']
        request = zorvane_requests.Request(LONG_SEARCH.split())
        for engine, heed_s, end in (ENGINE, HANG_S, 'asked to end'), (deaf, 0.2, 'killed'):
            with unittest.mock.patch.multiple(zorvane_requests, LONGEST_TIME_MS=500, OVERDUE_S=0.2,
                                              HEED_CANCEL_S=heed_s):
                self.assertIn(end, zorvane_requests.run(engine, path, request)['error'])
            zorvane_requests.clean_up(path)
        if child.exists():  # A busy machine may not have come to that.
            state = pathlib.Path(f'/proc/{child.read_text().strip()}/stat')
            self.wait_for(lambda: not state.exists() or state.read_text().split()[2] == 'Z')
        lives_on = ['sh', '-c', f'{shlex.join(ENGINE)} "$@"; sleep 1000', 'sh']
        response = zorvane_requests.beside(path, zorvane_requests.RESPONSE)
        result = zorvane_requests.run(lives_on, path, zorvane_requests.Request([], depth=1),
                                      lambda: KILL_IT if response.exists() else GO_ON)
        self.assertEqual((result['status'], result['depth']), ('ok', 1))

    def test_late_and_urgent(self):
        """An engine may take long to start; one that is to be killed gets no time to heed a cancel."""
        slow = ['sh', '-c', f'sleep 0.3; exec {shlex.join(ENGINE)} "$@"', 'sh']
        deaf = ['sh', '-c', 'sleep 30']     # which ends by itself when it is not killed
        path, request = self.folder / 'r', zorvane_requests.Request(LONG_SEARCH.split(), 100)
        with unittest.mock.patch.multiple(zorvane_requests, HEED_CANCEL_S=1000, OVERDUE_S=1000):
            for engine, urgency, want in ((slow, GO_ON, 'ok'), (deaf, KILL_IT, 'cancelled')):
                result = zorvane_requests.run(engine, path, request, lambda urgency=urgency: urgency)
                self.assertEqual(result['status'], want)
                zorvane_requests.clean_up(path)
        with unittest.mock.patch.multiple(zorvane_uci, OVERDUE_S=1000):
            self.assertEqual(zorvane_uci.search(slow, zorvane_uci.Position(START_FEN, [], 100))['status'], 'ok')

    def test_results(self):
        """What the files of a request mean, to who ran the engine and to who did not."""
        path, row = self.folder / 'r', '0 0 0 0 0 0\n'
        answer = f't\nOK\ne2e4\n7\n1\n20\n3\n0\n20\n1 4 6 4 4 1\n{row * 11}'
        for files, exit_code, want in (
                ({'': 'r', '.response': answer}, 0, 'ok'), ({'': 'r', '.response': answer + 'more\nand'}, 0, 'ok'),
                ({'': 'r', '.response': answer[:-1]}, 0, 'not one to this request'),
                ({'': 'r', '.response': answer.replace(row, '', 1)}, 0, 'not one to this request'),
                ({'': 'r', '.response': answer.replace('t', 'u', 1)}, 0, 'not one to this request'),
                ({'': 'r', '.response': answer.replace('20', 'x')}, 0, 'not one to this request'),
                ({'': 'r', '.response': '\udcff'}, 0, 'not one to this request'),
                ({'': 'r', '.response': 't\nERROR\nno\n'}, 2, 'no'),
                ({'': 'r', '.response': 't\nERROR\nno'}, 2, 'not one to this request'),
                ({'': 'r', '.response': 'u\nERROR\nno\n'}, 2, 'not one to this request'),
                ({'': 'r', '.error.txt': ''}, 2, 'the disk'),
                ({'': 'r', '.error.txt': ''}, None, 'missing'), ({'': 'r', '.error.txt': 'n\udcff\n'}, None, 'n\ufffd'),
                ({'.error.txt': 'no\n'}, None, 'cancelled'), ({'': 'r'}, None, 'missing'), ({}, 0, 'cancelled')):
            for ending, text in files.items():
                zorvane_requests.beside(path, ending).write_text(text, errors='surrogateescape')
            result = zorvane_requests.read_result(path, 't', exit_code, 'the disk is full')
            self.assertIn(want, result.get('error', result['status']), files)
            if want == 'ok':
                self.assertEqual((result['score'], result['legal_moves'], result['line']), (7, 20, ['e2e4']))
            zorvane_requests.clean_up(path)
        zorvane_uci.beside(path, zorvane_uci.ANSWER).write_text('{"token": "u", "result": {"status": "ok"}}')
        self.assertEqual([zorvane_uci.read_answer(path, token)['status'] for token in 'tu'], ['error', 'ok'])

    def test_uci(self):
        """Positions by UCI have the answers that they have by request; scores are from White's view."""
        moves = ['e2e4', 'e7e5', 'g1f3']
        asked = zorvane_requests.run(ENGINE, self.folder / 'r', zorvane_requests.Request(moves, depth=4))
        answer = zorvane_uci.search(ENGINE, zorvane_uci.Position(START_FEN, moves, depth=4))
        self.assertEqual(answer | {'line': answer['line'][:1]}, {key: asked[key] for key in answer} | {
            'line': asked['line'][:1]})
        for fen, want in table('uci_positions.tsv'):
            result = zorvane_uci.search(ENGINE, zorvane_uci.Position(fen, [], depth=4))
            self.assertEqual(str(result.get('score', result.get('error'))), want, fen)
        for engine, overdue_s, want in ((['false'], HANG_S, 'ended without an answer'),
                                        (['sleep', '30'], 0.2, 'killed'),
                                        (['sh', '-c', 'read line; echo no luck >&2'], HANG_S, 'no luck')):
            with unittest.mock.patch.multiple(zorvane_uci, OVERDUE_S=overdue_s):
                result = zorvane_uci.search(engine, zorvane_uci.Position(START_FEN, [], 100))
            self.assertIn(want, result['error'])
        self.assertEqual(zorvane_uci.search(['sleep', '1000'], zorvane_uci.Position(START_FEN, []), lambda: True),
                         {'status': 'cancelled'})

        damaged = self.folder / 'p'
        zorvane_uci.beside(damaged, zorvane_uci.ANSWER).write_text('{"token": "t", ')
        self.assertEqual(zorvane_uci.read_answer(damaged, 't'), {'status': 'missing'})

    def test_shared_numbers(self):
        """The limits and texts that the tools know are those of the engine."""
        def answer(moves=(), **fields):
            path, request = self.folder / 'r', zorvane_requests.Request([], depth=1, flags=(1, 1, 1, 1))
            vars(request).update(fields, moves=moves)  # without a check of the limits
            zorvane_requests.clean_up(path)
            result = zorvane_requests.run(ENGINE, path, request)
            return result.get('error') or result['move']
        longest, most, deepest = zorvane_requests.LONGEST_TIME_MS, zorvane_requests.MOST_HINTS, RULE['deepest']
        self.assertEqual(answer('f2f3 e7e5 g2g4'.split(), time_ms=longest, depth=deepest), 'd8h4')
        for fields in ({'time_ms': longest + 1}, {'depth': deepest + 1}):
            self.assertEqual(answer(**fields), 'Search parameters out of range')
        for count, move in ((most, 'g1f3'), (most + 1, 'b1c3')):
            self.assertEqual(answer(hints=['a2a3 0 0'] * (count - 1) + ['g1f3 1 0']), move)
        lines = (self.folder / 'r.response').read_text().splitlines()
        self.assertGreaterEqual(len(lines), zorvane_requests.RESPONSE_LINES)
        # The engine does not see an illegal move that does not fit the line.
        fitting = (zorvane_requests.LONGEST_LINE - len(zorvane_requests.POSITION)) // len(' e2e4')
        moves = ['g1f3', 'g8f6', 'f3g1', 'f6g8'] * (fitting // 4)
        self.assertEqual(len(moves), fitting)
        self.assertEqual(answer([*moves[:-1], 'e2e5']), zorvane_requests.NO_SEARCH)
        self.assertEqual(len(answer([*moves, 'e2e5'])), 4)

    def test_handed_on(self):
        """Options reach the request; a job is printed when its request and record are on the disk."""
        for number, (arguments, line) in enumerate(table('host_numbers.tsv')):
            folder = self.folder / str(number)
            with started([*HOST, '--file', '-', '--folder', folder, '--print-jobs', '--quiet', *arguments.split(),
                          '--engine', '/elsewhere/engine'], stdin=subprocess.PIPE,
                         stdout=subprocess.PIPE, text=True) as host:
                host.stdin.write('e2e4\n' * 5000)  # more than is read at once
                host.stdin.flush()
                request = folder / '000001.request'
                self.assertEqual(host.stdout.readline(), f'/elsewhere/engine --request {shlex.quote(str(request))}\n')
                self.assertEqual(request.read_text().splitlines()[2], line)
                self.assertIn('"number": 1', (folder / 'zorvane.jobs').read_text())

    def test_old_python(self):
        for name in ('zorvane-host', 'zorvane-analyse'):
            code = ('import os, runpy, sys; sys.version_info = (3, 8, 18); sys.argv = sys.argv[1:]; '
                    'sys.path.insert(0, os.path.dirname(sys.argv[0])); runpy.run_path(sys.argv[0])')
            done = subprocess.run([sys.executable, '-c', code, ROOT / 'tools' / name], capture_output=True, text=True,
                                  timeout=HANG_S)
            self.assertEqual((done.returncode, done.stderr), (
                1, f'{name}: this is Python 3.8, but it needs 3.9 or later\n'))

    def test_job_lines(self):
        lines, folder = self.file('lines', *QUICK), str(self.folder / 'runs' / 'a shared folder')
        print_jobs = ('--file', str(lines), '--depth', '2', '--folder', 'runs/a shared folder', '--print-jobs')
        jobs = self.host(*print_jobs)
        self.assertEqual(len(self.host('--collect', folder, code=1)), len(jobs))    # nothing is there, nothing is lost
        self.host(*print_jobs, code=2)
        self.assertIn('already holds', self.complaint)
        home = os.environ | {'HOME': str(self.folder)}
        run = functools.partial(subprocess.run, ['parallel', '--will-cite', '--jobs', '2', '--sshlogin', ':'],
                                text=True, timeout=HANG_S, env=home)
        want = self.host('--file', str(lines), '--depth', '2')
        # The first is cancelled, the second killed; the others run, and are run again.
        want[:2] = f'1: cancelled ({lines}:1)', f'2: missing ({lines}:2)'
        first, second = (os.path.join(folder, f'00000{n}.request') for n in (1, 2))
        os.remove(first)
        for name in (first + '.error.txt', second + '.response.tmp', os.path.join(folder, 'no.request')):
            with open(name, 'w') as file:
                file.write('left')
        run(input='\n'.join(jobs[2:] * 2), check=True)
        for options in (['--keep'], []):
            self.assertEqual(self.host('--collect', folder, *options, code=1), want)
            self.assertIn('11 answered, 0 failed, 1 cancelled, 1 missing', self.complaint)
        self.assertEqual(self.host('--folder', folder, '--print-jobs'), jobs[1:2])
        run(input=jobs[1], check=True)
        self.assertEqual(len(self.host('--collect', folder)), 1)
        self.assertEqual(os.listdir(folder), ['no.request'])
        run(input=jobs[2])
        self.assertEqual(self.host(*print_jobs), jobs)

    def test_many_requests(self):
        """Four at a time, every 25th endless until something else cancels it."""
        quick = [f'{moves} depth={depth}' for depth in (1, 2, 3) for moves in QUICK]
        alone = [line.split(': ')[1] for line in self.host('--file', self.file('quick', *quick), '--jobs', '1')]
        endless, folder = range(24, 400, 25), self.folder / 'run'
        lines = self.file('lines', *(ENDLESS if n in endless else quick[n % len(quick)] for n in range(400)))

        def cancel():
            for n in endless:
                request = folder / f'{n + 1:06}.request'
                self.wait_for(request.exists)
                time.sleep(n % 3 * 0.005)
                request.with_name(request.name + '.cancel').touch()

        canceller = threading.Thread(target=cancel)
        canceller.start()
        output = self.host('--file', lines, '--folder', folder, '--keep', '--jobs', '4', '--time', '300000', code=1)
        canceller.join()
        want = ['cancelled' if n in endless else alone[n % len(quick)].split(' (')[0] for n in range(400)]
        self.assertEqual(output, [f'{n}: {line} ({lines}:{n})' for n, line in enumerate(want, 1)])
        self.assertEqual(self.host('--collect', folder, '--keep', code=1), output)
        self.assertEqual(len(list(folder.glob('*.request*'))), 2 * (400 - len(endless)))


if __name__ == '__main__':
    unittest.main()
