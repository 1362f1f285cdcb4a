"""The example host tools/zorvane-host with the real engine: results, cancelling, job lines, many at once."""
import functools
import json
import os
import shlex
import signal
import subprocess
import sys
import threading
import time
import unittest
import unittest.mock

from engine_process import ENGINE, HANG_S, LONG_SEARCH, ROOT, RequestCase, table

sys.path.insert(0, str(ROOT / 'tools'))
import zorvane_requests  # noqa: E402

HOST = [sys.executable, str(ROOT / 'tools' / 'zorvane-host'), '--engine', shlex.join(ENGINE)]
ENDLESS = LONG_SEARCH + ' depth=8 time=300000'
QUICK = ['startpos', *'a2a3 b2b3 c2c4 d2d4 e2e4 f2f3 g1f3 b1c3 h2h4 g2g3'.split(), 'e2e4 e7e5 g1f3 b8c6 f1b5',
         'd2d4 g8f6 c2c4 g7g6 b1c3 f8g7 e2e4']


class Host(RequestCase):

    def host(self, *arguments, code=0, text=''):
        """Run the host to its end; its output as lines."""
        done = subprocess.run([*HOST, *arguments], input=text, capture_output=True, text=True, timeout=3 * HANG_S)
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
        self.assertEqual(line, '1: b1c3 score 0 depth 2 nodes 142 reason 0 line b1c3 b8c6')
        self.assertIn('1 of 1 done', self.complaint)
        line, = self.host('--quiet', '--depth', '1', '--hints', self.file('hints', 'g1f3 1 0'), 'startpos')
        self.assertRegex(line, '^1: g1f3 score -?[0-9]+ depth 1 nodes [0-9]+ reason 2 line g1f3$')
        self.assertEqual(self.complaint, '')

    def test_lines_and_json(self):
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
            'move': 'd8h4', 'score': -899999, 'depth': 1, 'nodes': 59, 'reason': 0, 'legal_moves': 30,
            'line': ['d8h4']})
        self.assertEqual((results[2]['error'], results[2]['exit_code']), ('Search parameters out of range', 2))

    def test_wrong_use(self):
        self.file('hints', 'e2e4 1 2', 'Nf3 8 0')
        self.file('long', 'e2e4 ' * 4000)
        (self.folder / 'latin').write_bytes(b'e2e4\n# Gr\xfc\xdfe\n')
        for arguments, complaint in table('host_wrong_use.tsv'):
            self.host(*shlex.split(arguments.format(folder=self.folder)), code=2)
            self.assertIn(complaint, self.complaint)

    def wait_for(self, condition):
        end = time.monotonic() + HANG_S
        while not condition():
            self.assertLess(time.monotonic(), end, 'nothing happened for too long')
            time.sleep(0.01)

    def test_interrupt(self):
        """Ctrl-C cancels what runs, starts nothing more, and leaves no files."""
        lines, folder = self.file('lines', 'e2e4 depth=1', *[ENDLESS] * 5), self.folder / 'run'
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
        lines, folder = self.file('lines', *QUICK), str(self.folder / 'a shared folder')
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
