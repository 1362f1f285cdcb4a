"""tools/zorvane-analyse with the real engine and pgn-extract: output, going on after a stop, bad input."""
import functools
import json
import os
import pathlib
import re
import shlex
import signal
import subprocess
import sys
import types
import unittest

from engine_process import (DATA, ENGINE, HANG_S, ROOT, SMALL_PIPE, RequestCase, native_only, side_by_side, started,
                            table)
from recorded import ANALYSIS_DEPTH, CHECK_DEPTH, NUMBERS, data_of

sys.path.append(str(ROOT / 'tools'))
from zorvane_annotate import loss_text, wrap  # noqa: E402
from zorvane_answers import Answers  # noqa: E402
from zorvane_judge import Question  # noqa: E402
from zorvane_output import Output  # noqa: E402
from zorvane_pgn import read_games, read_text, unsuitable  # noqa: E402

ANALYSE = [sys.executable, str(ROOT / 'tools' / 'zorvane-analyse'), '--engine', shlex.join(ENGINE)]
GAMES, ANALYSED, DATA_OF_PAGE = DATA / 'games.pgn', DATA / 'analysed.pgn', DATA / 'analysed.json'
PAGE = DATA / 'page_stub.html'
# Where the games of that file begin, and why they are left out.
LEFT_OUT = {14: '3. Qxf7 is not possible', 25: 'Unknown move text Nx', 29: 'Missing end', 53: 'variant is Chess960',
            59: 'castling rights are those of Chess960', 64: 'King of the Hill', 81: 'Null moves', 85: '1. e5 is not',
            76: 'invalid position'}


class Analyse(RequestCase):

    def setUp(self):
        super().setUp()
        self.environment = {name: value for name, value in os.environ.items() if name != 'PYTHONUNBUFFERED'}
        self.environment['TMPDIR'] = str(self.folder)
        self.out, self.page = self.folder / 'out.pgn', self.folder / 'out.html'
        self.options = ['--quiet', '--depth', str(ANALYSIS_DEPTH)]

    def run_to_end(self, *arguments, games=GAMES):
        """Run it to its end and give the finished process."""
        return subprocess.run([*ANALYSE, *self.options, games, *arguments], text=True, capture_output=True,
                              timeout=HANG_S, env=self.environment)

    def analyse(self, *arguments, code=0, games=GAMES):
        """Run it to its end and give what it wrote to standard output."""
        done = self.run_to_end(*arguments, games=games)
        self.complaints = done.stderr.splitlines()
        self.assertEqual(done.returncode, code, done.stderr)
        return done.stdout

    def analyse_text(self, text, *arguments, code=0):
        """Analyse the games of a text, as bytes or characters; give the PGN that comes out as bytes."""
        games = self.folder / 'games.pgn'
        games.write_bytes(text if isinstance(text, bytes) else text.encode())
        self.analyse('--pgn', self.out, '--force', *arguments, games=games, code=code)
        return self.out.read_bytes()

    def wrapper(self, line):
        """An engine that is this line of the shell, in which "$@" is the engine and its arguments."""
        return shlex.join(['sh', '-c', line.replace('"$@"', f'{shlex.join(ENGINE)} "$@"'), 'wrapper'])

    def test_outputs(self):
        """The recorded analysis, by any number of jobs, and again from what an earlier one wrote."""
        self.analyse('--pgn', self.out, '--html', self.page, '--page', PAGE, '--jobs', '3', code=1)
        self.assertEqual(self.out.read_text(), ANALYSED.read_text())
        self.assertEqual(data_of(self.page), DATA_OF_PAGE.read_text())
        self.assertNotIn('<script>alert', self.page.read_text())
        self.assertEqual(len(self.complaints), len(LEFT_OUT))
        for complaint, (line, why) in zip(self.complaints, LEFT_OUT.items()):
            self.assertRegex(complaint, f'games.pgn:{line}: game .* is left out: .*{why}')
        again, fresh = self.folder / 'again.pgn', self.folder / 'fresh.pgn'
        for games, out in (self.out, again), (GAMES, fresh):
            self.analyse('--html', self.page, '--page', PAGE, '--pgn', out, '--force', '--jobs', '1', '--depth', '2',
                         '--moves', '1', '9', '--side', 'white', games=games, code=1)
        self.assertEqual(again.read_text(), fresh.read_text())
        self.analyse('--pgn', self.out, '--force', games=again, code=1)
        self.assertEqual(self.out.read_text(), ANALYSED.read_text())
        self.assertEqual(list(self.folder.glob('zorvane-*')), [], 'temporary files')

    def test_encodings(self):
        """What is analysed becomes UTF-8; what is left out keeps its bytes."""
        game = '[White "Müller – €"]\r\n\r\n1. e4 *\r\n'
        broken = b'[White "M\xfcller"]\r\n\r\n1. e5 *\r\n'
        want = self.analyse_text(game)
        self.assertIn('Müller – €"]', want.decode())
        for data in (game.encode('utf-8-sig'), game.encode('utf-16'), '\ufeff'.encode('utf-16-be')
                     + game.encode('utf-16-be'), game.encode('cp1252')):
            self.assertEqual(self.analyse_text(data), want)
        self.assertEqual(self.analyse_text(2 * broken + game.encode() + broken, code=1),
                         2 * broken + b'\n\n' + want + broken)
        for moves in (b'1. e4 %e5 *', b'1. e4 {a} e5\\ Nf3 *', b'1. e\x004\x00 *'):
            text = b'[White "a"]\n\n' + moves
            self.assertEqual(self.analyse_text(text, code=1), text)
            self.assertRegex(self.complaints[0], "game 1 is left out: '.*' is not PGN")
        self.assertEqual(self.analyse_text(b'[White "\x81"]\n\n1. e4 *').count(b'\xc2\x81'), 1)

    def test_some_moves(self):
        self.analyse('--pgn', self.out, '--moves', '3', '4', '--side', 'black', code=1)
        first, whole = (re.findall(r'%eval\s(\S+)\]', path.read_text().split('[Event ')[1])
                        for path in (self.out, ANALYSED))
        # Two are from the file. The whole game has the first eight half-moves before any variation with one.
        self.assertEqual(first, [whole[5], whole[7], '9.99', '9.99'])
        text = '1. e4 e5 2. d4 *'
        self.assertRegex(self.analyse_text(
            '[FEN "r1b2rk1/2q1bppp/p2p1n2/np2p3/3PP3/2P2N1P/PPBN1PP1/R1BQR1K1 w - - 0 12"]\n\n1. Nf1 *',
            '--time', '1', '--depth', '8').decode(), r'\[AnalysisEndedByTime "[1-9]"]')
        for thresholds, mark in (('0.0029 0.0048 2', '$2'), ('0.1 0.1 0.1', '')):
            out = self.analyse_text(text, '--thresholds', *thresholds.split()).decode()
            self.assertEqual(re.findall(r' (\$\d)', out)[:1], [mark] if mark else [], out)
            self.assertIn(f'Thresholds "{thresholds}"', out)

    def test_completed(self):
        """A result that only the tag has and odd counters of a start are taken; extra moves reach a search."""
        self.assertTrue(self.analyse_text('[Result "1-0"]\n\n1. e4').endswith(b'} 1-0\n\n'))
        out = self.analyse_text('1. e4 (1. d4 0-1) e5 2. d4 *')
        self.assertRegex(out, br'(?s)\(1\. d4 0-1\).* 2\. d4 .*\} \*\n\n$')
        for fen in ('w - -', ' w  - - 0 0'):
            self.assertIn(b'\n1. e4 { [%eval', self.analyse_text(f'[FEN "4k3/8/8/8/8/8/4P3/4K3 {fen}"]\n\n1. e4 *'))
        out = self.analyse_text(f'[AnalysisMoves "{"9" * 5000}-"]\n\n1. e4 *')
        self.assertIn(b'[AnalysisMoves "1-"]', out)
        # Evaluations of Black's moves came from an earlier analysis, those of White's did not.
        self.assertIn(b'9.99', self.analyse_text(
            '[AnalysisMoves "1- of Black"]\n\n1. e4 {[%eval 9.99]} *', '--side', 'black'))
        game, = read_games(self.folder / 'games.pgn')
        options = types.SimpleNamespace(time=1000)
        search = Answers(self.folder, {}, options).search_for(game, Question(1, ('e8e7',), 2))
        self.assertEqual((search.moves, search.depth, search.time_ms), (['e2e4', 'e8e7'], 2, 1000))

    def test_going_on(self):
        """Stopped by Ctrl-C, hang-up and a kill, then the rest as printed jobs: nothing is asked twice."""
        folder, started_engines = self.folder / 'a folder', self.folder / 'started'
        # Quick until it has what we wait for, then so slow that it cannot end before we stop it.
        name = shlex.quote(str(started_engines))
        slow = self.wrapper(f'echo >>{name}; [ $(wc -l <{name}) -le 7 ] || sleep 0.3; exec "$@"')

        def answers():
            return len(Answers(folder, {}, None)._execute('SELECT token FROM answers')) if folder.exists() else 0
        for stop, code in ((signal.SIGINT, 130), (signal.SIGHUP, 130), (signal.SIGKILL, -signal.SIGKILL)):
            known = answers()
            started_engines.unlink(missing_ok=True)
            with started([*ANALYSE, '--engine', slow, '--depth', str(ANALYSIS_DEPTH), GAMES, '--pgn', self.out,
                          '--jobs', '1', '--folder', folder], stderr=subprocess.DEVNULL, env=self.environment
                         ) as process:
                self.wait_for(lambda: answers() >= known + 5)
                process.send_signal(stop)
                process.wait(HANG_S)
            self.assertEqual((process.returncode, self.out.exists()), (code, False))
        known, rounds = answers(), []
        run = functools.partial(subprocess.run, shell=True, check=True, timeout=HANG_S, env=self.environment)
        while len(rounds) < 5 and (jobs := self.analyse('--folder', folder, '--print-jobs').splitlines()):
            rounds.append(len(jobs))
            self.assertEqual(self.analyse('--folder', folder, '--print-jobs').splitlines(), jobs)
            side_by_side(run, jobs[1:])
            self.assertEqual(self.analyse('--folder', folder, '--print-jobs').splitlines()[:1], jobs[:1])
            run(jobs[0])
        self.assertEqual(len(rounds), 2)
        self.assertEqual(known + sum(rounds), answers())
        idle = self.wrapper('case $1 in --request) exit 2;; *) exec "$@";; esac')
        self.analyse('--pgn', self.out, '--folder', folder, '--engine', idle, code=1)
        self.assertEqual(self.out.read_text(), ANALYSED.read_text())

    def test_other_engines(self):
        """Answers are those of one engine, and its signature is that of its tree."""
        other = self.wrapper('case $1 in --bench) echo " nodes 5";; *) exec "$@";; esac')
        folder, text = ('--folder', self.folder / 'run'), '1. Nc3 *'
        games = self.folder / 'games.pgn'
        games.write_text(text)
        others = [self.folder / 'run' / ('000001.request' + ending) for ending in ('', '.response')]
        folder[1].mkdir()
        for path in others:     # of zorvane-host
            path.write_text('1\nERROR\nno\n')
        for engine in ([], ['--engine', other]):
            jobs = self.analyse('--print-jobs', *folder, *engine, games=games).splitlines()
            self.assertEqual(len(jobs), 2)
            if not engine:
                side_by_side(functools.partial(subprocess.run, shell=True, check=True), jobs)
        self.assertEqual(self.analyse('--print-jobs', *folder, games=games), '')
        signature = json.loads(NUMBERS.read_text())['signature']
        self.assertIn(f'Signature "not {signature}, depth {CHECK_DEPTH} has 5 nodes"', self.analyse_text(
            text, *folder, '--engine', other).decode())
        broken = self.wrapper('case $1 in --request) echo no luck >&2; exit 2;; *) exec "$@";; esac')
        self.analyse_text('1. d4 *\n1. e4 *', *folder, '--depth', '2', '--engine', broken, code=1)
        self.assertRegex(self.complaints[-1], 'game 2 is left out: no luck')
        self.analyse_text('1. d4 *\n1. e4 *', *folder, '--depth', '2')
        self.assertTrue(all(path.exists() for path in others))

    @native_only
    def test_jobs_in_another_folder(self):
        """A relative path to the engine is made absolute, in both kinds of jobs."""
        games, engine = self.folder / 'games.pgn', os.path.relpath(ENGINE[0])
        games.write_text('1. e4 *\n\n[FEN "4k3/8/8/8/8/8/4P3/4K3 w - - 0 1"]\n\n1. e4 *\n')
        jobs = self.analyse('--print-jobs', '--folder', self.folder / 'run', '--engine', engine, games=games)
        self.assertEqual(len(jobs.splitlines()), 4)
        self.assertNotIn(sys.executable, jobs)  # as only Windows needs it
        subprocess.run(jobs, shell=True, check=True, timeout=HANG_S, cwd=self.folder)
        self.assertEqual(len(list((self.folder / 'run').glob('*.response'))), 2)
        self.assertEqual(len(list((self.folder / 'run').glob('*.answer'))), 2)

    def test_failed_jobs(self):
        """They are named, and printed again. The tool says what comes next, and in the end what came out."""
        self.options.remove('--quiet')
        games, folder = self.folder / 'games.pgn', self.folder / 'run'
        games.write_text('1. e4 *\n')
        jobs = self.analyse('--print-jobs', '--folder', folder, games=games)
        for request in folder.glob('*.request'):
            request.with_name(request.name + '.error.txt').write_text('no luck\n')
        self.assertEqual(self.analyse('--print-jobs', '--folder', folder, games=games), jobs)
        self.assertRegex(self.complaints[0], '2 of the printed jobs failed .*: no luck$')
        self.assertIn('2 jobs; when they have ended', self.complaints[1])
        self.analyse('--pgn', self.out, '--folder', folder, games=games)
        self.assertIn('1 of 1 games analysed, 0 left as they were; 0 searches', self.complaints[-1])
        self.analyse('--print-jobs', '--folder', folder, games=games)
        self.assertIn('no job is left', self.complaints[0])

    def test_wrong_use(self):
        games, text = self.folder / 'games.pgn', self.folder / 'text'
        games.write_text('1. e4 *\n')
        text.write_text('This is no game.\n')
        (self.folder / 'twice').write_bytes(2 * PAGE.read_bytes())
        self.out.write_text('precious')
        os.link(games, self.folder / 'link')
        rows = table('analyse_wrong_use.tsv')
        commands = [[word.format(folder=self.folder, data=DATA) for word in shlex.split(arguments)]
                    for arguments, _ in rows]
        outcomes = side_by_side(lambda command: self.run_to_end(*command, games=games), commands)
        for (arguments, complaint), done in zip(rows, outcomes):
            self.assertEqual(done.returncode, 2, done.stderr)
            self.assertIn(complaint, done.stderr, arguments)
        for games, complaint in ((text, 'no game that can be read'), (self.folder / 'none', 'No such file')):
            self.analyse('--pgn', self.folder / 'new', games=games, code=2)
            self.assertEqual((len(self.complaints), complaint in self.complaints[0]), (1, True))
        self.assertEqual((self.out.read_text(), (self.folder / 'new').exists()), ('precious', False))

    def test_variants(self):
        for variant, fen, problem in table('variants.tsv'):
            self.assertEqual(unsuitable(variant, fen if fen != '-' else None), problem, (variant, fen))

    def test_texts(self):
        for text, games in table('pgn_texts.tsv'):
            path = self.folder / 'games.pgn'
            path.write_bytes(text.encode())
            read = [f'{game.moves} {read_text(game.pgn).result}' for game in read_games(path)]
            self.assertEqual(' | '.join(read), games, text)

    def test_losses(self):
        for centipawns, text in table('average_losses.tsv'):
            self.assertEqual(loss_text(float(centipawns)), text)

    def test_lines(self):
        """Lines are broken between words, but not in a command or where the next would look like something else."""
        for length in range(60, 80):
            words = ['e4', '{' + 'x' * length + ' % y ; z [Event "a"] [%clk 0:00:01 2]', '(', 'd4', ')', 'e5']
            lines = wrap(words).split('\n')
            self.assertEqual([line for line in lines if re.match(r'[%;]|\[(?!%)', line)], [])
            self.assertIn('[%clk 0:00:01 2]', '|'.join(lines))
            self.assertEqual(' '.join(lines), f'e4 {{ {words[1][1:]} }} (d4) e5')
            self.assertLess(max(map(len, lines)), 100)

    def test_links(self):
        """A link stays one."""
        target = self.folder / 'target'
        target.touch()
        self.out.symlink_to(target)
        self.analyse_text('1. e4 *')
        self.assertTrue(self.out.is_symlink())
        self.assertIn('%eval', target.read_text())
        self.assertEqual(sorted(os.listdir(self.folder)), ['games.pgn', 'out.pgn', 'target'])

    def test_output_that_fails(self):
        self.out.write_text('old')
        Output(self.out).check()
        with self.assertRaises(ValueError), Output(self.out) as output:
            output.write(b'half')
            raise ValueError
        self.assertEqual((self.out.read_text(), os.listdir(self.folder)), ('old', ['out.pgn']))

    def replace_reader_of_games(self, line):
        """Have this line of the shell run in place of pgn-extract."""
        program = self.folder / 'pgn-extract'
        program.write_text(f'#!/bin/sh\n{line}\n')
        program.chmod(0o755)
        self.environment['PATH'] = f'{self.folder}:{os.environ["PATH"]}'

    @native_only
    def test_reader_of_games_that_crashes(self):
        self.replace_reader_of_games('kill -KILL $$')
        self.analyse('--pgn', self.out, code=1)
        self.assertIn('pgn-extract was ended by signal 9', self.complaints[0])

    @native_only
    def test_stopped_before_any_search(self):
        """Nothing is left behind, in the foreground or as a job that a shell started without Ctrl-C."""
        reading = self.folder / 'reading'
        self.replace_reader_of_games(f'touch {shlex.quote(str(reading))}; exec sleep 1000')
        for stop in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with started(['sh', '-c', 'trap "" INT; exec "$@"', 'sh', *ANALYSE, GAMES, '--pgn', self.out],
                         env=self.environment, stderr=subprocess.PIPE) as process:
                self.wait_for(reading.exists)
                process.send_signal(stop)
                complaint = process.communicate(timeout=HANG_S)[1]
            self.assertEqual((process.returncode, complaint), (130, b'zorvane-analyse: interrupted\n'))
            reading.unlink()
        self.assertEqual(os.listdir(self.folder), ['pgn-extract'])

    def test_lost_reader(self):
        with started([*ANALYSE, GAMES, '--folder', self.folder / 'run', '--print-jobs'], env=self.environment,
                     stdout=subprocess.PIPE, stderr=subprocess.PIPE, pipesize=SMALL_PIPE, text=True) as process:
            process.stdout.readline()
            process.stdout.close()
            self.assertEqual((process.wait(HANG_S), 'Traceback' in process.stderr.read()), (1, False))

    def test_many_games(self):
        """A broken one among many is found, and the others keep their places."""
        games = self.folder / 'many.pgn'
        games.write_text('1. e4 *\n\n' * 1999 + '1. e5 *\n')
        read = list(read_games(pathlib.Path(games)))
        self.assertEqual([game.number for game in read if game.problem], [2000])
        self.assertEqual({game.moves for game in read[:-1]}, {'e2e4'})
        self.assertEqual(b''.join(game.raw for game in read), games.read_bytes())

    def test_a_game_too_long(self):
        """10,000 half-moves, of which a request holds 3272, and a line of UCI fewer."""
        start_fen = 'rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 1 1'
        for start, line, number in (('', 3, 3273), (f'[FEN "{start_fen}"]', 1, 3262)):
            out = self.analyse_text(start + '\n\n' + 'Nf3 Nf6 Ng1 Ng8 ' * 2500 + '*\n', '--moves', '1630', '1640',
                                    '--depth', '1', code=1)
            self.assertRegex(self.complaints[0],
                             f'pgn:{line}: game 1: .* positions have no evaluation: {number} moves do not fit')
            self.assertGreater(out.count(b'%eval'), 0)


if __name__ == '__main__':
    unittest.main()
