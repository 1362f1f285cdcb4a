"""What the Windows program does its own way; script/test-windows runs it under wine and a virtual screen."""
import os
import subprocess
import time
import unittest

from engine_process import ENGINE, HANG_S, ROOT, RequestCase, comparable, request_text, run_engine

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


class LineEnds(unittest.TestCase):

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


class Files(RequestCase):

    def test_old_response_stays(self):
        self.beside(self.folder / 'r', '.response').write_text('old')
        outcome = self.run_request(request_text(), name='r')
        self.assertEqual((outcome.code, outcome.complaint, outcome.error, outcome.response),
                         (2, 'Zorvane request error: Cannot publish response file\n',
                          'Cannot publish response file\n', 'old'))

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


if __name__ == '__main__':
    unittest.main()
