"""The two charts of docs/performance.md, written as SVG."""

import math
from html import escape

from measure import three_digits

WIDTH = 720
INK, MUTED, GRID = "#1f2933", "#616e7c", "#e4e7eb"
OWN, OTHER = "#1f6feb", "#a3b1c2"


def text(x, y, content, size=13, fill=INK, anchor="start", weight="normal"):
    return (
        f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" fill="{fill}" '
        f'text-anchor="{anchor}" font-weight="{weight}">{escape(content)}</text>'
    )


def line(x1, y1, x2, y2, stroke, width=1):
    return f'<path d="M{x1:.1f} {y1:.1f}L{x2:.1f} {y2:.1f}" stroke="{stroke}" stroke-width="{width}"/>'


def document(height, title, subtitle, parts):
    head = (
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" '
        f'height="{height}" font-family="Helvetica, Arial, sans-serif" role="img">'
    )
    frame = [
        f"<title>{escape(title)}</title>",
        f'<rect width="{WIDTH}" height="{height}" fill="#ffffff"/>',
        text(24, 34, title, 18, weight="bold"),
        text(24, 56, subtitle, 13, MUTED),
    ]
    return "\n".join([head, *frame, *parts, "</svg>", ""])


def bar_chart(title, subtitle, panels):
    """panels: (heading, [(label, value, is own)]); each panel has its own scale."""
    left, right, step, bar = 215, WIDTH - 110, 30, 20
    parts, y = [], 92
    for heading, bars in panels:
        parts.append(text(24, y, heading, 13, weight="bold"))
        scale = (right - left) / max(value for _, value, _ in bars)
        y += 14
        parts.append(line(left, y - 2, left, y + step * len(bars) - 8, MUTED))
        for label, value, own in bars:
            parts.append(text(left - 10, y + 15, label, anchor="end"))
            fill, length = OWN if own else OTHER, value * scale
            parts.append(
                f'<rect x="{left}" y="{y}" width="{length:.1f}" height="{bar}" fill="{fill}"/>'
            )
            parts.append(text(left + length + 8, y + 15, f"{three_digits(value)} million", weight="bold"))
            y += step
        y += 34
    return document(y - 12, title, subtitle, parts)


def duration(seconds):
    return f"{seconds:.2f} s" if seconds >= 1 else f"{seconds * 1000:.3g} ms"


def log_chart(title, subtitle, x_label, points):
    """points: (whole x, seconds), drawn as a line over a logarithmic scale of whole decades."""
    left, right, top, bottom = 84, WIDTH - 44, 86, 362
    low = math.floor(math.log10(min(seconds for _, seconds in points)))
    high = math.ceil(math.log10(max(seconds for _, seconds in points)))
    first, last = points[0][0], points[-1][0]

    def place(x, seconds):
        across = (x - first + 0.6) / (last - first + 0.9)
        up = (math.log10(seconds) - low) / max(high - low, 1)
        return left + across * (right - left), bottom - up * (bottom - top)

    parts = []
    for decade in range(low, high + 1):
        y = place(first, 10.0**decade)[1]
        label = f"{10**decade} s" if decade >= 0 else f"{10.0 ** (decade + 3):g} ms"
        parts.append(line(left, y, right, y, MUTED if decade == low else GRID))
        parts.append(text(left - 10, y + 4, label, 12, MUTED, "end"))
    places = [place(*point) for point in points]
    path = " ".join(f"{x:.1f},{y:.1f}" for x, y in places)
    parts.append(f'<polyline points="{path}" fill="none" stroke="{OWN}" stroke-width="2.5"/>')
    for (x, y), (depth, seconds) in zip(places, points):
        parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="4.5" fill="{OWN}"/>')
        parts.append(text(x + 4, y - 12, duration(seconds), 12, anchor="end", weight="bold"))
        parts.append(text(x, bottom + 20, str(depth), 12, MUTED, "middle"))
    parts.append(text((left + right) / 2, bottom + 44, x_label, 13, MUTED, "middle"))
    return document(bottom + 62, title, subtitle, parts)
