"""UCI sessions with the real program over pipes."""
import re
import resource
import signal
import subprocess
import time
import unittest

from engine_process import (ENGINE, HANG_S, SAMPLE, Session, in_time, native_only, run_engine, side_by_side, started,
                            table, without_times)
from recorded import SESSIONS, play, sessions

INVALID_POSITION = 'info string invalid position'
INVALID_MOVE = 'info string invalid move in position'
MATE_IN_ONE = 'position startpos moves f2f3 e7e5 g2g4'
CROWDED = 'position fen qqqqkqqq/qqqqqqqq/8/8/8/8/QQQQQQQQ/QQQQKQQQ w - - 0 1'
LONGEST_LINE = 16383


class Uci(unittest.TestCase):

    def test_recorded_sessions(self):
        recorded = [session for name in SESSIONS for session in sessions(name)][::SAMPLE]
        for got, wanted in zip(side_by_side(play, recorded), recorded):
            with self.subTest(wanted.split('\n')[0]):
                self.assertEqual(got.split('\n'), wanted.split('\n'))

    def test_written_at_once(self):
        """The whole output for lines sent in one write, after which the input ends."""
        for text, wanted in table('written_at_once.tsv'):
            with self.subTest(text):
                done = run_engine(input=text.encode(), stdin=None)
                self.assertEqual(done.returncode, 0)
                self.assertRegex(without_times(done.stdout), f'^(?:{wanted})$')

    def test_long_lines(self):
        with Session() as session:
            start = 'position startpos moves'
            for length in (LONGEST_LINE - 1, LONGEST_LINE):
                self.assertEqual(session.ask(start.ljust(length - 4) + 'e2e5'), [INVALID_MOVE])
                self.assertEqual(session.ask(start.ljust(length - 4) + 'e2e4'), [])
            black = session.go('go depth 1')
            self.assertEqual(session.ask('x' * LONGEST_LINE + 'position startpos moves e2e5'), [INVALID_MOVE])
            self.assertEqual(session.ask('x' * LONGEST_LINE + 'ucinewgame'), [])
            self.assertNotEqual(session.go('go depth 1'), black)
            self.assertEqual(session.ask('y' * 1000000), [])
            shuffle = ' g1f3 g8f6 f3g1 f6g8' * 600      # more half-moves than the game history holds
            self.assertEqual(session.ask(start + shuffle), [])
            self.assertEqual(session.go('go depth 1')[-1][:9], 'bestmove ')

    def test_commands_during_a_search(self):
        with Session() as session:
            session.ask(CROWDED)
            for start in ('go infinite', 'gopher', 'go', 'go depth 8', 'go movetime 100000', 'go wtime 90000000'):
                session.send(start)
                self.assertEqual(session.ask('setoption name Threads value 4', 'nonsense', ''), [])
                if start != 'go infinite':
                    session.send('go infinite')             # stops the old search first
                    self.assertRegex(session.read_until('bestmove')[-1], '^bestmove [a-h][1-8][a-h][1-8]$')
                self.assertEqual(session.ask(), [])
                answer = session.ask('stop')
                self.assertRegex(answer[0], '^info depth [0-8] ')
                self.assertEqual((len(answer), answer[1][:9]), (2, 'bestmove '))
            for stopping, said in {'ucinewgame': [], 'position startpos': [], 'position x': [INVALID_POSITION],
                                   'setoption name Hash value 0': [], 'setoption name Hash value 7': []}.items():
                session.send('go infinite')
                answer = session.ask(stopping)
                self.assertEqual((answer[1][:9], answer[2:]), ('bestmove ', said))
            session.send('go infinite', 'go depth 1')
            self.assertEqual([session.read_until('bestmove')[0][:10] for _ in range(2)][1], 'info depth')

    def test_a_limit_ends_the_search(self):
        """Neither early nor much too late; the engine's figures agree with what was measured."""
        with Session() as session:
            def seen_ms():
                session.ask(position)
                start = time.monotonic()
                session.send(line)
                info, best = (session.process.stdout.readline().decode() for _ in range(2))
                seen_ms = 1000 * (time.monotonic() - start)
                told = re.fullmatch(r'info depth [0-7] score cp -?\d+ nodes (\d+) time (\d+) nps (\d+) pv (.*)\n', info)
                self.assertEqual(f'bestmove {told[4]}\n', best)
                nodes, told_ms, rate = map(int, told.groups()[:3])
                self.assertTrue(limit_ms <= told_ms <= seen_ms, (line, told_ms, seen_ms))
                self.assertTrue(nodes * 1000 // (told_ms + 1) <= rate <= nodes * 1000 / told_ms, info)
                return seen_ms

            for position, line, limit_ms in ((CROWDED, 'go movetime 500', 500), (CROWDED, 'go depth 8 wtime 300', 10),
                                             (CROWDED.replace(' w ', ' b '), 'go btime 40 wtime 900000000', 1)):
                self.assertTrue(in_time(seen_ms, limit_ms), line)

    def test_infinite_search_waits_for_stop(self):
        """Nothing is printed before stop, even if the tree is finished at once."""
        with Session() as session:
            session.ask(MATE_IN_ONE)
            for line in ('go infinite', 'go depth 1 infinite', 'go movetime 1 infinite'):
                session.send(line)
                for _ in range(2):
                    time.sleep(0.05)
                    self.assertEqual(session.ask(), [])
                self.assertEqual(session.ask('stop')[-1][:9], 'bestmove ')

    @native_only
    def test_time_passes_while_the_process_is_stopped(self):
        with Session() as session:
            session.ask(CROWDED)

            def late_ms():
                session.send('go movetime 1000')
                time.sleep(0.05)
                session.process.send_signal(signal.SIGSTOP)
                time.sleep(1)
                session.process.send_signal(signal.SIGCONT)
                start = time.monotonic()
                session.read_until('bestmove')
                return 1000 * (time.monotonic() - start)

            self.assertTrue(in_time(late_ms, 0))

    @native_only
    def test_waiting_takes_no_processor(self):
        with Session() as session:
            session.ask(MATE_IN_ONE)
            for line in ('isready', 'go infinite'):
                session.send(line)
                time.sleep(0.1)
                before = session.processor_seconds()
                time.sleep(0.5)
                self.assertLess(session.processor_seconds() - before, 0.1, line)

    @native_only
    def test_memory_of_new_games(self):
        with Session() as session:
            used = []           # a sanitizer keeps freed memory, up to a limit
            for _ in range(40):
                session.ask(*['ucinewgame'] * 100)
                session.go('go depth 1')
                used.append(session.memory_kib('VmRSS'))
            self.assertLess(used[-1] - used[10], 4096, used)

    def allow_memory(self, session, most):
        """Limit the addresses that the engine can take from now on."""
        if session.memory_kib('VmSize') > 2 ** 30:
            self.skipTest('a sanitizer has taken the addresses')
        resource.prlimit(session.process.pid, resource.RLIMIT_AS, (most, resource.RLIM_INFINITY))

    @native_only
    def test_no_thread_to_be_had(self):
        with Session() as session:
            session.ask()
            self.allow_memory(session, 1)
            for _ in range(2):
                self.assertEqual(session.ask('go depth 1'), ['info string thread creation failed'])
            self.allow_memory(session, resource.RLIM_INFINITY)
            self.assertRegex(session.go('go depth 1')[-1], '^bestmove [a-h]')

    @native_only
    def test_no_memory_to_be_had(self):
        with self.assertRaisesRegex(AssertionError, 'the engine ended with 2'), Session() as session:
            session.ask('setoption name Hash value 0')
            self.allow_memory(session, 1)
            session.send('setoption name Hash value 1')

    @native_only
    def test_lost_reader(self):
        """Commands are still read if nobody reads the answers, and the end of the input ends a search."""
        for lines in (b'isready\nuci\nisready\n', b'go infinite\n'):
            with started(ENGINE, stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
                process.stdout.close()
                process.stdin.write(lines)
                process.stdin.flush()
                time.sleep(0.05)
                process.stdin.write(b'isready\n')
                process.stdin.close()
                self.assertEqual(process.wait(HANG_S), 0)


if __name__ == '__main__':
    unittest.main()
