# The games of a PGN file, read and written by pgn-extract: it knows every notation, we only take its output apart.
#
#     for game in read_games(path):
#         if game.problem: ...
#         for ply in game.plies: ...
#     text, complaints = pgn_extract(game.text())
import dataclasses
import re
import shutil
import subprocess

from zorvane_requests import Problem

START = 'rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR'
START_FEN = START + ' w KQkq - 0 1'
ONE_LINE = '100000000'

# What tells where games begin: tags behind moves. A comment that swallows the tags of a game was never closed.
PIECE = re.compile(rb'(?P<tag>\[\s*\w+\s*"(?:\\.|[^"\\\n])*"\s*\])|(?P<line>;[^\n]*)|'
                   rb'(?P<other>\{(?:(?!\n\r?\n\[Event )[^}])*\}|^%[^\n]*|\s+)|(?P<moves>[^\s{;\[]+|.)', re.MULTILINE)
TAG = re.compile(r'^\[(\w+) "(.*)"\]$', re.MULTILINE)
TOKEN = re.compile(r'\d+\.+|(\{[^}]*\}|[()]|[^\s(){}]+)')  # nothing for a move number
COORDINATES = re.compile(r'[a-h][1-8][a-h][1-8][QRBN]?[+#]?')
RESULTS = ('1-0', '0-1', '1/2-1/2', '*')
# A result that does not fit the game is no fault of the moves; behind it stands the name of the game.
HARMLESS = re.compile(r'(File .*\n)?(Inconsistent result strings|Warning: Result of) .*\n.*\n?(File .*\n?)?')


# A move of the game with what belongs to it.
@dataclasses.dataclass
class Ply:
    move: str
    marks: list = dataclasses.field(default_factory=list)
    comments: list = dataclasses.field(default_factory=list)
    rest: list = dataclasses.field(default_factory=list)  # variations, and the comments between and behind them


@dataclasses.dataclass
class Game:
    number: int = 0  # in the file
    line: int = 0  # of the file, where it begins or breaks
    problem: str = ''  # why it cannot be analysed
    tags: dict = dataclasses.field(default_factory=dict)  # values as in the file, with their backslashes
    opening: Ply = dataclasses.field(default_factory=lambda: Ply(''))  # what stands before the first move
    plies: list = dataclasses.field(default_factory=list)
    result: str = '*'
    mated: bool = False  # the last move mates

    def text(self):
        tags = [f'[{name} "{value}"]' for name, value in self.tags.items()]
        words = [word for ply in (self.opening, *self.plies)
                 for word in (ply.move, *ply.marks, *ply.comments, *ply.rest) if word]
        return '\n'.join([*tags, '', ' '.join([*words, self.result]), ''])

    # The text that a tag stands for; empty when it is unknown.
    def tag(self, name):
        value = re.sub(r'\\(.)', r'\1', self.tags.get(name, ''))
        return '' if value.strip('?.- ') == '' else value


# What pgn-extract makes of a text, and what it complains about.
def pgn_extract(text, *options):
    program = shutil.which('pgn-extract') or shutil.which('pgn-extract', path='/usr/games')
    if not program:
        raise Problem('there is no pgn-extract to read games: install it (Debian has a package of that name)')
    done = subprocess.run([program, '-s', '--quiet', *options], input=text.encode(), capture_output=True)
    complaints = HARMLESS.sub('', done.stderr.decode('utf-8', 'replace'))
    if done.returncode < 0:
        complaints += f'pgn-extract was ended by signal {-done.returncode}'
    return done.stdout.decode('utf-8', 'replace'), complaints.strip()


# The first line and the text of each game of a file. A comment to the end of a line gets braces, which
# pgn-extract asks for.
def split_games(data):
    line, begin, pieces, moves_seen = 1, 1, [], False
    for piece in PIECE.finditer(data.removeprefix(b'\xef\xbb\xbf')):
        kind, text = piece.lastgroup, piece[0]
        if kind == 'tag' and moves_seen:
            yield begin, b''.join(pieces)
            begin, pieces, moves_seen = line, [], False
        moves_seen |= kind == 'moves'
        pieces.append(text if kind != 'line' else b'{' + text[1:].strip().replace(b'}', b')') + b'}')
        line += text.count(b'\n')
    yield begin, b''.join(pieces)


# All games of a file in order; those that cannot be analysed have a problem and perhaps no moves.
def read_games(path):
    number = 0
    for line, data in split_games(path.read_bytes()):
        try:
            text = data.decode()
        except UnicodeDecodeError:
            text = data.decode('latin-1')
        output, complaints = pgn_extract(text, '-Wlalg', '-w', ONE_LINE)
        for number, game in enumerate([Game()] if complaints else parse(output), number + 1):
            game.number, game.line = number, line
            if complaints:
                place = re.search(r'Line number: (\d+)', complaints)
                game.line += int(place[1]) - 1 if place else 0
                game.problem = next((x for x in complaints.split('\n') if not x.startswith('File ')), complaints)
            elif game.tags.get('FEN', START_FEN) != START_FEN:
                game.problem = 'it begins from a FEN, and a request counts moves from the initial position'
            yield game


# Give the games of a text that pgn-extract wrote.
def parse(output):
    return map(parse_game, filter(None, re.split(r'\n\n(?=\[)', output)))


def parse_game(text):
    tags, _, moves = text.partition('\n\n')
    game = Game(tags=dict(TAG.findall(tags)))
    ply, depth = game.opening, 0
    for token in filter(None, TOKEN.findall(moves)):
        mates = token.endswith('#')
        if COORDINATES.fullmatch(token):
            token = token.rstrip('+#').lower()
        depth += token == '('
        if depth == 0 and token in RESULTS:
            game.result = token
        elif depth == 0 and token[0] not in '{$':
            ply, game.mated = Ply(token), mates
            game.plies.append(ply)
        elif depth or ply.rest:
            ply.rest.append(token)
        elif token[0] == '$':
            ply.marks.append(token)
        else:
            ply.comments.append(token)
        depth -= token == ')'
    return game
