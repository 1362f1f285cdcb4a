// The page opened alone: it takes games, dropped, chosen or pasted.
import { button, el } from './dom';
import { DEEPEST, SHALLOWEST } from './judge';

const USUAL_DEPTH = 6;
const DEPTH_WORDS: Record<number, string> = { 4: ' – quick', 6: ' – usual', 8: ' – slow' };

export interface Input {
  name: string;
  /** A file's bytes, or text that was pasted. */
  content: ArrayBuffer | string;
  depth: number;
}

function depthChoice(): HTMLSelectElement {
  const select = el('select', { name: 'depth' });
  for (let depth = SHALLOWEST; depth <= DEEPEST; depth++) {
    select.append(el('option', { value: depth, selected: depth === USUAL_DEPTH },
      `${depth}${DEPTH_WORDS[depth] ?? ''}`));
  }
  return select;
}

/** Files that are dropped anywhere on the page go to `onFile`. */
export function takeDrops(onFile: (file: File) => void): void {
  const marked = (on: boolean) => document.documentElement.classList.toggle('dropping', on);
  addEventListener('dragover', (event) => {
    if (event.dataTransfer?.types.includes('Files')) {
      event.preventDefault();
      marked(true);
    }
  });
  addEventListener('dragleave', (event) => marked(event.relatedTarget !== null));
  addEventListener('drop', (event) => {
    marked(false);
    const file = event.dataTransfer?.files[0];
    if (file) {
      event.preventDefault();
      onFile(file);
    }
  });
}

export class StartView {
  readonly element: HTMLElement;
  private readonly depth = depthChoice();
  private readonly message = el('p', { class: 'message', role: 'alert' });

  constructor(private readonly onInput: (input: Input) => void) {
    const file = el('input', { type: 'file', accept: '.pgn,.txt,text/plain', id: 'file', class: 'hidden-file' });
    file.addEventListener('change', () => {
      const chosen = file.files?.[0];
      file.value = '';
      if (chosen) {
        this.takeFile(chosen);
      }
    });
    const text = el('textarea', { rows: '6', spellcheck: 'false', placeholder: '1. e4 e5 2. Nf3 …' });
    const paste = () => onInput({ name: 'pasted.pgn', content: text.value, depth: this.chosenDepth() });
    this.element = el('section', { class: 'start' },
      el('header', {}, el('h1', {}, 'Where did the game turn?'), el('p', { class: 'soft' },
        'Give this page your games of chess. The engine inside it searches every position on this computer, marks the '
        + 'moves that lost winning chances, and shows what was better.')),
      el('label', { class: 'drop', for: 'file' }, file,
        el('strong', {}, 'Drop a PGN file here'), el('span', {}, 'or choose one from your disk')),
      this.message,
      el('label', { class: 'paste' }, 'Or paste games', text),
      el('div', { class: 'choices' }, el('label', {}, 'Depth ', this.depth),
        button('Analyse the pasted games', paste, { class: 'main' })));
  }

  takeFile(file: File): void {
    void file.arrayBuffer().then(
      (content) => this.onInput({ name: file.name, content, depth: this.chosenDepth() }),
      () => this.say(`${file.name} cannot be read.`));
  }

  say(text: string): void {
    this.message.textContent = text;
  }

  private chosenDepth(): number {
    return Number(this.depth.value);
  }
}
