"""What is different on Windows; script/test-windows runs this under wine with a virtual screen."""
import os
import subprocess
import time
import unittest

from engine_process import ENGINE, HANG_S, ROOT, RequestCase, beside, comparable, outcome_of, request_text, run_engine

CAPTION = 'Zorvane C-Engine'
SCREENSHOT = ROOT / 'build' / 'windows' / 'start-box.png'


def raw(*arguments):
    """Run the program and return exit code, output and errors, byte for byte."""
    done = subprocess.run([*ENGINE, *arguments], stdin=subprocess.DEVNULL, capture_output=True, timeout=HANG_S)
    return done.returncode, done.stdout, done.stderr


def drive_path(path):
    """Return the Windows form of a path of this system."""
    return 'Z:' + str(path).replace('/', '\\')


def start_as_a_person(*arguments):
    """Start the engine as the desktop does, without standard streams; the process ends with its exit code."""
    return subprocess.Popen([ENGINE[0], 'start', '/wait', drive_path(ENGINE[-1]), *arguments],
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def windows_with(caption):
    found = subprocess.run(['xdotool', 'search', '--name', f'^{caption}$'], capture_output=True, text=True,
                           timeout=HANG_S)
    return found.stdout.split()


class StartBox(unittest.TestCase):

    def test_no_standard_input(self):
        """The box has its caption and stays until it is dismissed; then the program ends with 0."""
        process = start_as_a_person()
        self.addCleanup(process.kill)
        deadline = time.monotonic() + HANG_S
        while not (boxes := windows_with(CAPTION)) and time.monotonic() < deadline:
            time.sleep(0.1)
        self.assertEqual(len(boxes), 1)
        time.sleep(0.5)                                     # time for the box to be drawn
        subprocess.run(['import', '-window', 'root', SCREENSHOT], check=True, timeout=HANG_S)
        self.assertIsNone(process.poll())
        subprocess.run(['xdotool', 'windowfocus', boxes[0], 'key', 'Return'], check=True, timeout=HANG_S)
        self.assertEqual(process.wait(timeout=HANG_S), 0)
        self.assertEqual(windows_with(CAPTION), [])

    def test_arguments_need_no_standard_input(self):
        for arguments, code in ((['--foo'], 2), (['--perft', '1'], 0)):
            self.assertEqual(start_as_a_person(*arguments).wait(timeout=HANG_S), code)
        self.assertEqual(windows_with(CAPTION), [])


class LineEnds(unittest.TestCase):

    def test_streams(self):
        """A line ends in one line feed, and bytes that are not text pass unchanged."""
        self.assertEqual(raw('--status'), (0, b'Zorvane C-Engine: OK, bin da.\nProgrammstart erfolgreich. '
                                              b'Keine Schachberechnung ausgefuehrt.\n', b''))
        self.assertEqual(raw('--perft', '2'), (0, b'400\n', b''))
        self.assertEqual(raw('--perft', '2', 'x'), (2, b'', b'Invalid FEN\n'))
        # In text mode, the byte 26 would end the input.
        done = subprocess.run(ENGINE, input=b'a\x1ab\nisready\nuci\r\nquit\n', capture_output=True, timeout=HANG_S)
        self.assertTrue(done.stdout.startswith(b'readyok\nid name '))
        self.assertTrue(done.stdout.endswith(b'uciok\n'))
        self.assertNotIn(b'\r', done.stdout)


class Files(RequestCase):

    def test_old_response_stays(self):
        beside(self.folder / 'r', '.response').write_text('old')
        outcome = self.run_request(request_text(), name='r')
        self.assertEqual((outcome.code, outcome.complaint, outcome.error, outcome.response),
                         (2, 'Zorvane request error: Cannot publish response file\n',
                          'Cannot publish response file\n', 'old'))

    def test_path_forms(self):
        """Drive letters, relative paths, long paths and letters outside ASCII all name the same request."""
        wanted = comparable(self.run_request(request_text()).response)
        deep = self.folder.joinpath(*['f' * 100] * 9)
        letters = self.folder / 'Ordner für Żuk'
        for folder in (deep, letters):
            folder.mkdir(parents=True)
            for form in (str, drive_path, lambda path: '\\\\?\\' + drive_path(path)):
                with self.subTest(folder=folder.name[:20], path=form('')):
                    outcome_path = folder / f'r{len(os.listdir(folder))}'
                    outcome_path.write_bytes(request_text())
                    outcome = outcome_of(outcome_path, form(outcome_path))
                    self.assertEqual((outcome.code, outcome.complaint), (0, ''))
                    self.assertEqual(comparable(outcome.response), wanted)
        (letters / 'relative').write_bytes(request_text())
        done = run_engine('--request', 'relative', cwd=letters)
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.assertEqual(comparable((letters / 'relative.response').read_text()), wanted)


if __name__ == '__main__':
    unittest.main()
