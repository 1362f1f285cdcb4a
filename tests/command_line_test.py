"""The command line: every mode's output, messages and exit codes, and the recorded tables."""
import subprocess
import unittest

from engine_process import ENGINE, LARGEST_TREE, native_only, recorded_rows, run_engine, side_by_side, without_times

USAGE = 'Usage: --perft|--bench depth [FEN], --eval 0 [FEN]\n'
BAD_FEN = 'Invalid FEN\n'
STATUS = ('Zorvane C-Engine: OK, bin da.\n'
          'Programmstart erfolgreich. Keine Schachberechnung ausgefuehrt.\n')
BOX = ('Zorvane C-Engine', 'OK, bin da.\n\nZorvane C-Engine wurde gestartet.\nKeine Schachberechnung ausgefuehrt.')
MATE_IN_ONE = 'rnbqkbnr/pppp1ppp/8/4p3/6P1/5P2/PPPPP2P/RNBQKBNR b KQkq - 0 2'
MATED = 'rnb1kbnr/pppp1ppp/8/4p3/6Pq/5P2/PPPPP2P/RNBQKBNR w KQkq - 1 3'
STALEMATE = '7k/5Q2/6K1/8/8/8/8/8 b - - 0 1'
BARE = '8/8/8/8/8/8/8/K6k w - -'


class CommandLine(unittest.TestCase):

    def test_modes(self):
        for arguments, code, output, complaint in (
                ([], 0, '', ''),
                (['--status'], 0, STATUS, ''),
                (['--status', 'extra'], 2, '', USAGE),
                (['--request'], 2, '', USAGE),
                (['--perft'], 0, '8902\n', ''),
                (['--perft', '0'], 0, '1\n', ''),
                (['--perft', 'abc'], 0, '1\n', ''),
                (['--perft', '2 and more'], 0, '400\n', ''),
                (['--perft', '7'], 2, '', ''),
                (['--perft', '-1'], 2, '', ''),
                (['--perft', '4294967297'], 2, '', ''),
                (['--perft', '1', BARE, 'not read'], 0, '3\n', ''),
                (['--perft', '1', MATED], 0, '0\n', ''),
                (['--perft', '1', STALEMATE], 0, '0\n', ''),
                (['--perft', '2', 'nonsense'], 2, '', BAD_FEN),
                (['--perft', '7', 'nonsense'], 2, '', BAD_FEN),
                (['--perft', '1', ''], 2, '', BAD_FEN),
                (['--perft', '1', BARE[:-2]], 2, '', BAD_FEN),
                (['--perft', '1', '8/' * 15000], 2, '', BAD_FEN),
                (['--foo', '2', 'nonsense'], 2, '', BAD_FEN),
                (['--foo', '2'], 2, '', USAGE),
                (['--foo', '2', BARE], 2, '', USAGE),
                (['--foo'], 2, '', USAGE),
                ([''], 2, '', USAGE),
                (['--eval'], 0, '0\n', ''),
                (['--eval', 'nonsense'], 0, '0\n', ''),
                (['--eval', '0', 'nonsense'], 2, '', BAD_FEN),
                (['--bench', '0'], 2, '', ''),
                (['--bench', '9'], 2, '', ''),
                (['--bench', 'x'], 2, '', ''),
                (['--bench', '4294967297'], 2, '', ''),
                (['--bench', '9', 'nonsense'], 2, '', BAD_FEN),
                (['--bench', '2'], 0, 'info depth 2 score cp 0 nodes 142 pv b1c3\nbestmove b1c3\n', ''),
                (['--bench', '8', MATE_IN_ONE], 0, 'info depth 1 score mate 1 nodes 59 pv d8h4\nbestmove d8h4\n', ''),
                (['--bench', '1', MATED], 0, 'info depth 0 score mate 0 nodes 0 pv \nbestmove 0000\n', ''),
                (['--bench', '1', STALEMATE], 0, 'info depth 0 score cp 0 nodes 0 pv \nbestmove 0000\n', '')):
            with self.subTest(arguments[:3]):
                done = run_engine(*arguments)
                self.assertEqual((done.returncode, without_times(done.stdout), done.stderr), (code, output, complaint))

    def test_defaults(self):
        self.assertEqual(without_times(run_engine('--bench').stdout), without_times(run_engine('--bench', '3').stdout))
        done = run_engine('--request', '/nowhere/r', '--not-read')
        self.assertEqual((done.returncode, done.stderr), (2, 'Zorvane request error: Cannot open request file\n'))

    @native_only
    def test_closed_input(self):
        done = subprocess.run(['sh', '-c', 'exec "$0" <&-', *ENGINE], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout), (0, ''))
        for text in BOX:
            self.assertIn(text, done.stderr)

    def test_recorded_tables(self):
        """The last column is what the engine says of the others; in a bench table it holds the size of the tree."""
        def answer(arguments):
            done = run_engine(*arguments)
            lines = without_times(done.stdout).splitlines()
            return 'error' if done.returncode else ' | '.join(line.strip() for line in lines)

        for name in ('games.perft', 'odd.perft', 'games.eval', 'odd.eval', 'games.bench', 'odd.bench', 'suite.bench'):
            mode = ['--' + name.split('.')[1]] + ['0'] * name.endswith('eval')
            rows = [([*mode, *row[:-1]], row[-1]) for row in recorded_rows(name + '.tsv')
                    if mode != ['--bench'] or int(row[-1].split()[7]) <= LARGEST_TREE]
            for (arguments, wanted), got in zip(rows, side_by_side(answer, [arguments for arguments, _ in rows])):
                with self.subTest(name, arguments=arguments):
                    self.assertEqual(got, wanted)


if __name__ == '__main__':
    unittest.main()
