"""Request files against the real program: outcomes, limits, failures made for real, cancelling."""
import os
import resource
import shutil
import subprocess
import time
import unittest

from engine_process import (ENGINE, LONG_SEARCH, RequestCase, comparable, native_only, recorded_blocks,
                            request_text, run_engine, side_by_side, table)

NO_ANSWER = 'Keine gueltige Stellung oder kein legaler Zug'
USUAL = object()
AS_ROOT = os.geteuid() == 0


class Requests(RequestCase):

    def assert_failed(self, outcome, message, response=USUAL, error=USUAL):
        """Exit code 2 and the message. `response` or `error` None: there is no such file."""
        self.assertEqual((outcome.code, outcome.complaint), (2, f'Zorvane request error: {message}\n'))
        self.assertEqual(outcome.response, f'tok\nERROR\n{message}\n' if response is USUAL else response)
        self.assertEqual(outcome.error, message + '\n' if error is USUAL else error)

    def assert_answered(self, outcome, token='tok'):
        self.assertEqual((outcome.code, outcome.complaint, outcome.error), (0, '', None))
        self.assertEqual(outcome.response.split('\n')[:2], [token, 'OK'])
        self.assertEqual(outcome.response.count('\n'), 21)
        self.assertEqual(outcome.files, {'', '.response'})

    def test_recorded_requests(self):
        blocks = recorded_blocks('requests.req')

        def answer(block):
            block = block.rstrip('\n').split('\n')
            request = [line[2:] for line in block if line.startswith('> ')]
            got = self.run_request('\n'.join([*request, '']).encode())
            lines = [block[0]] + ['> ' + line for line in request] + [f'= {got.code}']
            response = comparable(got.response).split('\n')[:-1] if got.response else ['(no response)']
            lines += ['< ' + line for line in response]
            return lines + (['! ' + got.error.rstrip('\n')] if got.error else []), block

        for got, wanted in side_by_side(answer, blocks):
            with self.subTest(wanted[0]):
                self.assertEqual(got, wanted)

    def test_line_ends(self):
        request = request_text(numbers='300000 3 512 1 1 1 1', hints=['b1c3 9 0', 'g1f3 8 1'])
        for name, content in {'plain': request, 'network': request.replace(b'\n', b'\r\n'),
                              'no last line end': request[:-1]}.items():
            with self.subTest(name):
                got = self.run_request(content)
                self.assert_answered(got)
                self.assertEqual(comparable(got.response), comparable(self.run_request(request).response))

    def test_token_lengths(self):
        numbers = '300000 1 0 0 0 0 0'
        for token in ('t', 'a b\tc', 'x' * 126):
            self.assert_answered(self.run_request(request_text(token)), token)
        for length in (127, 200, 17000):                # the rest, if only a line end, is the next line
            got = self.run_request(request_text('x' * length))
            self.assert_failed(got, 'Invalid search parameters', f'{"x" * 127}\nERROR\nInvalid search parameters\n')
        got = self.run_request(request_text('x' * 127 + numbers, numbers='position startpos', position=''))
        self.assert_answered(got, 'x' * 127)

    def test_parameters_and_hints(self):
        late_hints = (['300000 1 0 0 0 1 1', ';'.join(['x9 1 1'] * (n - 1) + ['', 'short 1', 'g1f3 1 0']), wanted]
                      for n, wanted in ((255, 'g1f3 2'), (256, 'g1f3 2'), (257, 'b1c3 0'), (300, 'b1c3 0')))
        for numbers, hints, wanted in [*table('requests.tsv'), *late_hints]:
            with self.subTest(numbers, hints=hints[-30:]):
                got = self.run_request(request_text(numbers=numbers, hints=hints.split(';')))
                if wanted.endswith(('parameters', 'range')):
                    self.assert_failed(got, wanted)
                else:
                    self.assert_answered(got)
                    lines = got.response.split('\n')
                    self.assertEqual(f'{lines[2]} {lines[7]}', wanted)

    def test_cut_at_every_byte(self):
        text, cuts = '', []
        for piece, message in (
                ('ZORVANE_C_REQUEST_1\n', 'Missing request token'), ('t\n1000 1 0 0 0 0 ', 'Invalid search parameters'),
                ('7\n', 'Missing position'), ('position startpo', NO_ANSWER), ('s moves ', ''), ('e2e', NO_ANSWER),
                ('4\ne7e5 1 0\n', '')):
            for byte in piece:
                text += byte
                cuts.append((text, message))
        for (text, message), got in zip(cuts, side_by_side(lambda cut: self.run_request(cut[0].encode()), cuts)):
            with self.subTest(text):
                response = f't\nERROR\n{message}\n'
                if not message:
                    self.assert_answered(got, 't')
                elif message == NO_ANSWER:
                    self.assertEqual((got.code, got.response), (0, response))
                else:
                    self.assert_failed(got, message, None if 'token' in message else response)

    def test_time_limit_gives_an_answer(self):
        got = self.run_request(request_text(numbers='30 8 1024 1 1 0 0',
                                            position='position startpos moves ' + LONG_SEARCH))
        self.assert_answered(got)
        self.assertLess(int(got.response.split('\n')[4]), 8)

    def test_cannot_read(self):
        self.assert_failed(self.run_request(None), 'Cannot open request file', None)
        self.assert_failed(self.run_request(b''), 'Missing request header', None)
        (self.folder / 'folder').mkdir()
        got = run_engine('--request', str(self.folder / 'folder'))
        self.assertEqual(got.returncode, 2)
        self.assertRegex(got.stderr, 'Cannot open request file|Missing request header')

    def run_as_other(self, content):
        """Run a request as a user to whom its permissions apply."""
        engine = shutil.copy(ENGINE[0], self.folder / 'engine')
        path = self.folder / 'box' / 'r'
        if content is not None:
            path.write_bytes(content)
        other = {'user': 'nobody', 'group': 'nogroup', 'extra_groups': []} if AS_ROOT else {}
        done = subprocess.run([engine, '--request', path], capture_output=True, text=True, **other)
        return self.outcome(path, done.returncode, done.stderr)

    @native_only
    def test_permissions(self):
        self.folder.chmod(0o755)
        box = self.folder / 'box'
        box.mkdir()
        self.addCleanup(box.chmod, 0o755)
        (box / 'r').write_bytes(request_text())
        (box / 'r').chmod(0)
        box.chmod(0o777)
        self.assert_failed(self.run_as_other(None), 'Cannot open request file', None)
        (box / 'r').chmod(0o644)
        (box / 'r.error.txt').unlink()
        box.chmod(0o555)
        got = self.run_as_other(None)
        self.assert_failed(got, 'Cannot create response file', None, error=None)
        self.assertEqual(got.files, {''})

    def test_folder_in_the_way(self):
        for ending, message in {'.response': 'Cannot publish response file',
                                '.response.tmp': 'Cannot create response file'}.items():
            name = next(self.names)
            (self.folder / (name + ending)).mkdir()
            self.assert_failed(self.run_request(request_text(), name), message, None)
        (self.folder / 'e.error.txt').mkdir()
        self.assert_failed(self.run_request(b'x\ntok\n', 'e'), 'Invalid request header', error=None)

    @native_only
    def test_file_size_limit(self):
        """Nothing can be written, or just enough for the failure to be told in the response."""
        for size, response, error in ((0, None, ''), (100, 'tok\nERROR\nCannot write response file\n',
                                                      'Cannot write response file\n')):
            limit = {'preexec_fn': lambda size=size: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size)),
                     'restore_signals': False}          # SIGXFSZ stays ignored: writing fails instead
            got = self.run_request(request_text(), **limit)
            self.assert_failed(got, 'Cannot write response file', response, error)

    @native_only
    def test_full_disk(self):
        disk = self.folder / 'disk'
        disk.mkdir()
        mount = ['mount', '-t', 'tmpfs', '-o', 'size=64k', 'tmpfs', disk]
        if not AS_ROOT or subprocess.run(mount, capture_output=True).returncode:
            self.skipTest('no file system can be mounted here')
        self.addCleanup(subprocess.run, ['umount', disk], check=True)
        (disk / 'r').write_bytes(request_text())
        with self.assertRaises(OSError), open(disk / 'filler', 'wb', buffering=0) as filler:
            while filler.write(bytes(4096)):
                pass
        got = run_engine('--request', str(disk / 'r'))
        got = self.outcome(disk / 'r', got.returncode, got.stderr)
        self.assert_failed(got, 'Cannot write response file', None, '')

    def test_path_lengths(self):
        def path_of(length):
            dots = (length - len(str(self.folder)) - 2) // 2
            return str(self.folder) + '/.' * dots + '/' + 'r' * (length - len(str(self.folder)) - 2 * dots - 1)

        self.assert_answered(self.run_request(request_text(), path_of(3900)))
        shutil.rmtree(self.folder)
        self.folder.mkdir()
        for length in (3901, 4095, 9000):
            got = run_engine('--request', path_of(length))
            self.assertEqual((got.returncode, got.stderr), (2, 'Zorvane request error: Request path too long\n'))
            self.assertEqual(list(self.folder.iterdir()), [])

    @native_only
    def test_old_response_is_replaced(self):
        (self.folder / 'r.response').write_text('old')
        self.assert_answered(self.run_request(request_text(), 'r'))

    def test_cancel(self):
        for wait_s in (None, 0.0, 0.3):                 # None: the file is there before the engine starts
            request, cancel = self.folder / 'r', self.folder / 'r.cancel'
            request.write_bytes(request_text(numbers='300000 8 1024 1 1 0 0',
                                             position='position startpos moves ' + LONG_SEARCH))
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
