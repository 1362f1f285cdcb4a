#!/usr/bin/env python3
"""What marks moves: the questions asked about a game, and the verdict on its moves."""
import os
import subprocess
import sys
import types
import unittest

from engine_process import ENGINE, HANG_S, ROOT, RequestCase, native_only, table

sys.path[:0] = [str(ROOT / 'tools'), str(ROOT / 'bench')]
from judge import drawn_games  # noqa: E402
from zorvane_judge import OVER, Answer, Options, judge, place, question, wanted  # noqa: E402


MARKS = ('?!', '?', '??')


def read_game(start, moves):
    return types.SimpleNamespace(fen=start or None, mated=moves.endswith('#'),
                                 plies=[types.SimpleNamespace(move=move) for move in moves.rstrip('#').split()])


def read_options(text):
    options = Options()
    for word in text.split():
        name, _, value = word.partition('=')
        if name == 'moves':
            first, _, last = value.partition('-')
            options.moves = int(first), int(last) if last else None
        elif name == 'thresholds':
            options.thresholds = tuple(map(int, value.split(',')))
        else:
            setattr(options, name, int(value) if name == 'depth' else value)
    return options


def read_answers(text):
    """Answers by question; the depth reached is that asked for where nothing else is said."""
    answers = {}
    for word in text.split():
        asked, _, answer = word.partition('=')
        name, _, depth = asked.partition(':')
        number, _, line = answer.partition('/')
        score, _, reached = number.partition('@')
        answers[question(name, int(depth))] = (None if answer == '?' else OVER if answer == OVER else Answer(
            int(score), int(reached or depth), 0, line.split('+')))
    return answers


def verdict_text(verdict):
    """The verdict as the table has it."""
    words = []
    for ply, loss in sorted(verdict.losses.items()):
        word = f'{ply}:{loss},{verdict.centipawns[ply]}'
        if ply in verdict.marks:
            words.append(f'{word}{MARKS[verdict.marks[ply]]}@{verdict.scores[ply]}/{"+".join(verdict.lines[ply])}')
        else:
            words.append(f'{word}@{verdict.scores[ply]}')
    for name, side in verdict.sides.items():
        if side.loss is not None:
            words.append(f'{name}={side.accuracy},{side.loss:.1f},' + '/'.join(map(str, side.counts)))
    rest = {'over': verdict.over, 'time': verdict.time_ended, 'missing': len(verdict.missing)}
    return ' '.join(words + [f'{name}={number}' for name, number in rest.items() if number])


class Judgement(unittest.TestCase):
    def test_rows(self):
        for name, start, moves, options, answers, questions, verdict in table('judgement.tsv'):
            with self.subTest(name):
                game, options, answers = read_game(start, moves), read_options(options), read_answers(answers)
                self.assertEqual(' '.join(f'{place(q)}:{q.depth}' for q in wanted(game, options, answers)), questions)
                self.assertEqual(verdict_text(judge(game, options, answers)), verdict)


class Measurement(RequestCase):
    @native_only
    def test_table(self):
        """bench/judge, with the engine itself as the strong judge: at equal depth every mark is right."""
        games = self.folder / 'games.pgn'
        games.write_text('1. f3 e5 2. g4 Qh4# 0-1\n\n1. e5 *\n\n'
                         '[FEN "6k1/5ppp/8/8/8/8/r4PPP/6K1 b - - 3 30"]\n\n30... h6 *\n')
        (self.folder / 'stockfish').symlink_to(ENGINE[0])
        done = subprocess.run([sys.executable, ROOT / 'bench' / 'judge.py', games, '--engine', ENGINE[0],
                               '--depths', '3', '--judge-depth', '3'], capture_output=True, text=True, timeout=HANG_S,
                              env=os.environ | {'PATH': f'{self.folder}:{os.environ["PATH"]}'})
        self.assertEqual(done.stderr, '')
        self.assertIn('2 games, 5 moves, 3 bad, 2 of them cost 0.2', done.stdout)
        self.assertRegex(done.stdout, r'winning chances, depth 3 \| 3 \| 100 % \| 100 % \| 100 % \|')

    def test_draw(self):
        """Games of 20 moves or more that have a result, in an order that the seed decides."""
        games = self.folder / 'games.pgn'
        rounds = [(9, '1-0'), (12, '*'), (10, '0-1'), (11, '1-0'), (13, '1/2-1/2'), (14, '0-1')]
        games.write_text('\n'.join(f'[Round "{count}"]\n\n{"Nf3 Nf6 Ng1 Ng8 " * count}{result}\n'
                                   for count, result in rounds))

        def drawn(seed, first, last):
            return [len(game.moves.split()) // 4 for game in drawn_games([games], seed, first, last)]
        orders = [drawn(seed, 1, 9) for seed in (1, 2)]
        for seed, order in enumerate(orders, 1):
            self.assertEqual(sorted(order), [10, 11, 13, 14])
            self.assertEqual([*drawn(seed, 1, 1), *drawn(seed, 2, 3)], order[:3])
        self.assertNotEqual(*orders)


if __name__ == '__main__':
    unittest.main()
