"""The command line: output, messages and exit codes of every mode, and the recorded tables."""
import json
import os
import unittest

from engine_process import DATA, LARGEST_TREE, SAMPLE, native_only, run_engine, run_in_shell, table
from recorded import NUMBERS, check, nodes_of

START = 'rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1'

BOX = 'Zorvane C-Engine\nOK, bin da.\n\nZorvane C-Engine wurde gestartet.\nKeine Schachberechnung ausgefuehrt.\n'


class CommandLine(unittest.TestCase):

    def test_modes(self):
        too_long = ['2', '', 'Invalid FEN\n', '--perft', '1', '8/' * 15000]
        check(self, 'command_line.tsv', [*table('command_line.tsv'), too_long])

    @native_only
    def test_no_usable_input(self):
        """Without arguments there is only the box; with arguments, no input is needed."""
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
        for name in sorted(path.name for path in DATA.glob('*.*.tsv')):
            with self.subTest(name):
                check(self, name, [row for row in table(name)[::SAMPLE]
                                   if '.bench.' not in name or nodes_of(row[-1]) <= LARGEST_TREE])

    def test_numbers(self):
        """They agree with the recorded suite, which contains the search of the check."""
        numbers = json.loads(NUMBERS.read_text())
        suite = table('suite.bench.tsv')
        self.assertEqual(numbers['signature'], sum(nodes_of(row[-1]) for row in suite))
        self.assertIn((str(numbers['check']['depth']), START, numbers['check']['nodes']),
                      [(*row[:2], nodes_of(row[-1])) for row in suite])
        self.assertEqual(numbers['deepest']['nodes'], nodes_of(numbers['deepest']['answer']))


if __name__ == '__main__':
    unittest.main()
