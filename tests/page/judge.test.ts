// What marks moves: the rows that tools/zorvane_judge.py passes too.
import assert from 'node:assert/strict';
import test from 'node:test';
import type { Answer, Answers } from '../../web/page/src/analysis';
import { THRESHOLDS, judge, place, wanted, type Judged, type Rule, type Verdict } from '../../web/page/src/judge';
import { MARKS } from '../../web/page/src/marks';
import { table } from './data';

function readRule(text: string): Rule {
  const rule: Rule = { depth: 6, moves: [1, null], side: null, thresholds: THRESHOLDS };
  for (const [name, value = ''] of text.split(' ').map((word) => word.split('='))) {
    const numbers = value.split(/[-,]/).map(Number);
    Object.assign(rule, {
      depth: { depth: numbers[0] }, side: { side: value }, thresholds: { thresholds: numbers },
      moves: { moves: [numbers[0], numbers[1] || null] },
    }[name ?? '']);
  }
  return rule;
}

function readAnswer(text: string, depth: string): Answer | null {
  const [, score, reached, line = ''] = /^(-?\d+)(?:@(\d+))?(?:\/(.*))?$/.exec(text) ?? [];
  return text === '?' ? null : text === 'over' ? 'over'
    : [Number(score), Number(reached ?? depth), 0, line.replaceAll('+', ' ')];
}

function readAnswers(text: string): Answers {
  const answers: Answers = {};
  for (const [, position = '', depth = '', answer = ''] of text.matchAll(/(\S+?):(\d+)=(\S+)/g)) {
    (answers[position] ??= {})[depth] = readAnswer(answer, depth);
  }
  return answers;
}

function verdictText(verdict: Verdict): string {
  const moves = [...verdict.losses].map(([ply, loss]) => {
    const mark = verdict.marks.get(ply);
    const word = `${ply}:${loss},${verdict.centipawns.get(ply)}`;
    const after = `@${verdict.scores.get(ply)}`;
    const line = verdict.lines.get(ply)?.join('+');
    return mark === undefined ? word + after : `${word}${MARKS[mark]?.sign}${after}/${line}`;
  });
  const sides = Object.entries(verdict.sides).filter(([, side]) => side.loss !== null)
    .map(([name, side]) => `${name}=${side.accuracy},${side.loss?.toFixed(1)},${side.counts.join('/')}`);
  const rest = Object.entries({ over: verdict.over, time: verdict.timeEnded, missing: verdict.missing.length })
    .filter(([, number]) => number).map(([name, number]) => `${name}=${number}`);
  return [...moves, ...sides, ...rest].join(' ');
}

for (const row of table('judgement.tsv')) {
  const [name = '', start = '', moves = '', options = '', answers = '', questions, verdict] = row;
  test(`judgement: ${name}`, () => {
    const game: Judged = {
      fen: start || null, moves: moves.replace('#', ''), mated: moves.endsWith('#'), answers: readAnswers(answers),
    };
    const rule = readRule(options);
    assert.equal(wanted(game, rule).map((asked) => `${place(asked)}:${asked.depth}`).join(' '), questions);
    assert.equal(verdictText(judge(game, rule)), verdict);
  });
}
