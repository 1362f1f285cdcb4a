"""The two charts of docs/performance.md, as SVG. The same numbers give the same file."""

import matplotlib
from matplotlib import pyplot

OWN, OTHER, GRID = "#1f6feb", "#a3b1c2", "#e4e7eb"

matplotlib.use("svg")
pyplot.rcParams.update({
    "svg.hashsalt": "zorvane", "svg.fonttype": "none", "font.sans-serif": ["DejaVu Sans"], "font.size": 10,
    "axes.titlelocation": "left", "axes.titlesize": 10, "axes.titleweight": "bold",
    "axes.spines.top": False, "axes.spines.right": False, "axes.spines.bottom": False,
})


def save(figure, title, path):
    figure.suptitle(title, x=0.01, ha="left", fontsize=13, weight="bold")
    figure.savefig(path, metadata={"Title": title, "Date": None, "Creator": None})


def bar_chart(title, panels, label, path):
    """Write a bar chart. panels maps a heading to values by name, our own first; each panel has its own scale."""
    figure, rows = pyplot.subplots(len(panels), figsize=(7.2, 0.4 + 1.2 * len(panels)), squeeze=False,
                                   layout="constrained")
    for axes, (heading, values) in zip(rows.flat, panels.items()):
        bars = axes.barh(list(values), values.values(), color=[OWN] + [OTHER] * (len(values) - 1))
        axes.bar_label(bars, map(label, values.values()), padding=6)
        axes.set_title(heading)
        axes.invert_yaxis()
        axes.margins(x=0.25)
        axes.tick_params(bottom=False, labelbottom=False, left=False)
    save(figure, title, path)


def log_chart(title, heading, x_label, values, label, path):
    """Write a line chart with a logarithmic scale. values maps whole numbers to what is drawn."""
    figure, axes = pyplot.subplots(figsize=(7.2, 4.2), layout="constrained")
    axes.semilogy(list(values), values.values(), "o-", color=OWN, linewidth=2)
    for x, y in values.items():
        axes.annotate(label(y), (x, y), (4, 8), textcoords="offset points", ha="right", weight="bold")
    axes.yaxis.set_major_formatter(lambda y, _: label(y))
    axes.minorticks_off()
    axes.grid(axis="y", color=GRID)
    axes.margins(x=0.14, y=0.15)
    axes.set_title(heading)
    axes.set_xlabel(x_label)
    save(figure, title, path)
