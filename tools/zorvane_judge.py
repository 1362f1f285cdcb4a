"""Which moves of a game lost winning chances: what has to be searched to know it, and the verdict.

    while questions := wanted(game, options, answers):
        answers.update((question, search(question)) for question in questions)
    verdict = judge(game, options, answers)

Both procedures are pure: they search nothing and change nothing. The rule's numbers are in zorvane_rule.json.

A game has `plies` (each with its `move` in coordinate text), `mated` (the last move mates) and `fen`, its start or None
for the initial position. Options have `depth`, `moves` (the first and the last move number to judge; the
last may be None), `side` ('White', 'Black' or None for both) and `thresholds`. `answers` is a dictionary from each
Question to an Answer, to OVER where there is no legal move, or to None where no answer could be had: what is in it is
not asked again. The rule itself asks about positions of the game only, in two rounds.
"""
import dataclasses
import json
import math
import pathlib
import typing

from zorvane_requests import LEAST_MATE, MATE

RULE = json.loads(pathlib.Path(__file__).with_name('zorvane_rule.json').read_text('ascii'))
OVER = 'over'
SIDES = ('White', 'Black')


class Question(typing.NamedTuple):
    """The position after `ply` half-moves of the game and then the moves `extra`, searched to `depth`."""
    ply: int
    extra: tuple
    depth: int


class Answer(typing.NamedTuple):
    """What a search found: centipawns from White's view, the depth it finished, nodes, the best line."""
    score: int
    depth: int
    nodes: int
    line: list


@dataclasses.dataclass
class Options:
    """What is judged, how deep, and what loss of winning chances, in ten-thousandths, makes each kind of mark."""
    depth: int = 6
    moves: tuple = (1, None)
    side: typing.Optional[str] = None
    thresholds: tuple = tuple(RULE['thresholds'])


@dataclasses.dataclass
class SideVerdict:
    """What a side's judged moves came to; None where it has none."""
    accuracy: typing.Optional[int]  # 0 to 1000, the best
    loss: typing.Optional[float]  # centipawns a move, in tenths
    counts: list  # of marks, by kind


@dataclasses.dataclass
class Verdict:
    """What came out about a game, by half-move; 0 is the start."""
    scores: dict = dataclasses.field(default_factory=dict)  # centipawns, of the position after it
    over: int = 0  # the half-move that ended the game by mate or stalemate, 0 for none
    losses: dict = dataclasses.field(default_factory=dict)  # winning chances, 0 or more
    centipawns: dict = dataclasses.field(default_factory=dict)  # lost, 0 or more
    marks: dict = dataclasses.field(default_factory=dict)  # 0 inaccuracy, 1 mistake, 2 blunder
    lines: dict = dataclasses.field(default_factory=dict)  # the engine's, from before it; the deeper one with a mark
    sides: dict = dataclasses.field(default_factory=dict)  # a SideVerdict for each of SIDES
    time_ended: int = 0  # searches that their time limit ended
    missing: list = dataclasses.field(default_factory=list)  # questions without an answer


def chances(score):
    """Give White's winning chances for centipawns, -10000 (lost) to 10000 (won)."""
    rule = RULE['chances']
    score = max(-rule['limit'], min(rule['limit'], score))
    # Of the absolute value: halves are rounded away from zero.
    size = _rounded(rule['scale'] * (2 / (1 + math.exp(-rule['factor'] * abs(score))) - 1))
    return size if score > 0 else -size


def place(question):
    """Name the position of a question: '12', or '12+e2e4' with moves that the game did not take."""
    return '+'.join([str(question.ply), *question.extra])


def question(name, depth):
    """Give the question about a position that place() named."""
    ply, *extra = name.split('+')
    return Question(int(ply), tuple(extra), depth)


def mover(game, ply):
    """Say who makes a half-move, counted from 1: 0 White, 1 Black."""
    return (ply - 1 + start_of(game.fen)[1]) % 2


def start_of(fen):
    """Give the number of the first move, 1 or more, and whether Black makes it; None is the initial position."""
    fields = (fen or '').split()
    number = max(1, int(fields[5])) if len(fields) > 5 and fields[5].isdecimal() else 1
    return number, fields[1:2] == ['b']


def judged(game, options):
    """Give the half-moves to judge, counted from 1."""
    first, last = options.moves
    number, black_begins = start_of(game.fen)
    return [ply for ply in range(1, len(game.plies) + 1)
            if first <= number + (ply - 1 + black_begins) // 2 <= (math.inf if last is None else last)
            and options.side in (None, SIDES[mover(game, ply)])]


def wanted(game, options, answers):
    """Give the questions that still need an answer before judge() has all it looks at; none at the end."""
    return [asked for asked in _questions(game, options, answers) if asked not in answers]


def judge(game, options, answers):
    """Give the verdict; a move that lacks an answer has no loss, and what is missing is in the verdict."""
    verdict, plies = Verdict(), judged(game, options)
    for ply in sorted({ply - back for ply in plies for back in (0, 1)}):
        _take_position(game, options, answers, ply, verdict)
    for ply in plies:
        lost, asked = _weigh(game, options, answers, ply)
        if lost:
            verdict.losses[ply], verdict.centipawns[ply] = lost
            kind = sum(lost[0] >= threshold for threshold in options.thresholds)
            if kind:
                verdict.marks[ply] = kind - 1
                verdict.lines[ply] = list(answers[asked[-2]][3])  # of the search that confirmed it
    questions = _questions(game, options, answers)
    verdict.missing = [asked for asked in questions if not answers.get(asked)]
    verdict.time_ended = sum(_ended_by_time(asked, answers.get(asked)) for asked in questions)
    verdict.sides = {side: _side(game, verdict, index) for index, side in enumerate(SIDES)}
    return verdict


def lost_between(game, answers, ply, better, played):
    """Give what half-move `ply` lost from the answer to question `better` to that to `played`.

    That is winning chances and centipawns, 0 or more, for who made the move.
    """
    sign, cap = 1 - 2 * mover(game, ply), RULE['centipawns']
    scores = [sign * _score(game, answers, asked) for asked in (better, played)]
    capped = [max(-cap, min(cap, score)) for score in scores]
    return tuple(max(0, before - after) for before, after in (map(chances, scores), capped))


def _score(game, answers, asked):
    """Give the score that answers a question, from White's view."""
    answer = answers[asked]
    if answer != OVER:
        return answer[0]
    return MATE * (1 - 2 * mover(game, asked.ply)) if game.mated else 0


def _questions(game, options, answers):
    """Give all questions that the answers so far lead to."""
    needed = {asked for ply in judged(game, options) for asked in _weigh(game, options, answers, ply)[1]}
    return sorted(needed, key=lambda asked: (asked.depth, asked.ply, asked.extra))


def _weigh(game, options, answers, ply):
    """Give what a half-move lost, as lost_between does or None while it is not known, and all questions about it."""
    before, after = (Question(ply - back, (), options.depth) for back in (1, 0))
    lost, asked = _compare(game, answers, ply, before, after), [before, after]
    if lost and _is_candidate(lost[0], options):
        # Both searches end after the same half-move of the game, so that neither side has a move more. One to depth 8
        # sees fewer tactics at its end than one to depth 7 after the move: no line goes beyond ply 11.
        deeper = min(options.depth + RULE['deeper'], RULE['comparable'])
        before, after = before._replace(depth=deeper), after._replace(depth=deeper - 1)
        lost, asked = _compare(game, answers, ply, before, after), [*asked, before, after]
    return lost and (_share(lost[0]), lost[1]), asked


def _compare(game, answers, ply, before, after):
    if not answers.get(before) or not answers.get(after):
        return None
    if _choice(answers[before]) == game.plies[ply - 1].move:
        return 0, 0
    return lost_between(game, answers, ply, before, after)


def _is_candidate(loss, options):
    part, whole = RULE['candidate']
    return loss * whole >= options.thresholds[0] * part


def _share(loss):
    """Give what of a loss that the engine sees a strong judge confirms on average."""
    part, whole = RULE['share']
    return loss * part // whole


def _choice(answer):
    """Give the engine's move, '' where there is none."""
    return answer[3][0] if answer != OVER and answer[3] else ''


def _ended_by_time(asked, answer):
    return bool(answer) and answer != OVER and answer[1] < asked.depth and abs(answer[0]) < LEAST_MATE


def _take_position(game, options, answers, ply, verdict):
    asked = Question(ply, (), options.depth)
    answer = answers.get(asked)
    if not answer:
        return
    verdict.scores[ply] = _score(game, answers, asked)
    if answer == OVER:
        verdict.over = ply
    else:
        verdict.lines[ply + 1] = list(answer[3])


def _rounded(number):
    """Round a number that is not negative, halves up, as other languages do it too."""
    return math.floor(number + 0.5)


def accuracy(loss):
    """Give how well a move was made that lost winning chances: 0 to 100000, the best."""
    rule = RULE['accuracy']
    percent = rule['top'] * math.exp(-rule['decay'] * 50 * loss / RULE['chances']['scale']) - rule['bottom']
    return _rounded(1000 * max(0, min(100, percent)))


def _side(game, verdict, side):
    def own(values):
        return [value for ply, value in sorted(values.items()) if mover(game, ply) == side]
    losses, marks = own(verdict.losses), own(verdict.marks)
    if not losses:
        return SideVerdict(None, None, [0] * len(RULE['thresholds']))
    return SideVerdict(_rounded(sum(map(accuracy, losses)) / len(losses) / 100),
                       _rounded(10 * sum(own(verdict.centipawns)) / len(losses)) / 10,
                       [marks.count(kind) for kind, _ in enumerate(RULE['thresholds'])])
