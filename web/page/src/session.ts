// An analysis with its verdicts: what the views show and the analyser fills.
import type { Analysis, Game } from './analysis';
import type { Search } from './engine';
import { judge, type Verdict } from './judge';

export class Session {
  private readonly verdicts = new Map<Game, Verdict>();

  constructor(readonly analysis: Analysis, readonly search: Search, readonly jobs: number) {}

  /** What is known of a game so far. */
  verdict(game: Game): Verdict {
    let verdict = this.verdicts.get(game);
    if (!verdict) {
      verdict = judge(game, this.analysis.options);
      if (verdict.missing.length === 0) {
        this.verdicts.set(game, verdict);
      }
    }
    return verdict;
  }

  game(number: number): Game | undefined {
    return this.analysis.games.find((game) => game.number === number);
  }
}
