"""The command line: every mode's output, messages and exit codes, and the recorded tables."""
import subprocess
import unittest

from engine_process import (DATA, ENGINE, LARGEST_TREE, SAMPLE, native_only, run_engine, side_by_side, table,
                            without_times)

BOX = ('Zorvane C-Engine', 'OK, bin da.\n\nZorvane C-Engine wurde gestartet.\nKeine Schachberechnung ausgefuehrt.')


class CommandLine(unittest.TestCase):

    def test_modes(self):
        too_long = ['2', '', 'Invalid FEN\n', '--perft', '1', '8/' * 15000]
        for code, output, complaint, *arguments in [*table('command_line.tsv'), too_long]:
            with self.subTest(arguments[:3]):
                done = run_engine(*arguments)
                self.assertEqual((str(done.returncode), without_times(done.stdout), done.stderr),
                                 (code, output, complaint))

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

        for path in sorted(DATA.glob('*.*.tsv')):
            mode = ['--' + path.name.split('.')[1]] + ['0'] * ('.eval.' in path.name)
            rows = [([*mode, *row[:-1]], row[-1]) for row in table(path.name)[::SAMPLE]
                    if mode != ['--bench'] or int(row[-1].split()[7]) <= LARGEST_TREE]
            for (arguments, wanted), got in zip(rows, side_by_side(answer, [arguments for arguments, _ in rows])):
                with self.subTest(path.name, arguments=arguments):
                    self.assertEqual(got, wanted)


if __name__ == '__main__':
    unittest.main()
