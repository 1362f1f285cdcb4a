"""UCI sessions with the real program over pipes."""
import re
import subprocess
import time
import unittest

from engine_process import (ENGINE, HANG_S, Session, native_only, recorded_blocks, run_engine, side_by_side, table,
                            unescape, without_times)

INVALID_POSITION = 'info string invalid position'
INVALID_MOVE = 'info string invalid move in position'
MATE_IN_ONE = 'position startpos moves f2f3 e7e5 g2g4'
CROWDED = 'position fen qqqqkqqq/qqqqqqqq/8/8/8/8/QQQQQQQQ/QQQQKQQQ w - - 0 1'
LONGEST_LINE = 16383


def play(block):
    """Play a recorded session; the lines that it gives in place of the recorded ones."""
    name, *lines = block.rstrip('\n').split('\n')
    got = [name]
    with Session() as session:
        for line in lines:
            if line == '> quit':
                session.send('quit')
                got.append(line)
            elif line.startswith('> '):
                command = unescape(line[2:])
                answer = session.go(command) if command.startswith('go') else session.ask(command)
                got += [line, *('< ' + text for text in answer)]
        rest, code = session.end()
    return got + ['< ' + text for text in rest] + [f'= {code}'], [name, *lines]


class Uci(unittest.TestCase):

    def test_recorded_sessions(self):
        blocks = [block for name in ('answers.uci', 'games.uci', 'repetitions.uci') for block in recorded_blocks(name)]
        for got, wanted in side_by_side(play, blocks):
            with self.subTest(wanted[0]):
                self.assertEqual(got, wanted)

    def test_written_at_once(self):
        """All that is said to lines written in one piece, after which the input ends."""
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
            shuffle = ' g1f3 g8f6 f3g1 f6g8' * 600      # more half-moves than the history holds
            self.assertEqual(session.ask(start + shuffle), [])
            self.assertEqual(session.go('go depth 1')[-1][:9], 'bestmove ')

    def test_commands_during_a_search(self):
        with Session() as session:
            session.ask(CROWDED)
            for start in ('go infinite', 'gopher', 'go', 'go depth 8', 'go movetime 100000', 'go wtime 90000000'):
                session.send(start)
                self.assertEqual(session.ask('setoption name Threads value 4', 'nonsense', ''), [])
                if start != 'go infinite':
                    session.send('go infinite')             # ends the old search first
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
        """Not before its time; the position takes longer than that. What is told of it fits what was seen."""
        with Session() as session:
            for position, line, limit_ms in ((CROWDED, 'go movetime 100', 100), (CROWDED, 'go depth 8 wtime 300', 10),
                                             (CROWDED.replace(' w ', ' b '), 'go btime 40 wtime 900000000', 1)):
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

    def test_infinite_search_waits_for_stop(self):
        """It says nothing before it is stopped, even when the tree is done at once."""
        with Session() as session:
            session.ask(MATE_IN_ONE)
            for line in ('go infinite', 'go depth 1 infinite', 'go movetime 1 infinite'):
                session.send(line)
                for _ in range(2):
                    time.sleep(0.05)
                    self.assertEqual(session.ask(), [])
                self.assertEqual(session.ask('stop')[-1][:9], 'bestmove ')

    @native_only
    def test_lost_reader(self):
        """Commands are read on when nobody reads the answers, and the end of the input ends a search."""
        for lines in (b'isready\nuci\nisready\n', b'go infinite\n'):
            with subprocess.Popen(ENGINE, stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
                process.stdout.close()
                process.stdin.write(lines)
                process.stdin.flush()
                time.sleep(0.05)
                process.stdin.write(b'isready\n')
                process.stdin.close()
                self.assertEqual(process.wait(HANG_S), 0)


if __name__ == '__main__':
    unittest.main()
