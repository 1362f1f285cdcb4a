"""tools/zorvane-analyse with the real engine and pgn-extract: output, going on after a stop, bad input."""
import os
import re
import shlex
import shutil
import signal
import subprocess
import sys
import time
import unittest

from engine_process import DATA, ENGINE, HANG_S, ROOT, RequestCase, table

sys.path.append(str(ROOT / 'tools'))
from zorvane_pgn import pgn_extract  # noqa: E402

ANALYSE = [sys.executable, str(ROOT / 'tools' / 'zorvane-analyse'), '--engine', shlex.join(ENGINE)]
GAMES, ANALYSED = DATA / 'games.pgn', DATA / 'analysed.pgn'
# Where the games of that file begin or break, and why they are left out.
LEFT_OUT = {17: 'No queen move possible to f7', 19: 'from a FEN', 27: 'Unknown move text Nx', 29: 'Missing end'}


class Analyse(RequestCase):

    def setUp(self):
        super().setUp()
        self.environment = os.environ | {'TMPDIR': str(self.folder)}

    def analyse(self, *arguments, code=0, games=GAMES):
        """Run it to its end and give what it wrote to standard output."""
        done = subprocess.run([*ANALYSE, '--quiet', '--depth', '3', games, *arguments], capture_output=True, text=True,
                              timeout=HANG_S, env=self.environment)
        self.complaints = done.stderr.splitlines()
        self.assertEqual(done.returncode, code, done.stderr)
        return done.stdout

    def page_without_time(self, page):
        return re.sub('<p id="time">.*</p>', '', page.read_text())

    def test_outputs(self):
        """The recorded analysis, by any number of jobs, by pgn-extract, and again from itself."""
        out, page, other = (self.folder / name for name in ('out.pgn', 'out.html', 'other.html'))
        self.analyse('--pgn', out, '--html', page, '--jobs', '3', code=1)
        self.assertEqual(out.read_text(), ANALYSED.read_text())
        self.assertEqual(len(self.complaints), len(LEFT_OUT))
        for complaint, (line, why) in zip(self.complaints, LEFT_OUT.items()):
            self.assertRegex(complaint, f'games.pgn:{line}: game . is left out: .*{why}')
        self.analyse('--html', other, '--jobs', '1', code=1)
        self.assertEqual(self.page_without_time(page), self.page_without_time(other))
        self.analyse('--pgn', out, '--force', games=ANALYSED, code=1)
        self.assertEqual(out.read_text(), ANALYSED.read_text())
        program = shutil.which('pgn-extract') or '/usr/games/pgn-extract'
        passed = subprocess.run([program, '-s', ANALYSED], capture_output=True, check=True).stdout
        self.assertEqual(passed, ANALYSED.read_bytes())

    def test_some_moves(self):
        out = self.folder / 'out.pgn'
        self.analyse('--pgn', out, '--moves', '3', '4', '--side', 'black', code=1)
        first = out.read_text().split('[Event ')[1]
        scores = re.findall(r'%eval\s(\S+)', first)
        self.assertEqual((len(scores), scores[0], scores.count('9.99]')), (6, '0.48]', 2))  # two are from the file
        self.analyse('--pgn', out, '--force', '--time', '1', '--depth', '8', '--moves', '1', '1', code=1)
        self.assertRegex(out.read_text(), r'\[AnalysisEndedByTime "[1-9]')

    def test_going_on(self):
        """Stopped by Ctrl-C, then by a kill, then the rest as printed jobs: nothing is asked twice."""
        out, folder = self.folder / 'out.pgn', self.folder / 'a folder'
        answers = folder / 'zorvane.answers'
        slow = shlex.join(['sh', '-c', f'sleep 0.1; exec {shlex.join(ENGINE)} "$@"', 'slow'])
        for stop, code in ((signal.SIGINT, 130), (signal.SIGKILL, -signal.SIGKILL)):
            known = answers.read_text().count('\n') if answers.exists() else 0
            with subprocess.Popen([*ANALYSE, '--engine', slow, '--depth', '3', GAMES, '--pgn', out, '--jobs', '1',
                                   '--folder', folder], stderr=subprocess.DEVNULL, env=self.environment) as process:
                end = time.monotonic() + HANG_S
                while not answers.exists() or answers.read_text().count('\n') < known + 5:
                    self.assertLess(time.monotonic(), end)
                    time.sleep(0.01)
                process.send_signal(stop)
            self.assertEqual((process.returncode, out.exists()), (code, False))
        with open(answers, 'a') as file:
            file.write('\n["cut o')
        known = {line for line in answers.read_text().splitlines()[1:] if line.endswith('}]')}
        jobs = self.analyse('--folder', folder, '--print-jobs').splitlines()
        self.assertEqual(len(known) + len(jobs), 69)
        for job in jobs[1:]:
            subprocess.run(shlex.split(job), check=True)
        self.analyse('--pgn', out, '--folder', folder, code=1)
        self.assertEqual(out.read_text(), ANALYSED.read_text())
        self.assertLessEqual(known, set(answers.read_text().splitlines()))
        self.assertEqual(answers.read_text().count('"status"'), 69)

    def test_wrong_use(self):
        out, text, page = (self.folder / name for name in ('out.pgn', 'text', 'page.html'))
        text.write_text('This is no game.\n')
        out.write_text('precious')
        for arguments, complaint in table('analyse_wrong_use.tsv'):
            self.analyse(*shlex.split(arguments.format(folder=self.folder)), code=2)
            self.assertIn(complaint, self.complaints[-1])
        for games, complaint in ((text, 'no game that can be read'), (self.folder / 'none', 'No such file')):
            self.analyse('--html', page, games=games, code=2)
            self.assertEqual((len(self.complaints), complaint in self.complaints[0]), (1, True))
        self.assertEqual((out.read_text(), page.exists()), ('precious', False))

    def test_many_games(self):
        text = '[Event "short"]\n\n1. e4 *\n\n' * 1000  # from so many on pgn-extract counts aloud
        self.assertEqual(pgn_extract(text)[1], '')

    def test_a_game_too_long(self):
        """10,000 half-moves, of which a request holds 3272."""
        games, out = self.folder / 'long.pgn', self.folder / 'out.pgn'
        games.write_text('[Event "long"]\n\n' + 'Nf3 Nf6 Ng1 Ng8 ' * 2500 + '*\n')
        self.analyse('--pgn', out, '--moves', '1636', '1640', '--depth', '1', games=games, code=1)
        self.assertRegex(self.complaints[0], 'long.pgn:1: game 1: 8 positions have no evaluation: 3273 moves do not')
        self.assertEqual(out.read_text().count('%eval'), 3)


if __name__ == '__main__':
    unittest.main()
