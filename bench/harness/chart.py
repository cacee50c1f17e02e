"""A chart of ratios as an SVG picture that can be read on light and on dark pages."""

import math
from xml.sax.saxutils import escape

from .runners import BASE, SUBJECT
from .tables import best_peer, ratio

ROW_HEIGHT = 17
LEFT, RIGHT, TOP, BOTTOM = 118, 24, 74, 34
WIDTH = 760
HIGHEST = 32

STYLE = """
  text { font: 12px system-ui, sans-serif; fill: #333 }
  .title { font-size: 15px; font-weight: 600 }
  .grid { stroke: #ddd }
  .one { stroke: #555; stroke-width: 1.5 }
  .reach { stroke: #bbb }
  .behind { fill: #c33 }
  .python3 { fill: #3572a5 } .node { fill: #3c873a } .jsc { fill: #d9822b } .qjs { fill: #8a6d3b }
  .mujs { fill: #999 } .perl { fill: #7a5ca8 } .ruby { fill: #b83a4b }
  @media (prefers-color-scheme: dark) {
    text { fill: #ccc } .grid { stroke: #3a3a3a } .one { stroke: #aaa } .reach { stroke: #555 }
    .behind { fill: #f77 }
    .python3 { fill: #6aa5dc } .node { fill: #6cc06a } .jsc { fill: #f0a050 } .qjs { fill: #c9a86b }
    .mujs { fill: #888 } .perl { fill: #a98bdc } .ruby { fill: #e86a7b }
  }
"""


class Axis:
    """The horizontal axis, logarithmic, between powers of two; what lies beyond is drawn at its end."""

    def __init__(self, smallest):
        self.lowest = min(0.5, 2 ** math.floor(math.log2(smallest)))

    def x(self, value):
        share = math.log(min(value, HIGHEST) / self.lowest) / math.log(HIGHEST / self.lowest)
        return LEFT + share * (WIDTH - LEFT - RIGHT)

    def lines(self, height):
        lines, value = [], self.lowest
        while value <= HIGHEST:
            x, kind = self.x(value), "one" if value == 1 else "grid"
            lines.append(f'<line class="{kind}" x1="{x:.1f}" x2="{x:.1f}" y1="{TOP - 6}" y2="{height - BOTTOM}"/>')
            lines.append(f'<text x="{x:.1f}" y="{height - BOTTOM + 16}" text-anchor="middle">{value:g}</text>')
            value *= 2
        return lines


def legend(peers):
    parts, x = [], LEFT
    for peer in peers:
        parts.append(f'<circle class="{peer}" cx="{x}" cy="46" r="4.5"/><text x="{x + 8}" y="50">{peer}</text>')
        x += 26 + 7 * len(peer)
    return parts


def row_parts(row, results, peers, value, axis, y):
    closest, _ = best_peer(results, peers, value)
    ratios = [(ratio(results, peer, value), peer) for peer in peers if peer in results]
    furthest = max(ratios)[0]
    kind = ' class="behind"' if closest < 1 else ""
    parts = [f'<text{kind} x="{LEFT - 10}" y="{y + 4}" text-anchor="end">{escape(row)}</text>',
             f'<line class="reach" x1="{axis.x(closest):.1f}" x2="{axis.x(furthest):.1f}" y1="{y}" y2="{y}"/>']
    for each, peer in sorted(ratios, reverse=True):
        parts.append(f'<circle class="{peer}" cx="{axis.x(each):.1f}" cy="{y}" r="4.5">'
                     f'<title>{escape(row)}: {peer} {each:.2f}</title></circle>')
    return parts


def svg(table, names, value):
    """One row per benchmark, the closest ones at the bottom; a dot for what each peer took."""
    peers = [name for name in names if name not in (SUBJECT, BASE)]
    rows = {row: results for row, results in table.items() if best_peer(results, peers, value)[0]}
    order = sorted(rows, key=lambda row: best_peer(rows[row], peers, value)[0], reverse=True)
    height = TOP + ROW_HEIGHT * len(order) + BOTTOM
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
             f'viewBox="0 0 {WIDTH} {height}" role="img">',
             f"<title>CPU time of other interpreters relative to {SUBJECT}</title>",
             f"<style>{STYLE}</style>",
             f'<text class="title" x="{LEFT}" y="22">CPU time relative to {SUBJECT}: right of 1, '
             f"{SUBJECT} is faster</text>"]
    axis = Axis(best_peer(rows[order[-1]], peers, value)[0])
    parts += legend(peers) + axis.lines(height)
    for index, row in enumerate(order):
        parts += row_parts(row, rows[row], peers, value, axis, TOP + ROW_HEIGHT * index + ROW_HEIGHT // 2)
    return "\n".join(parts + ["</svg>"]) + "\n"
