// The page as a file, to save it with an analysis inside. Import this before anything changes the document. What the
// build writes is in the form that browsers write, so that a saved page differs in its analysis alone.

// A pattern, so that the text of the line is in the page only once.
const SLOT = /(<script type="application\/json" id="analysis">)[^]*?(<\/script>)/;

const source = `<!DOCTYPE html>\n${document.documentElement.outerHTML}\n`;

/** The analysis that is inside the page; empty when there is none. */
export function embedded(): string {
  return document.getElementById('analysis')?.textContent ?? '';
}

/** The page with an analysis, in the form that `toJson` gives it. */
export function pageWith(json: string): string {
  return source.replace(SLOT, (_, begin: string, end: string) => begin + json + end);
}
