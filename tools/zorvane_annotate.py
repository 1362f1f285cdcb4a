"""A game with evaluations, marks and better lines, as PGN.

    annotation = Annotation(game, verdict, plies)
    pgn = annotation.pgn(parse(output), tags)       (where pgn-extract has made `output` of annotation.source())

What an earlier analysis by this tool added is replaced. It is known by the command [%zorvane ...] in comments: with a
number after a move it names the mark that was added there, with `line` it is in a variation that was added. The tags
of that analysis name the moves whose evaluations are ours.
"""
import decimal
import re

from zorvane_judge import Options, judged, start_of
from zorvane_pgn import COORDINATES, RESULTS, game_text, parse, read_text, unescape
from zorvane_requests import mate_in

MARKS = ('$6', '$2', '$4')  # inaccuracy, mistake, blunder
TAG_PREFIX = 'Analysis'
TAGS = [TAG_PREFIX + name for name in (
    'Engine', 'Version', 'Signature', 'Depth', 'TimeLimit', 'Moves', 'Thresholds', 'EndedByTime', 'WhiteAccuracy',
    'WhiteLoss', 'BlackAccuracy', 'BlackLoss')]
OWN_LINE = '[%zorvane line]'
OWN_COMMAND = re.compile(r'\[%zorvane (\w+)\]')
SCORE = re.compile(r'\[%eval [^\]]{0,99}\]')
COMMENT_WORD = re.compile(r'\[%[^\]]{0,999}\]|\S+')
LIKE_ANOTHER_LINE = re.compile(r'[%;]|\[(?!%)')  # escaped, a comment to the end of the line, a tag
RANGE = re.compile(r'(\d{1,9})-(\d{0,9})(?: of (White|Black))?')
WIDTH = 79


def score_text(score):
    """Give a score from White's view as PGN has it: pawns, or moves to the mate."""
    mate = mate_in(score)
    return f'#{mate}' if mate else f'{score / 100:.2f}'


def loss_text(centipawns):
    """Give an average loss in pawns. What is exactly between two numbers goes up, as in JavaScript."""
    return str(decimal.Decimal(centipawns / 100).quantize(decimal.Decimal('0.01'), decimal.ROUND_HALF_UP))


def range_text(options):
    """Give the moves that are judged, as in '1-' or '3-40 of White'."""
    first, last = options.moves
    return f'{first}-{last or ""}' + (f' of {options.side}' if options.side else '')


def earlier_scores(game, text):
    """Give the half-moves whose evaluations come from an earlier analysis by this tool."""
    found = RANGE.fullmatch(text.tag(TAG_PREFIX + 'Moves'))
    if not found:
        return set()
    return set(judged(game.view(), Options(moves=(int(found[1]), int(found[2]) if found[2] else None), side=found[3])))


def comment_of(token, text):
    """Give the text of a comment from its token '{ 0 }'."""
    return text.comments[int(token.strip('{ }'))]


def is_own(variation, text):
    """Whether a variation comes from an earlier analysis by this tool."""
    return variation[2][0] == '{' and OWN_LINE in comment_of(variation[2], text)


def first_move(variation):
    """Give the first move of a variation in coordinate text."""
    move = next(token for token in variation if token[0] not in '({$')
    return COORDINATES.fullmatch(move)[1].lower() if COORDINATES.fullmatch(move) else move


def remove_own(ply, text):
    """Remove the mark and the variation of an earlier analysis from a half-move."""
    for comment in ply.comments:
        for mark in OWN_COMMAND.findall(comment_of(comment, text)):
            if f'${mark}' in ply.marks:
                ply.marks.remove(f'${mark}')
    ply.rest[:] = [item for item in ply.rest if item[0] == '{' or not is_own(item, text)]


def flat(items):
    """Give the tokens of comments and variations."""
    return [token for item in items for token in ([item] if isinstance(item, str) else item)]


class Annotation:
    """A game that gets evaluations, marks and better lines; `plies` were judged."""

    def __init__(self, game, verdict, plies):
        self.game, self.verdict = game, verdict
        self.scores = {n: f'[%eval {score_text(verdict.scores[n])}]' for n in plies
                       if n in verdict.scores and n != verdict.over}
        self.text = read_text(game.pgn)
        self.added = {}  # what names an added mark, by half-move
        self.own = f'{{{len(self.text.comments)}}}'
        self.text.comments.append(OWN_LINE)

    def source(self):
        """Give the game with marks and lines for pgn-extract, which turns coordinates into SAN."""
        parsed = parse(self.game.parsed)
        words = [*parsed.opening.comments, *flat(parsed.opening.rest)]
        for n, ply in enumerate(parsed.plies, 1):
            remove_own(ply, self.text)
            if n in self.verdict.marks:
                self._mark(n, ply)
            words += [ply.move, *ply.marks, *ply.comments, *flat(ply.rest)]
        return game_text(self.game.fen, words, self.text.result)

    def _mark(self, n, ply):
        line, mark = self.verdict.lines[n], MARKS[self.verdict.marks[n]]
        if mark not in ply.marks:
            ply.marks.append(mark)
            self.added[n] = f'[%zorvane {mark[1:]}]'
        if line[0] not in [first_move(item) for item in ply.rest if item[0] == '(']:
            ply.rest.insert(0, ['(', line[0], self.own, *line[1:], ')'])

    def pgn(self, parsed, tags):
        """Give the PGN; `parsed` is what pgn-extract made of the source, `tags` say how the game was analysed."""
        replaced = earlier_scores(self.game, self.text) | self.scores.keys()
        words = []
        for n, ply in enumerate((parsed.opening, *parsed.plies)):
            comments = [clean(comment_of(token, self.text), n in replaced) for token in ply.comments]
            comments = [self.scores.get(n, ''), *comments, self.added.get(n, '')]
            rest = ['{' + comment_of(token, self.text) if token[0] == '{' else token for token in flat(ply.rest)]
            for word in (ply.move, *ply.marks, *('{' + comment for comment in comments), *rest):
                if word[:1] == '{' and words and words[-1][0] == '{':
                    words[-1] += ' ' + word[1:]
                elif word.strip('{ '):
                    words.append(word)
        fields = [(name, unescape(value)) for name, value in self.text.tags if name not in TAGS]
        fields += [(TAG_PREFIX + name, str(value)) for name, value in tags.items()]
        head = ''.join(f'[{name} "{escape(value)}"]\n' for name, value in fields)
        return head + '\n' + wrap([*numbered(words, self.game.fen), self.text.result]) + '\n\n'


def escape(value):
    """Give the value of a tag as it is written."""
    return re.sub(r'(["\\])', r'\\\1', value)


def clean(comment, without_score):
    """Give a comment without what an earlier analysis wrote into it."""
    comment = OWN_COMMAND.sub('', comment)
    return (SCORE.sub('', comment) if without_score else comment).strip()


def numbered(words, fen):
    """Give the words with move numbers, where a reader needs them."""
    number, black_begins = start_of(fen)
    ply = 2 * number + black_begins
    around, interrupted = [], True
    for word in words:
        if word == '(':
            around.append(ply)
            ply -= 1
        elif word == ')':
            ply = around.pop()
        elif word[0] not in '{$' and word not in RESULTS:
            if interrupted or ply % 2 == 0:
                yield f'{ply // 2}.' + '..' * (ply % 2)
            ply += 1
        interrupted = word[0] in '({)' or interrupted and word[0] == '$'
        yield word


def wrap(words):
    """Give the words in lines. A command in a comment stays on one, and no line begins like something else."""
    lines, bracket = [''], ''
    for word in words:
        if word == '(':
            bracket += word
            continue
        pieces = ['{', *COMMENT_WORD.findall(word[1:]), '}'] if word[0] == '{' else [word]
        for piece in pieces:
            piece, bracket = bracket + ' '.join(piece.split()), ''
            blank = '' if piece == ')' or not lines[-1] else ' '
            if not blank or LIKE_ANOTHER_LINE.match(piece) or len(lines[-1]) + len(piece) < WIDTH:
                lines[-1] += blank + piece
            else:
                lines.append(piece)
    return '\n'.join(lines)
