"""The questions about many games, their answers in a folder, and the searches that give them.

The answers are in a database of the folder, so that a stopped analysis goes on and many games take little memory. An
answer is known by its token: a hash of all that it depends on, the engine included. One of another engine, an older
version or other limits has another token.
"""
import hashlib
import json
import re
import sqlite3
import threading

import zorvane_requests
import zorvane_uci
from zorvane_batch import REQUEST_SUFFIX, Batch
from zorvane_judge import OVER, Question, wanted
from zorvane_requests import NO_SEARCH, Problem, Request

JOURNAL = 'zorvane-answers.sqlite'
TOKEN_LENGTH = 24
POSITION_SUFFIX = '.position'


def run(engine, path, search, urgency):
    """Have an engine answer a Request or a Position, give the result."""
    if isinstance(search, Request):
        return zorvane_requests.run(engine, path, search, urgency)
    return zorvane_uci.search(engine, search, urgency)


class Answers:
    """All answers to questions about games; `identity` is what the output says of the engine."""

    def __init__(self, folder, identity, options):
        self.folder, self.identity, self.options = folder, identity, options
        self.reasons = {}  # why a search had no answer in this run, by game
        self.last_asked = 0
        self.lock = threading.Lock()  # Workers read the next question in threads of their own.
        self.database = None
        # What the system has taken survives the end of this process.
        self._execute('PRAGMA synchronous = OFF')
        self._execute('CREATE TABLE IF NOT EXISTS answers (token TEXT PRIMARY KEY, answer TEXT) WITHOUT ROWID')
        self._execute('CREATE TEMP TABLE asked (id INTEGER PRIMARY KEY, token TEXT UNIQUE, game, question)')

    def _execute(self, command, *values):
        with self.lock:
            try:
                if self.database is None:
                    path = self.folder / JOURNAL
                    self.database = sqlite3.connect(path, isolation_level=None, check_same_thread=False)
                return self.database.execute(command, values).fetchall()
            except sqlite3.Error as problem:
                raise Problem(f'cannot keep answers in {self.folder}: {problem}') from None

    def search_for(self, game, question):
        """Give the search that answers a question. Equal ones have the same token, in all runs."""
        moves = [*game.moves.split()[:question.ply], *question.extra]
        limits = {'time_ms': self.options.time, 'depth': question.depth, 'token': ''}
        search = zorvane_uci.Position(game.fen, moves, **limits) if game.fen else Request(moves, **limits)
        search.token = hashlib.sha256(json.dumps([self.identity, search.text()]).encode()).hexdigest()[:TOKEN_LENGTH]
        return search

    def keep(self, token, result):
        """Keep a result; False when it is no answer."""
        if result['status'] == 'ok':
            answer = [result['score'], result['depth'], result['nodes'], ' '.join(result['line'] or [result['move']])]
        elif result.get('error') == NO_SEARCH:
            answer = OVER
        elif result['status'] == 'refused':
            answer = {'refused': result['error']}
        else:
            return False
        self._execute('INSERT OR REPLACE INTO answers VALUES (?, ?)', token, json.dumps(answer))
        return True

    def any(self):
        """Whether there is any answer."""
        return bool(self._execute('SELECT token FROM answers LIMIT 1'))

    def known(self, game):
        """Give the answers about a game, by question, and the questions that have none yet.

        A refused question has the answer None.
        """
        view, answers, found = game.view(), {}, True
        while found:
            missing = wanted(view, self.options, answers)
            found = {question: answer for question in missing if (answer := self._find(game, question))}
            for question, answer in found.items():
                answers[question] = answer if answer == OVER else self._usable(game, answer)
        return answers, missing

    def _find(self, game, question):
        try:
            token = self.search_for(game, question).token
        except Problem as problem:
            self.reasons.setdefault(game.number, str(problem))
            return None
        rows = self._execute('SELECT answer FROM answers WHERE token = ?', token)
        answer = json.loads(rows[0][0]) if rows else None
        if answer == OVER and not question.extra and question.ply < len(game.moves.split()):
            return {'refused': NO_SEARCH}
        return answer

    def _usable(self, game, answer):
        if isinstance(answer, dict):
            self.reasons.setdefault(game.number, answer['refused'])
            return None
        return [*answer[:3], answer[3].split()]

    def prepare_round(self, games):
        """Note all questions that have no answer and were not asked in this run; give their number."""
        self._execute('BEGIN')
        [(self.last_asked,)] = self._execute('SELECT COALESCE(MAX(id), 0) FROM asked')
        for index, game in enumerate(games):
            for question in self.known(game)[1]:
                try:
                    token = self.search_for(game, question).token
                except Problem:
                    continue  # Its reason is noted.
                self._execute('INSERT OR IGNORE INTO asked (token, game, question) VALUES (?, ?, ?)',
                              token, index, json.dumps(question))
        self._execute('COMMIT')
        return self._execute('SELECT COUNT(*) FROM asked WHERE id > ?', self.last_asked)[0][0]

    def searches(self, games):
        """Give the searches of the prepared round; the place of each is its game."""
        while rows := self._execute('SELECT id, game, question FROM asked WHERE id > ? ORDER BY id LIMIT 1',
                                    self.last_asked):
            self.last_asked, game = rows[0][0], games[rows[0][1]]
            ply, extra, depth = json.loads(rows[0][2])
            search = self.search_for(game, Question(ply, tuple(extra), depth))
            search.place = game.number
            yield search

    def collect(self):
        """Take the answers to printed jobs, give what failed. Jobs without an answer are left as they are."""
        failures = []
        kinds = ((REQUEST_SUFFIX, zorvane_requests.read_result, zorvane_requests.clean_up),
                 (POSITION_SUFFIX, zorvane_uci.read_answer, zorvane_uci.clean_up))
        for suffix, read, clean_up in kinds:
            for path in sorted(self.folder.glob('*' + suffix)):
                if not re.fullmatch(f'[0-9a-f]{{{TOKEN_LENGTH}}}', path.stem):
                    continue  # It is not ours: the folder may hold requests of zorvane-host.
                result = read(path, path.stem)
                if result['status'] != 'missing':
                    if not self.keep(path.stem, result):
                        failures.append(result.get('error', result['status']))
                    clean_up(path)
        return failures

    def jobs(self, games):
        """Write the files of the prepared round; give for each the path and whether it is a request."""
        for search in self.searches(games):
            is_request = isinstance(search, Request)
            path = self.folder.resolve() / (search.token + (REQUEST_SUFFIX if is_request else POSITION_SUFFIX))
            (zorvane_requests if is_request else zorvane_uci).write(path, search)
            yield path, is_request

    def ask(self, engine, games):
        """Have engines answer all questions, round by round. False when it was interrupted."""
        while total := self.prepare_round(games):
            with Batch(engine, jobs=self.options.jobs, total=total, quiet=self.options.quiet, run=run) as batch:
                for search, result in batch.results(self.searches(games)):
                    if not self.keep(search.token, result):
                        self.reasons.setdefault(search.place, result.get('error', result['status']))
            if batch.interrupts:
                return False
        return True
