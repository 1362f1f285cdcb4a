"""The example host tools/zorvane-host with the real engine: results, cancelling, job lines, many at once."""
import functools
import json
import os
import shlex
import shutil
import signal
import subprocess
import sys
import threading
import time
import unittest
import unittest.mock

from engine_process import ENGINE, HANG_S, LONG_SEARCH, ROOT, RequestCase, comparable, request_text

sys.path.insert(0, str(ROOT / 'tools'))
import zorvane_requests  # noqa: E402

HOST = [sys.executable, str(ROOT / 'tools' / 'zorvane-host'), '--engine', shlex.join(ENGINE)]
ENDLESS = LONG_SEARCH + ' depth=8 time=300000'
QUICK = [['startpos'], *([move] for move in 'a2a3 b2b3 c2c4 d2d4 e2e4 f2f3 g1f3 b1c3 h2h4 g2g3'.split()),
         'e2e4 e7e5 g1f3 b8c6 f1b5'.split(), 'd2d4 g8f6 c2c4 g7g6 b1c3 f8g7 e2e4'.split()]


class Host(RequestCase):

    def host(self, *arguments, code=0, text=''):
        """Run the host to its end; its output as lines."""
        done = subprocess.run([*HOST, *arguments], input=text, capture_output=True, text=True, timeout=3 * HANG_S)
        self.complaint = done.stderr
        self.assertEqual(done.returncode, code, done.stderr)
        return done.stdout.splitlines()

    def test_one_position(self):
        line, = self.host('startpos', '--depth', '2')
        self.assertEqual(line, '1: b1c3 score 0 depth 2 nodes 142 reason 0 line b1c3 b8c6')
        self.assertIn('1 of 1 done', self.complaint)
        hints = self.folder / 'hints'
        hints.write_text('g1f3 1 0\n')
        line, = self.host('--quiet', '--depth', '1', '--hints', str(hints), 'startpos')
        self.assertRegex(line, '^1: g1f3 score -?[0-9]+ depth 1 nodes [0-9]+ reason 2 line g1f3$')
        self.assertEqual(self.complaint, '')

    def test_json_and_input_lines(self):
        text = ('\ufeff# a comment\r\nf2f3 e7e5 g2g4 depth=4\r\n\nposition startpos moves e2e4 e2e4 # and another\n'
                ' # e4\ne2e4 depth=9\nf2f3 e7e5 g2g4 d8h4\na2a4 b7b5 a4b5 a7a6 b5a6 c8b7 a6b7 h7h6\n')
        results = [json.loads(line) for line in self.host('--file', '-', '--json', '--depth', '1', text=text, code=1)]
        mate, refused, deep, mated, promotion = results
        self.assertEqual([r['number'] for r in results], [1, 2, 3, 4, 5])
        del mate['elapsed_ms']
        self.assertEqual(mate, {
            'number': 1, 'place': 'standard input:2', 'moves': ['f2f3', 'e7e5', 'g2g4'], 'status': 'ok',
            'move': 'd8h4', 'score': -899999, 'depth': 1, 'nodes': 59, 'reason': 0, 'legal_moves': 30,
            'line': ['d8h4']})
        for result in (refused, mated):
            self.assertEqual(result['error'], 'Keine gueltige Stellung oder kein legaler Zug')
        self.assertEqual((deep['error'], deep['exit_code']), ('Search parameters out of range', 2))
        self.assertEqual((promotion['move'], promotion['line']), ('b7a8q', ['b7a8q']))
        lines = self.host('--file', '-', '--depth', '1', text=text, code=1)
        self.assertEqual(lines[0], '1: d8h4 score mate -1 depth 1 nodes 59 reason 0 line d8h4 (standard input:2)')
        self.assertEqual(lines[1], '2: error: Keine gueltige Stellung oder kein legaler Zug (a move that is not legal, '
                                   'or mate or stalemate on the board) (standard input:4)')

    def test_wrong_use(self):
        hints, latin = self.folder / 'hints', self.folder / 'latin'
        hints.write_text('e2e4 1 2\nNf3 8 0\n')
        latin.write_bytes(b'e2e4\n# Gr\xfc\xdfe\n')
        for arguments, complaint in {
                (): 'give either moves or --file', ('e2e4', 'fen'): '"fen" is no move',
                ('e2e4', 'ponder=1'): 'unknown word "ponder=1"', ('e2e4', 'depth=x'): 'depth=x is no number',
                ('e2e4', '--hints', str(hints)): 'hints:2: a hint is', ('--file', str(latin)): 'latin:2: ',
                ('e4',): 'as in g1f3', ('e2e4', '--engine', ''): 'empty', ('e2e4', '--engine', 'a "b'): 'quotation', ('e2e4',) * 4000: 'do not fit',
                ('e2e4', '--engine', 'no-such-engine'): 'there is no engine',
                ('--file', str(self.folder / 'none')): 'No such file',
                ('--collect', str(self.folder)): 'holds no requests',
                ('e2e4', '--print-jobs'): 'need --folder'}.items():
            self.host(*arguments, code=2)
            self.assertIn(complaint, self.complaint)

    def wait_for(self, condition):
        end = time.monotonic() + HANG_S
        while not condition():
            self.assertLess(time.monotonic(), end, 'nothing happened for too long')
            time.sleep(0.01)

    def test_interrupt(self):
        """Ctrl-C cancels what runs, starts nothing more, and leaves no files."""
        lines = self.folder / 'lines'
        lines.write_text('e2e4 depth=1\n' + f'{ENDLESS}\n' * 5)
        folder = self.folder / 'run'
        with subprocess.Popen([*HOST, '--file', lines, '--folder', folder, '--jobs', '2'],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True) as host:
            first = host.stdout.readline()
            self.wait_for(lambda: len(list(folder.glob('*.request'))) == 2)
            host.send_signal(signal.SIGINT)
            rest = host.communicate(timeout=HANG_S)[0].splitlines()
        self.assertTrue(first.startswith('1: '))
        self.assertEqual(rest, [f'{n}: cancelled ({lines}:{n})' for n in (2, 3)])
        self.assertEqual((host.returncode, list(folder.iterdir())), (130, []))

    def test_watchdog(self):
        """An engine beyond its time is cancelled, and killed when it does not heed that."""
        with unittest.mock.patch.multiple(zorvane_requests, LONGEST_TIME_MS=1, OVERDUE_S=0.2, HEED_CANCEL_S=2):
            for engine, end in (ENGINE, 'told to end'), (['sh', '-c', 'sleep 1000 & wait'], 'killed'):
                request = zorvane_requests.Request(LONG_SEARCH.split())
                self.assertIn(end, zorvane_requests.run(engine, self.folder / 'r', request)['error'])

    def test_job_lines(self):
        if not shutil.which('parallel'):
            self.skipTest('GNU parallel is not installed')
        lines, folder = self.folder / 'lines', str(self.folder / 'a shared folder')
        lines.write_text(''.join(' '.join(words) + '\n' for words in QUICK))
        print_jobs = ('--file', str(lines), '--depth', '2', '--folder', folder, '--print-jobs')
        jobs = self.host(*print_jobs)
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

    def test_a_thousand_requests(self):
        """Four at a time, every 25th endless until something else cancels it."""
        words = [[*QUICK[n % len(QUICK)], f'depth={1 + n // len(QUICK) % 3}'] for n in range(1000)]
        endless = set(range(24, 1000, 25))
        for n in endless:
            words[n] = [ENDLESS]
        lines, folder = self.folder / 'lines', self.folder / 'run'
        lines.write_text(''.join(' '.join(line) + '\n' for line in words))
        folder.mkdir()

        def cancel():
            for n in sorted(endless):
                request = folder / f'{n + 1:06}.request'
                self.wait_for(request.exists)
                time.sleep(n % 3 * 0.005)
                request.with_name(request.name + '.cancel').touch()

        canceller = threading.Thread(target=cancel)
        canceller.start()
        output = self.host('--file', str(lines), '--folder', str(folder), '--keep', '--jobs', '4', '--time', '300000',
                           code=1)
        canceller.join()
        self.assertEqual(len(output), 1000)

        @functools.cache
        def alone(line):
            moves = '' if line[0] == 'startpos' else ' moves ' + ' '.join(line[:-1])
            got = self.run_request(request_text(numbers=f'300000 {line[-1][6:]} 1024 1 1 0 1',
                                                position='position startpos' + moves))
            return comparable(got.response).split('\n', 1)[1]

        for n, line in enumerate(words):
            if n in endless:
                self.assertEqual(output[n], f'{n + 1}: cancelled ({lines}:{n + 1})')
                self.assertEqual(list(folder.glob(f'{n + 1:06}.*')), [])
            else:
                response = (folder / f'{n + 1:06}.request.response').read_text()
                self.assertEqual(comparable(response).split('\n', 1)[1], alone(tuple(line)))


if __name__ == '__main__':
    unittest.main()
