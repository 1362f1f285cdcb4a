"""The page to look at: zorvane.html with an analysis in it as data."""
import json
import pathlib

from zorvane_judge import OVER, place
from zorvane_requests import Problem

NAME = 'zorvane.html'
# From the folder of the tools: an installation, the unpacked package for Windows, a build.
FOLDERS = ('.', '..', '../build/page')
BEFORE, AFTER = b'<script type="application/json" id="analysis">', b'</script>'


def read_page(path=None):
    """Give the bytes of the page around the data, as two pieces; by default the one that was installed or built."""
    if path is None:
        here = pathlib.Path(__file__).resolve().parent
        path = next((here / folder / NAME for folder in FOLDERS if (here / folder / NAME).is_file()), None)
    if path is None:
        raise Problem(f'there is no {NAME} to put the analysis into: build it with script/build-page, or name one with '
                      '--page')
    pieces = path.read_bytes().split(BEFORE + AFTER)
    if len(pieces) != 2:
        raise Problem(f'{path} is not the page that script/build-page builds')
    return pieces[0] + BEFORE, AFTER + pieces[1]


def as_data(value):
    """Give a value as JSON that a script element can hold."""
    return json.dumps(value, separators=(',', ':')).replace('<', '\\u003c').encode()


def page_pieces(page, head, games):
    """Give the pieces of the page in order; `games` may be a generator. `head` is the data without them."""
    yield page[0] + as_data(head)[:-1] + b',"games":['
    for number, game in enumerate(games):
        yield (b',\n' if number else b'\n') + as_data(game)
    yield b'\n]}' + page[1]


def game_data(game, text, answers, sans):
    """Give a game as the page reads it; `answers` are by question."""
    given = {}
    for question, answer in sorted(answers.items()):
        if answer:
            answer = OVER if answer == OVER else [*answer[:3], ' '.join(answer[3])]
            given.setdefault(place(question), {})[str(question.depth)] = answer
    return {'number': game.number, 'line': game.line, 'problem': game.problem, 'pgn': game.pgn,
            'tags': {name: text.tag(name) for name, _ in text.tags}, 'fen': game.fen, 'moves': game.moves,
            'sans': ' '.join(sans), 'result': text.result, 'mated': game.mated, 'answers': given}
