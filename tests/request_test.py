"""Request files with the real program: outcomes, limits, real failures, cancelling."""
import os
import resource
import shutil
import time
import unittest

from engine_process import (ENGINE, HANG_S, LONG_SEARCH, SAMPLE, RequestCase, in_time, native_only, request_text,
                            run_engine, started, table)
from recorded import answer_of, check

NO_ANSWER = 'Keine gueltige Stellung oder kein legaler Zug'
LONG_REQUEST = 'position startpos moves ' + LONG_SEARCH     # has 44 legal moves
OUT_OF_TIME = request_text(numbers='300 8 1024 1 1 0 0', position=LONG_REQUEST)
ENDLESS = request_text(numbers='300000 8 1024 1 1 0 0', position=LONG_REQUEST)
USUAL = object()


class Requests(RequestCase):

    def assert_failed(self, outcome, message, response=USUAL, error=USUAL):
        """Check for exit code 2 and the message. `response` or `error` None: there is no such file."""
        self.assertEqual((outcome.code, outcome.complaint), (2, f'Zorvane request error: {message}\n'))
        self.assertEqual(outcome.response, f'tok\nERROR\n{message}\n' if response is USUAL else response)
        self.assertEqual(outcome.error, message + '\n' if error is USUAL else error)

    def test_recorded_requests(self):
        check(self, 'requests.tsv', table('requests.tsv')[::SAMPLE])

    def test_lines_of_a_request(self):
        """Whole files, and their error message and the token that the response repeats, or their answer."""
        check(self, 'request_texts.tsv', table('request_texts.tsv'))

    def test_many_hints(self):
        unhinted = self.run_request(request_text(numbers='300000 1 0 0 0 1 1')).response.split('\n')[2]
        for others, move in ((255, 'g1f3'), (256, unhinted)):
            hints = ['sevench 1 1'] * (others - 1) + ['', 'short 1', 'x9 1 1', 'g1f3 1 0']
            got = self.run_request(request_text(numbers='300000 1 0 0 0 1 1', hints=hints))
            self.assertEqual(got.response.split('\n')[2], move)

    def test_time_limit_gives_an_answer(self):
        """In time, and that of the last finished iteration."""
        def seen_ms():
            start = time.monotonic()
            got = self.run_request(OUT_OF_TIME)
            seen_ms = 1000 * (time.monotonic() - start)
            answer_of(got)
            lines = got.response.split('\n')
            depth, _, told_ms, _, moves = map(int, lines[4:9])
            self.assertTrue(depth < 8 and moves == 44 and 300 <= told_ms <= seen_ms, (depth, told_ms, seen_ms))
            if depth > 0:
                full = self.run_request(request_text(numbers=f'300000 {depth} 1024 1 1 0 0', position=LONG_REQUEST))
                same = full.response.split('\n')
                self.assertEqual(lines[2:5] + lines[7:], same[2:5] + same[7:])
            return seen_ms

        self.assertTrue(in_time(seen_ms, 300))

    def test_cannot_read(self):
        self.assert_failed(self.run_request(None), 'Cannot open request file', None)
        (self.folder / 'folder').mkdir()
        self.assert_failed(self.run_request(None, 'folder'), 'Cannot open request file', None)

    @native_only
    def test_only_files_count(self):
        """A pipe is not a request, and neither a pipe nor a folder cancels one."""
        os.mkfifo(self.folder / 'pipe')
        self.assert_failed(self.run_request(None, 'pipe'), 'Cannot open request file', None)
        for make in (os.mkfifo, os.mkdir):
            name = next(self.names)
            make(self.folder / (name + '.cancel'))
            got = self.run_request(request_text(numbers='300000 6 0 1 1 0 0'), name)
            self.assertEqual((got.code, got.files), (0, {'', '.response', '.cancel'}))

    def test_folder_in_the_way(self):
        for ending, message in {'.response': 'Cannot publish response file',
                                '.response.tmp': 'Cannot create response file'}.items():
            name = next(self.names)
            (self.folder / (name + ending)).mkdir()
            self.assert_failed(self.run_request(request_text(), name), message, None)
        (self.folder / 'e.error.txt').mkdir()
        self.assert_failed(self.run_request(b'x\ntok\n', 'e'), 'Invalid request header', error=None)

    @native_only
    def test_pipe_or_link_in_the_way(self):
        """The engine does not wait for a reader of the pipe, and writes nothing through the link."""
        target = self.folder / 'target'
        os.mkfifo(self.folder / 'read')
        self.addCleanup(os.close, os.open(self.folder / 'read', os.O_RDONLY | os.O_NONBLOCK))
        for make in (os.mkfifo, lambda path: os.link(self.folder / 'read', path), lambda path: path.symlink_to(target)):
            for content in (None, 'kept'):
                if content:
                    target.write_text(content)
                name = next(self.names)
                make(self.folder / (name + '.response.tmp'))
                self.assert_failed(self.run_request(request_text(), name), 'Cannot create response file', None)
                name = next(self.names)
                make(error := self.folder / (name + '.error.txt'))
                self.assert_failed(self.run_request(b'x\ntok\n', name), 'Invalid request header',
                                   error=content if error.is_file() else None)
                self.assertEqual(target.read_text() if target.exists() else None, content)
            target.unlink()

    @native_only
    def test_nothing_can_be_written(self):
        """Nothing at all, or just enough for the response to name the failure; or nobody reads standard error."""
        for size, response, error in ((0, None, ''), (100, USUAL, USUAL)):
            limit = {'preexec_fn': lambda size=size: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))}
            got = self.run_request(request_text(), **limit)
            self.assert_failed(got, 'Cannot write response file', response, error)
        reader, lost = os.pipe()
        os.close(reader)
        self.addCleanup(os.close, lost)
        got = self.run_request(b'x\ntok\n', stderr=lost)
        self.assertEqual((got.code, got.error), (2, 'Invalid request header\n'))
        self.assertEqual(got.response, 'tok\nERROR\nInvalid request header\n')

    def test_path_lengths(self):
        def path_of(length):
            dots = (length - len(str(self.folder)) - 2) // 2
            return str(self.folder) + '/.' * dots + '/' + 'r' * (length - len(str(self.folder)) - 2 * dots - 1)

        answer_of(self.run_request(request_text(), path_of(3900)))
        shutil.rmtree(self.folder)
        self.folder.mkdir()
        for length in (3901, 4095, 9000):
            got = run_engine('--request', path_of(length))
            self.assertEqual((got.returncode, got.stderr), (2, 'Zorvane request error: Request path too long\n'))
            self.assertEqual(list(self.folder.iterdir()), [])

    @native_only
    def test_old_response_is_replaced(self):
        (self.folder / 'r.response').write_text('old')
        self.addCleanup(os.umask, os.umask(0o027))
        answer_of(self.run_request(request_text(), 'r'))
        self.assertEqual((self.folder / 'r.response').stat().st_mode & 0o777, 0o640)

    def test_cancel(self):
        request, cancel = self.folder / 'r', self.folder / 'r.cancel'

        def late_ms():
            request.write_bytes(ENDLESS)
            with started([*ENGINE, '--request', request]) as engine:
                time.sleep(0.2)
                cancel.touch()
                start = time.monotonic()
                self.assertEqual(engine.wait(HANG_S), 0)
            self.assertEqual(list(self.folder.iterdir()), [])
            return 1000 * (time.monotonic() - start)

        self.assertTrue(in_time(late_ms, 0))

    def test_cancelled_before_it_starts(self):
        (self.folder / 'r.cancel').touch()
        got = self.run_request(ENDLESS, 'r')
        self.assertEqual((got.code, got.complaint, got.files), (0, '', set()))

    def test_cancel_without_a_search(self):
        (self.folder / 'r.cancel').touch()
        got = self.run_request(request_text(position='position startpos moves e2e5'), 'r')
        self.assertEqual((got.code, got.response), (0, f'tok\nERROR\n{NO_ANSWER}\n'))
        self.assertEqual(got.files, {'', '.response', '.cancel'})


if __name__ == '__main__':
    unittest.main()
