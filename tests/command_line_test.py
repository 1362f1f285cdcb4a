"""The command line: every mode's output, messages and exit codes, and the recorded tables."""
import os
import unittest

from engine_process import (DATA, LARGEST_TREE, SAMPLE, native_only, run_engine, run_in_shell, side_by_side, table,
                            without_times)

BOX = 'Zorvane C-Engine\nOK, bin da.\n\nZorvane C-Engine wurde gestartet.\nKeine Schachberechnung ausgefuehrt.\n'


class CommandLine(unittest.TestCase):

    def test_modes(self):
        too_long = ['2', '', 'Invalid FEN\n', '--perft', '1', '8/' * 15000]
        for code, output, complaint, *arguments in [*table('command_line.tsv'), too_long]:
            with self.subTest(arguments[:3]):
                done = run_engine(*arguments)
                self.assertEqual((str(done.returncode), without_times(done.stdout), done.stderr),
                                 (code, output, complaint))

    @native_only
    def test_no_usable_input(self):
        """Without arguments the box is all there is to it; with some, no input is needed."""
        for stdin in ('<&-', '0>/dev/null', '</'):
            for arguments, output, complaint in (('', '', BOX), ('--perft 1', '20\n', '')):
                with self.subTest(stdin, arguments=arguments):
                    done = run_in_shell(f'"$@" {arguments} {stdin}')
                    self.assertEqual((done.returncode, done.stdout, done.stderr), (0, output, complaint))

    @native_only
    def test_lost_reader(self):
        reader, lost = os.pipe()
        os.close(reader)
        self.addCleanup(os.close, lost)
        for arguments in (['--status'], ['--perft', '1'], ['--eval'], ['--bench', '1']):
            with self.subTest(arguments):
                self.assertEqual(run_engine(*arguments, stdout=lost).returncode, 0)

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
