"""What the Windows program does its own way; script/test-windows runs it under wine and a virtual screen."""
import os
import subprocess
import time
import unittest

from engine_process import DATA, ENGINE, HANG_S, ROOT, RequestCase, Session, comparable, request_text, run_engine

CAPTION = 'Zorvane C-Engine'
SCREENSHOT = ROOT / 'build' / 'windows' / 'start-box.png'


def raw(*arguments):
    """Exit code, output and errors of a run, byte for byte."""
    done = subprocess.run([*ENGINE, *arguments], stdin=subprocess.DEVNULL, capture_output=True, timeout=HANG_S)
    return done.returncode, done.stdout, done.stderr


def drive_path(path):
    """A path of this system as a Windows program writes it."""
    return 'Z:' + str(path).replace('/', '\\')


def start_as_a_person(*arguments):
    """Start the engine as the desktop does, without standard streams; the process ends with its exit code."""
    return subprocess.Popen([ENGINE[0], 'start', '/wait', drive_path(ENGINE[-1]), *arguments],
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def windows_with(caption):
    found = subprocess.run(['xdotool', 'search', '--name', f'^{caption}$'], capture_output=True, text=True)
    return found.stdout.split()


class StartBox(unittest.TestCase):

    def test_no_standard_input(self):
        """The box is there under its caption, stays until it is dismissed, and the program ends with 0."""
        process = start_as_a_person()
        self.addCleanup(process.kill)
        deadline = time.monotonic() + HANG_S
        while not (boxes := windows_with(CAPTION)) and time.monotonic() < deadline:
            time.sleep(0.1)
        self.assertEqual(len(boxes), 1)
        time.sleep(0.5)                                     # the box paints itself
        subprocess.run(['import', '-window', 'root', SCREENSHOT], check=True)
        self.assertIsNone(process.poll())
        subprocess.run(['xdotool', 'windowfocus', boxes[0], 'key', 'Return'], check=True)
        self.assertEqual(process.wait(timeout=HANG_S), 0)
        self.assertEqual(windows_with(CAPTION), [])

    def test_arguments_need_no_standard_input(self):
        for arguments, code in ((['--foo'], 2), (['--perft', '1'], 0)):
            self.assertEqual(start_as_a_person(*arguments).wait(timeout=HANG_S), code)
        self.assertEqual(windows_with(CAPTION), [])


class LineEnds(RequestCase):

    def test_streams(self):
        """A line ends in one line feed, and what is no text passes unchanged."""
        self.assertEqual(raw('--status'), (0, b'Zorvane C-Engine: OK, bin da.\nProgrammstart erfolgreich. '
                                              b'Keine Schachberechnung ausgefuehrt.\n', b''))
        self.assertEqual(raw('--perft', '2'), (0, b'400\n', b''))
        self.assertEqual(raw('--perft', '2', 'x'), (2, b'', b'Invalid FEN\n'))
        # In text mode the byte 26 would be the end of the input.
        done = subprocess.run(ENGINE, input=b'a\x1ab\nisready\nuci\r\nquit\n', capture_output=True, timeout=HANG_S)
        self.assertTrue(done.stdout.startswith(b'readyok\nid name '))
        self.assertTrue(done.stdout.endswith(b'uciok\n'))
        self.assertNotIn(b'\r', done.stdout)

    def test_files(self):
        """Also with the host's own "\\r\\n", and with a token that text mode would end at."""
        path = self.folder / 'r'
        path.write_bytes(request_text(token='a\x1ab').replace(b'\n', b'\r\n'))
        self.assertEqual(raw('--request', str(path)), (0, b'', b''))
        response = self.beside(path, '.response').read_bytes()
        self.assertTrue(response.startswith(b'a\x1ab\nOK\n'))
        self.assertNotIn(b'\r', response)
        path = self.folder / 'bad'
        path.write_bytes(request_text(numbers='1'))
        self.assertEqual(raw('--request', str(path)), (2, b'', b'Zorvane request error: Invalid search parameters\n'))
        self.assertEqual(self.beside(path, '.error.txt').read_bytes(), b'Invalid search parameters\n')
        self.assertEqual(self.beside(path, '.response').read_bytes(), b'tok\nERROR\nInvalid search parameters\n')


class Files(RequestCase):

    def test_old_response_stays(self):
        self.beside(self.folder / 'r', '.response').write_text('old')
        outcome = self.run_request(request_text(), name='r')
        self.assertEqual((outcome.code, outcome.complaint, outcome.error, outcome.response),
                         (2, 'Zorvane request error: Cannot publish response file\n',
                          'Cannot publish response file\n', 'old'))

    def test_folder_with_the_name_of_the_response(self):
        self.beside(self.folder / 'r', '.response').mkdir()
        outcome = self.run_request(request_text(), name='r')
        self.assertEqual((outcome.code, outcome.error), (2, 'Cannot publish response file\n'))

    def test_path_forms(self):
        """Drive letters, relative paths, long ones, and letters outside of ASCII mean the same request."""
        wanted = comparable(self.run_request(request_text()).response)
        deep = self.folder.joinpath(*['f' * 100] * 9)
        letters = self.folder / 'Ordner für Żuk'
        for folder in (deep, letters):
            folder.mkdir(parents=True)
            for form in (str, drive_path, lambda path: '\\\\?\\' + drive_path(path)):
                with self.subTest(folder=folder.name[:20], path=form('')):
                    outcome_path = folder / f'r{len(os.listdir(folder))}'
                    outcome_path.write_bytes(request_text())
                    done = run_engine('--request', form(outcome_path))
                    outcome = self.outcome(outcome_path, done.returncode, done.stderr)
                    self.assertEqual((outcome.code, outcome.complaint), (0, ''))
                    self.assertEqual(comparable(outcome.response), wanted)
        (letters / 'relative').write_bytes(request_text())
        done = run_engine('--request', 'relative', cwd=letters)
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.assertEqual(comparable((letters / 'relative.response').read_text()), wanted)


class Search(unittest.TestCase):

    def test_signature(self):
        """The search suite, all in one process: every search and so the node total are the recorded ones."""
        with Session() as session:
            for row in (DATA / 'suite.bench.tsv').read_text().splitlines():
                depth, fen, wanted = row.split('\t')
                self.assertEqual(session.ask('ucinewgame', f'position fen {fen}'), [])
                self.assertEqual(' | '.join(map(str.strip, session.go(f'go depth {depth}'))), wanted)
            self.assertEqual(session.end(), ([], 0))

    def test_clock(self):
        """Milliseconds are milliseconds: of these limits one is too short for all iterations, the other ample."""
        with Session() as session:
            self.assertRegex(session.go('go movetime 20')[0], '^info depth [0-7] ')
            self.assertRegex(session.go('go movetime 60000')[0], '^info depth 8 ')


if __name__ == '__main__':
    unittest.main()
