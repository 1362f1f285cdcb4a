"""The games of a PGN file, as they are read.

    for game in read_games(path):
        print(game.number, game.problem or game.moves)

We split the file, keep tags and comments to ourselves, and give the moves to pgn-extract, which knows every notation.
It sees a comment as a number, so that no comment can make it refuse a game.
"""
import codecs
import itertools
import re
import shutil
import subprocess
import typing

from zorvane_requests import Problem

START_FEN = 'rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1'
# Values of the tag Variant, in lower case, that mean chess.
CHESS = ('', '?', 'standard', 'normal', 'regular', 'from position')
RESULTS = ('1-0', '0-1', '1/2-1/2', '*')
BATCH = 64  # games for one run of pgn-extract
ONE_LINE = '100000000'
LONGEST_READING_S = 60

# A comment that would swallow the tags of the next game was never closed. A quotation mark inside a value ends the tag
# only before its bracket: many files have quotation marks without a backslash. What has no end is one piece, or else a
# hostile file could make the search for ends slow.
PIECE = re.compile(r'''
    (?P<tag>\[\s*(?P<name>\w[^][\s"]{0,99})\s*"(?P<value>(?:[^"\n]|"(?![ \t]{0,9}\]))*)"[ \t]*\]) |
    (?P<comment>\{[^}\n]*(?:\n(?!\r?\n\[Event[ ])[^}\n]*)*\}|;[^\r\n]*) |
    (?P<unclosed>\{[^}\n]*(?:\n(?!\r?\n\[Event[ ])[^}\n]*)*|\[\s*\w[^][\s"]{0,99}\s*"[^\n]*) |
    (?P<skip>(?:^|(?<=\r))%[^\r\n]*|\s+|e\.p\.) |
    (?P<number>\d*\.+) |
    (?P<bracket>[()]) |
    (?P<word>[^][\s{}();*]+|.)''', re.VERBOSE | re.MULTILINE | re.ASCII)
TOKEN = re.compile(r'\d+\.+|(\{[^}]*\}|[()]|[^\s(){}]+)')  # nothing for a move number
COORDINATES = re.compile(r'([a-h][1-8][a-h][1-8][QRBN]?)[+#]?')
LARGE_NUMBER = re.compile(r'\d{10}')
# A result that does not fit the game is no fault of the moves. The name of the game follows it.
HARMLESS = re.compile(r'(File .*\n)?(Inconsistent result strings|Warning: Result of) .*\n.*\n?(File .*\n?)?')
# From these on, pgn-extract ignores the rest of a word and does not say so.
PASSED_OVER = re.compile(r'[\0%\\]')
FAILED_MOVE = re.compile(r'Failed to make move (.*) in the game')


def unescape(value):
    """Give the value of a tag that is written with backslashes."""
    return re.sub(r'\\(["\\])', r'\1', value)


class Move(typing.NamedTuple):
    """A half-move in coordinate text."""
    move: str


class View(typing.NamedTuple):
    """A game for the judge."""
    plies: list
    mated: bool
    fen: typing.Optional[str]


class Ply(typing.NamedTuple):
    """A half-move in the notation of what was parsed, and what follows it."""
    move: str
    marks: list  # as in '$6'
    comments: list  # tokens '{ 0 }', where the number is a place in Text.comments
    rest: list  # variations, each a list of tokens, and the comments between and after them


class Parsed(typing.NamedTuple):
    """The moves of a game as pgn-extract wrote them."""
    opening: Ply  # what comes before the first move
    plies: list
    mated: bool  # the last move mates


class Text(typing.NamedTuple):
    """What the text of a game says, apart from the moves."""
    tags: list  # pairs of name and value, as in the file
    comments: list  # without their braces
    words: list  # of the moves, with '{0}' for a comment
    result: str

    def tag(self, name):
        """Give the unescaped value of a tag, '' when there is none."""
        return unescape(dict(self.tags).get(name, '')).strip()


class Game:
    """A game of a file. To keep many in memory, it holds texts and takes them apart when asked."""

    def __init__(self, number, line, raw):
        self.number, self.line, self.raw = number, line, raw
        self.fen = None  # the start of the game, when it is not the initial position
        self.problem = ''  # why it cannot be analysed
        self.moves = ''  # in coordinate text
        self.parsed = ''  # what pgn-extract made of the words, in coordinate text
        self.mated = False  # the last move mates

    @property
    def pgn(self):
        """The text as it is in the file."""
        for encoding in ('utf-8', 'cp1252'):
            try:
                return self.raw.decode(encoding)
            except UnicodeDecodeError:
                pass
        return self.raw.decode('latin-1')

    def view(self):
        """Give the game as zorvane_judge wants it."""
        return View([Move(move) for move in self.moves.split()], self.mated, self.fen)


def read_games(path):
    """Give all games of a file in order; those that cannot be analysed have a problem and no moves."""
    data = path.read_bytes()
    for mark, encoding in ((codecs.BOM_UTF16_LE, 'utf-16'), (codecs.BOM_UTF16_BE, 'utf-16')):
        if data.startswith(mark):
            data = data.decode(encoding, 'replace').encode()
    games = (Game(number, *game) for number, game in enumerate(split(data.removeprefix(codecs.BOM_UTF8)), 1))
    return in_batches(games, parse_batch)


def in_batches(items, work):
    """Give what `work` gives for lists of the items, as many as pgn-extract gets at a time."""
    items = iter(items)
    while batch := list(itertools.islice(items, BATCH)):
        yield from work(batch)


def split(data):
    """Give the first line and the bytes of each game of a file; together they are the file."""
    text = data.decode('latin-1')  # which keeps each byte
    begin, line, counted, names = 0, 1, 0, set()
    moved = ended = False
    depth = 0
    for piece in PIECE.finditer(text):
        kind, word = piece.lastgroup, piece[0]
        if (kind == 'tag' and (moved or ended or piece['name'] == 'Event' and 'Event' in names) or
                kind in ('number', 'word') and ended and word not in RESULTS):
            yield line, text[begin:piece.start()].encode('latin-1')
            begin, names, moved, ended, depth = piece.start(), set(), False, False, 0
        if not (moved or ended or names):
            line, counted = line + text.count('\n', counted, piece.start()), piece.start()
        if kind == 'tag':
            names.add(piece['name'])
        depth += (word == '(') - (word == ')')
        moved |= kind in ('word', 'unclosed')
        ended |= word in RESULTS and depth == 0
    if text[begin:].strip():
        yield line, text[begin:].encode('latin-1')


def read_text(pgn):
    """Take the text of a game apart."""
    text, depth, result = Text([], [], [], ''), 0, ''
    for piece in PIECE.finditer(pgn):
        kind, word = piece.lastgroup, piece[0]
        depth += (word == '(') - (word == ')')
        if kind == 'tag':
            text.tags.append((piece['name'], piece['value']))
        elif kind == 'comment':
            text.words.append(f'{{{len(text.comments)}}}')
            text.comments.append(word[1:-1] if word[0] == '{' else word[1:].replace('}', ')'))
        elif kind == 'word' and word in RESULTS and depth == 0:
            result = result or word
        elif kind not in ('skip', 'number'):
            text.words.append(word)
    if not result:
        result = text.tag('Result') if text.tag('Result') in RESULTS else '*'
    return text._replace(result=result)


def parse_batch(games):
    """Have pgn-extract read some games."""
    readable = []
    for game in games:
        text = read_text(game.pgn)
        fields = text.tag('FEN').split()
        if len(fields) == 4:  # as in EPD, without the counters
            fields += ['0', '1']
        fen = ' '.join(fields)
        game.fen = fen if fen not in ('', START_FEN) else None
        game.problem = unsuitable(text.tag('Variant'), game.fen) or stray(text.words)
        if not game.problem:
            readable.append((game, game_text(game.fen, text.words, text.result)))
    outputs = pgn_extract([text for _, text in readable], '-Wlalg')
    for (game, _), (output, problem) in zip(readable, outputs):
        game.problem, game.parsed = problem, output
        if not problem:
            parsed = parse(output)
            game.moves, game.mated = ' '.join(ply.move for ply in parsed.plies), parsed.mated
    return games


def unsuitable(variant, fen):
    """Say why a game is not chess as the engine plays it; '' when it is."""
    if variant.lower() not in CHESS:
        return f'the variant is {variant}'
    if fen and LARGE_NUMBER.search(fen):
        return 'its start position has a number that is too large'
    return 'the castling rights are those of Chess960' if fen and is_chess960(fen) else ''


def stray(words):
    """Say what would be lost when pgn-extract reads these words; '' when nothing is."""
    return next((f'{word[:20]!r} is not PGN' for word in words if PASSED_OVER.search(word)), '')


def is_chess960(fen):
    """Whether castling rights name files, or a king or rook that does not stand where chess has it."""
    board, rights = (fen.split() + ['', '', ''])[:3:2]
    rows = re.sub(r'\d', lambda digit: '.' * int(digit[0]), board).split('/')
    if re.search('[A-Ha-h]', rights):
        return True
    for right, row, king, rook in (('K', rows[-1], 'K', 'R'), ('Q', rows[-1], 'K', 'R'),
                                   ('k', rows[0], 'k', 'r'), ('q', rows[0], 'k', 'r')):
        if right in rights and king in row:
            corner = row[-1:] if right in 'Kk' else row[:1]
            side = row[row.index(king):] if right in 'Kk' else row[:row.index(king)]
            if rook in side and (row[4:5], corner) != (king, rook):
                return True
    return False


def game_text(fen, words, result):
    """Give a game as pgn-extract is to read it: no tag or comment of the file is in it."""
    start = f'[SetUp "1"]\n[FEN "{fen}"]\n' if fen else ''
    return '\n'.join(['[Event "?"]', start, *words, result, '', ''])


def pgn_extract(texts, *options):
    """Give for each text of a game what pgn-extract makes of it and '', or '' and what is wrong with it."""
    output, complaint = run_pgn_extract('\n'.join(texts), *options)
    outputs = list(filter(None, re.split(r'\n\n(?=\[)', output)))
    if not complaint and len(outputs) == len(texts):
        return [(output, '') for output in outputs]
    if len(texts) == 1:
        return [('', complaint or f'pgn-extract finds {len(outputs)} games in it')]
    return [pgn_extract([text], *options)[0] for text in texts]


def run_pgn_extract(text, *options):
    """Give what pgn-extract writes about a text, and what it complains about in a line."""
    program = shutil.which('pgn-extract') or shutil.which('pgn-extract', path='/usr/games')
    if not program:
        raise Problem('there is no pgn-extract to read games: install it (Debian has a package of that name)')
    try:
        done = subprocess.run([program, '-s', '--quiet', '-w', ONE_LINE, *options], input=text.encode(),
                              capture_output=True, timeout=LONGEST_READING_S)
    except subprocess.TimeoutExpired:
        return '', f'pgn-extract does not end within {LONGEST_READING_S} s'
    if done.returncode < 0:
        return '', f'pgn-extract was ended by signal {-done.returncode}'
    return done.stdout.decode('utf-8', 'replace'), first_complaint(done.stderr.decode('utf-8', 'replace'))


def first_complaint(complaints):
    """Give the first complaint of pgn-extract, with the move that it is about; '' when there is none."""
    lines = [line for line in HARMLESS.sub('', complaints).split('\n') if line.strip() and not line.startswith('File ')]
    move = FAILED_MOVE.search(complaints)
    if not lines or not move:
        return lines[0] if lines else ''
    return f'{move[1]} is not possible' + (f' ({lines[0]})' if not FAILED_MOVE.match(lines[0]) else '')


def parse(output):
    """Take apart what pgn-extract wrote about one game."""
    opening, plies, mated = Ply('', [], [], []), [], False
    ply, depth, variation = opening, 0, []
    for token in filter(None, TOKEN.findall(output.partition('\n\n')[2])):
        coordinates = COORDINATES.fullmatch(token)
        depth += token == '('
        if depth:
            variation.append(token)
        elif token[0] == '$':
            ply.marks.append(token)
        elif token[0] == '{':
            (ply.rest if ply.rest else ply.comments).append(token)
        elif token not in RESULTS:
            mated = token.endswith('#')
            ply = Ply(coordinates[1].lower() if coordinates else token, [], [], [])
            plies.append(ply)
        if token == ')':
            depth -= 1
            if depth == 0:
                ply.rest.append(variation)
                variation = []
    return Parsed(opening, plies, mated)
