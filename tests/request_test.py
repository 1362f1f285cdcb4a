"""Request files against the real program: outcomes, limits, failures made for real, cancelling."""
import os
import re
import resource
import shutil
import subprocess
import time
import unittest

from engine_process import (ENGINE, LONG_SEARCH, SAMPLE, RequestCase, comparable, native_only, request_text, run_engine,
                            side_by_side, table)

NO_ANSWER = 'Keine gueltige Stellung oder kein legaler Zug'
LONG_REQUEST = 'position startpos moves ' + LONG_SEARCH     # has 44 legal moves
OUT_OF_TIME = request_text(numbers='300 8 1024 1 1 0 0', position=LONG_REQUEST)
ENDLESS = request_text(numbers='300000 8 1024 1 1 0 0', position=LONG_REQUEST)
USUAL = object()


class Requests(RequestCase):

    def assert_failed(self, outcome, message, response=USUAL, error=USUAL):
        """Exit code 2 and the message. `response` or `error` None: there is no such file."""
        self.assertEqual((outcome.code, outcome.complaint), (2, f'Zorvane request error: {message}\n'))
        self.assertEqual(outcome.response, f'tok\nERROR\n{message}\n' if response is USUAL else response)
        self.assertEqual(outcome.error, message + '\n' if error is USUAL else error)

    def answer_of(self, outcome, token='tok'):
        """The answer in one line, the best line's empty rows at its end left out."""
        self.assertEqual((outcome.code, outcome.complaint, outcome.error), (0, '', None))
        self.assertEqual(outcome.files, {'', '.response'})
        first, *lines, end = comparable(outcome.response).split('\n')
        self.assertEqual((first, lines[0], len(lines), end), (token, 'OK', 20, ''))
        return re.sub('(, 0 0 0 0 0 0)*$', '', ', '.join([' '.join(lines[1:8]), *lines[8:]]))

    def test_recorded_requests(self):
        rows = table('requests.tsv')[::SAMPLE]
        texts = [request_text(numbers=numbers, position=position, hints=filter(None, hints.split(';')))
                 for numbers, position, hints, _ in rows]
        for (numbers, position, hints, wanted), got in zip(rows, side_by_side(self.run_request, texts)):
            with self.subTest(numbers, position=position, hints=hints):
                if got.code:
                    self.assert_failed(got, wanted)
                elif wanted == NO_ANSWER:
                    self.assertEqual(got.response, f'tok\nERROR\n{NO_ANSWER}\n')
                else:
                    self.assertEqual(self.answer_of(got), wanted)

    def test_lines_of_a_request(self):
        """What comes of a whole file: the message and the token that the response repeats, or the answer."""
        for text, token, wanted in table('request_texts.tsv'):
            with self.subTest(text):
                got = self.run_request(text.encode())
                if got.code:
                    self.assert_failed(got, wanted, f'{token}\nERROR\n{wanted}\n' if token else None)
                else:
                    self.assertEqual(self.answer_of(got, token), wanted)

    def test_many_hints(self):
        for others, move in ((255, 'g1f3'), (256, 'b1c3')):
            hints = ['x9 1 1'] * (others - 1) + ['', 'short 1', 'x9 1 1', 'g1f3 1 0']
            got = self.run_request(request_text(numbers='300000 1 0 0 0 1 1', hints=hints))
            self.assertEqual(got.response.split('\n')[2], move)

    def test_time_limit_gives_an_answer(self):
        start = time.monotonic()
        got = self.run_request(OUT_OF_TIME)
        seen_ms = 1000 * (time.monotonic() - start)
        self.answer_of(got)
        depth, _, told_ms, _, moves = map(int, got.response.split('\n')[4:9])
        self.assertTrue(depth < 8 and moves == 44 and 300 <= told_ms <= seen_ms, (depth, told_ms, seen_ms))

    def test_cannot_read(self):
        self.assert_failed(self.run_request(None), 'Cannot open request file', None)
        (self.folder / 'folder').mkdir()
        self.assert_failed(self.run_request(None, 'folder'), 'Cannot open request file', None)

    @native_only
    def test_pipe_is_no_request(self):
        os.mkfifo(self.folder / 'pipe')
        self.assert_failed(self.run_request(None, 'pipe'), 'Cannot open request file', None)

    def test_folder_in_the_way(self):
        for ending, message in {'.response': 'Cannot publish response file',
                                '.response.tmp': 'Cannot create response file'}.items():
            name = next(self.names)
            (self.folder / (name + ending)).mkdir()
            self.assert_failed(self.run_request(request_text(), name), message, None)
        (self.folder / 'e.error.txt').mkdir()
        self.assert_failed(self.run_request(b'x\ntok\n', 'e'), 'Invalid request header', error=None)

    @native_only
    def test_nothing_can_be_written(self):
        """Not at all, or just enough for the failure to be told in the response; or nobody reads the complaint."""
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

        self.answer_of(self.run_request(request_text(), path_of(3900)))
        shutil.rmtree(self.folder)
        self.folder.mkdir()
        for length in (3901, 4095, 9000):
            got = run_engine('--request', path_of(length))
            self.assertEqual((got.returncode, got.stderr), (2, 'Zorvane request error: Request path too long\n'))
            self.assertEqual(list(self.folder.iterdir()), [])

    @native_only
    def test_old_response_is_replaced(self):
        (self.folder / 'r.response').write_text('old')
        self.answer_of(self.run_request(request_text(), 'r'))

    def test_cancel(self):
        for wait_s in (None, 0.2):                      # None: the file is there before the engine starts
            request, cancel = self.folder / 'r', self.folder / 'r.cancel'
            request.write_bytes(ENDLESS)
            if wait_s is None:
                cancel.touch()
            engine = subprocess.Popen([*ENGINE, '--request', request])
            if wait_s is not None:
                time.sleep(wait_s)
                cancel.touch()
            self.assertEqual(engine.wait(60), 0)
            self.assertEqual(list(self.folder.iterdir()), [])

    def test_cancel_without_a_search(self):
        (self.folder / 'r.cancel').touch()
        got = self.run_request(request_text(position='position startpos moves e2e5'), 'r')
        self.assertEqual((got.code, got.response), (0, f'tok\nERROR\n{NO_ANSWER}\n'))
        self.assertEqual(got.files, {'', '.response', '.cancel'})


if __name__ == '__main__':
    unittest.main()
