"""The page of tools/zorvane-analyse in a real browser; script/test-page runs it."""
import html
import json
import re
import subprocess
import sys
import unittest

from engine_process import DATA, ENGINE, HANG_S, ROOT, RequestCase

WIDTHS = (390, 1280)
# Looks at the page from outside, as it is: the page allows no scripts.
PROBE = '''<script>onload = () => {
  const looks = [...document.querySelectorAll('iframe')].map(frame => {
    const page = frame.contentDocument, all = selector => [...page.querySelectorAll(selector)]
    const shown = selector => all(selector).filter(e => {
      const box = e.getBoundingClientRect()
      return box.width > 100 && box.height > 50 && box.right <= frame.clientWidth }).length
    const link = page.querySelector('.moves a')
    return { names: all('td.name').map(e => e.textContent), games: shown('article'), curves: shown('.curve svg'),
      areas: shown('.curve path.white'), diagrams: shown('.board'),
      pieces: page.querySelector('.board').querySelectorAll('use').length,
      target: page.getElementById(link.hash.slice(1)).className + link.tabIndex, scripts: all('script').length,
      wider: page.documentElement.scrollWidth > frame.clientWidth,
      paper: getComputedStyle(page.body).backgroundColor } })
  document.body.textContent = 'LOOKS' + JSON.stringify(looks) + 'END' }</script>'''


class Page(RequestCase):

    def looks(self, *arguments):
        """What the browser shows of the page at each width."""
        done = subprocess.run(['chromium', '--headless', '--no-sandbox', '--disable-gpu', '--disable-quic',
                               '--no-first-run', '--disable-background-networking', '--disable-component-update',
                               '--disable-sync', f'--user-data-dir={self.folder / "profile"}', '--dump-dom', *arguments,
                               (self.folder / 'frames.html').as_uri()], capture_output=True, text=True, timeout=HANG_S)
        return json.loads(html.unescape(re.search('LOOKS(.*)END', done.stdout)[1]))

    def test_page(self):
        page = self.folder / 'page.html'
        subprocess.run([sys.executable, ROOT / 'tools' / 'zorvane-analyse', DATA / 'games.pgn', '--html', page,
                        '--depth', '3', '--quiet', '--engine', ENGINE[0]], stderr=subprocess.DEVNULL, timeout=HANG_S)
        frames = ''.join(f'<iframe width="{width}" height="900" srcdoc="{html.escape(page.read_text())}"></iframe>'
                         for width in WIDTHS)
        (self.folder / 'frames.html').write_text(f'<!doctype html><meta charset="utf-8"><body>{frames}{PROBE}')
        papers = []
        for dark in (0, 1):
            for look in self.looks(f'--blink-settings=preferredColorScheme={1 - dark}'):
                self.assertEqual(look['names'][:3], ['<script>alert(1)</script>', 'Duke \\ "Count"', 'Müller'])
                self.assertEqual({key: look[key] for key in ('games', 'curves', 'areas', 'diagrams', 'pieces')},
                                 {'games': 3, 'curves': 3, 'areas': 3, 'diagrams': 9, 'pieces': 32})
                self.assertEqual((look['scripts'], look['wider'], look['target']), (0, False, 'turn0'))
                papers.append(sum(map(int, re.findall(r'\d+', look['paper']))))
        self.assertGreater(min(papers[:2]), 3 * 200)
        self.assertLess(max(papers[2:]), 3 * 60)


if __name__ == '__main__':
    unittest.main()
