// PGN taken apart without loss: every character of a text is in exactly one token, so that whatever a program or a
// person put into a game is still there when it is written again.

export type Kind = 'tag' | 'comment' | 'skip' | 'nag' | 'open' | 'close' | 'result' | 'number' | 'move'

export interface Token {
  kind: Kind;
  text: string;
}

export interface Piece {
  /** The line of the file on which it begins, counted from 1. */
  line: number;
  text: string;
}

// A comment that would swallow the tags of the next game was never closed, and is no comment. A quotation mark inside a
// value ends the tag only before its bracket: many files have quotation marks without a backslash.
const TOKEN = new RegExp([
  String.raw`(?<tag>\[\s*\w[^\s"\]]*\s*"(?:[^"\n]|"(?![ \t]*\]))*"[ \t]*\])`,
  String.raw`(?<comment>\{(?:(?!\n\r?\n\[Event )[^}])*\}|;[^\r\n]*)`,
  String.raw`(?<skip>(?<=^|[\r\n])%[^\r\n]*|\s+|e\.p\.)`,
  String.raw`(?<nag>\$\d+|[!?]+)`,
  String.raw`(?<open>\()`,
  String.raw`(?<close>\))`,
  String.raw`(?<result>\*|(?:1-0|0-1|1\/2(?:-1\/2)?)(?![^\s(){}\[;]))`,
  String.raw`(?<number>\d*\.+|\d+(?=\s|$))`,
  String.raw`(?<move>[^\s(){}\[;!?$*]+|[^])`,
].join('|'), 'gu');

/** All tokens of a text, in order. */
export function* tokens(text: string): Generator<Token> {
  for (const match of text.matchAll(TOKEN)) {
    const kind = Object.entries(match.groups ?? {}).find(([, part]) => part !== undefined);
    yield { kind: (kind?.[0] ?? 'move') as Kind, text: match[0] };
  }
}

/** Name and value of a tag token. */
export function parseTag(text: string): [name: string, value: string] {
  const [, name = '', value = ''] = /^\[\s*([^\s"\]]+)\s*"([^]*)"[ \t]*\]$/.exec(text) ?? [];
  return [name, value.replace(/\\(["\\])/g, '$1')];
}

export function tagText(name: string, value: string): string {
  return `[${name} "${value.replace(/[\\"]/g, '\\$&')}"]`;
}

/** The text of a comment without what makes it one. */
export function commentText(text: string): string {
  return text.startsWith('{') ? text.slice(1, -1) : text.slice(1).replace(/}/g, ')');
}

/** The game that is being read from a file. */
class Current {
  text = '';
  line = 0;
  readonly names = new Set<string>();
  moved = false;
  ended = false;
  depth = 0;

  /** Whether a token belongs to the next game. */
  endsBefore({ kind, text }: Token): boolean {
    if (kind === 'tag') {
      return this.moved || this.ended || (parseTag(text)[0] === 'Event' && this.names.has('Event'));
    }
    return this.ended && ['number', 'move', 'nag'].includes(kind);
  }

  take({ kind, text }: Token, line: number): void {
    const word = ['move', 'nag', 'result'].includes(kind);
    if (!this.line && (word || kind === 'tag')) {
      this.line = line;
    }
    if (kind === 'tag') {
      this.names.add(parseTag(text)[0]);
    }
    this.text += text;
    this.moved ||= word;
    this.depth += Number(kind === 'open') - Number(kind === 'close');
    this.ended ||= kind === 'result' && this.depth === 0;
  }
}

/** The texts of the games of a file. A game ends with its result, or where tags follow moves. */
export function splitGames(text: string): Piece[] {
  const pieces: Piece[] = [];
  let current = new Current();
  let line = 1;
  const close = () => {
    if (current.text.trim()) {
      pieces.push({ line: current.line || line, text: current.text.trim() });
    }
    current = new Current();
  };
  for (const token of tokens(text)) {
    if (current.endsBefore(token)) {
      close();
    }
    current.take(token, line);
    line += token.text.split('\n').length - 1;
  }
  close();
  return pieces;
}
