// The page: opened alone it takes games and analyses them, with an analysis inside it shows it.
import { embedded } from './page_source';
import { fromJson, type Analysis } from './analysis';
import { byId, el } from './dom';
import { THRESHOLDS } from './judge';
import { takeKeys } from './keyboard';
import { decode, readGames } from './pgn_in';
import { StartView, takeDrops, type Input } from './start_view';
import { Viewer } from './viewer';
import { JOBS, search } from './zorvane';

const LONGEST_MS = 300000;

const main = byId('main');
const start = new StartView((input) => void take(input));
let viewer: Viewer | null = null;

function show(analysis: Analysis): Viewer {
  viewer?.close();
  viewer = new Viewer(main, analysis, search, JOBS, leave);
  viewer.route();
  return viewer;
}

function leave(): void {
  viewer?.close();
  viewer = null;
  main.replaceChildren(start.element);
}

// Games that the reader gives.
async function take(input: Input): Promise<void> {
  start.say('Reading the games…');
  const text = typeof input.content === 'string' ? input.content : decode(input.content);
  const games = await readGames(text, (share) => start.say(`Reading the games… ${Math.round(share * 100)} %`));
  start.say(games.length ? '' : 'There is no game in it.');
  if (games.length) {
    history.replaceState(null, '', '#');
    const written = `${new Date().toISOString().slice(0, 16).replace('T', ' ')} UTC`;
    show({
      format: 1, source: input.name, written, engine: ENGINE,
      options: { depth: input.depth, time: LONGEST_MS, moves: [1, null], side: null, thresholds: THRESHOLDS }, games,
    }).analyse();
  }
}

// An analysis that is inside the page.
function open(text: string): void {
  try {
    const analysis = fromJson(text);
    const [only, second] = analysis.games;
    if (only && !second && !location.hash) {
      history.replaceState(null, '', `#game-${only.number}`);
    }
    show(analysis);
  } catch (problem) {
    main.replaceChildren(el('p', { role: 'alert' },
      `The analysis inside this page cannot be read: ${(problem as Error).message}.`));
  }
}

function listen(): void {
  takeDrops((file) => {
    if (!viewer?.busy) {
      start.takeFile(file);
    }
  });
  takeKeys(() => viewer?.game ?? null);
  addEventListener('hashchange', () => {
    viewer?.route();
    main.focus({ preventScroll: true });
  });
  addEventListener('beforeunload', (event) => {
    if (viewer?.busy) {
      event.preventDefault();
    }
  });
  for (const name of ['help', 'licences']) {
    byId(`${name}-button`).addEventListener('click', () => byId<HTMLDialogElement>(name).showModal());
  }
}

listen();
if (embedded().trim()) {
  open(embedded());
} else {
  leave();
}
