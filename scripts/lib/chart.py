# SPDX-License-Identifier: Apache-2.0
"""Draws the tables of one subject as a column of lines, in an SVG that is readable on a light page and on a dark one."""
import math
from html import escape

WIDTH, LABELS, VALUES, THICKNESS, GAP = 860, 330, 110, 14, 8

STYLE = """
  text { font: 12px system-ui, sans-serif; fill: #24292f; }
  .title { font-size: 15px; font-weight: 600; } .table { font-weight: 600; }
  .faint { fill: #57606a; }
  .ours { fill: #1a7f8c; } .limit { fill: #8c959f; } .peer { fill: #c08a3e; }
  .wanted { stroke: #24292f; stroke-width: 2; }
  @media (prefers-color-scheme: dark) {
    text { fill: #e6edf3; } .faint { fill: #9da7b1; }
    .wanted { stroke: #e6edf3; } .ours { fill: #3fb6c4; } .limit { fill: #6e7681; } .peer { fill: #d9a860; }
  }
"""


def scale(values):
    """How long a line is, from 0 to 1, and whether the scale is logarithmic."""
    low, high = min(values), max(values)
    if high <= 20 * low:
        return (lambda value: value / high), False
    floor = math.log10(low) - 0.5  # the smallest is a line, too
    return (lambda value: (math.log10(value) - floor) / (math.log10(high) - floor)), True


def text(x, y, content, kind="", anchor="start"):
    return f'<text x="{x}" y="{y}" class="{kind}" text-anchor="{anchor}">{escape(content)}</text>'


def draw_table(table, top, number):
    """The elements of one table, and how far down they reach."""
    rows = [row for row in table.rows if row.value]
    if not rows:
        return [], top
    wanted = table.wanted()
    length, logarithmic = scale([row.value for row in rows] + ([wanted] if wanted else []))

    def across(value):
        return max(1, round(length(value) * (WIDTH - LABELS - VALUES)))

    elements = [text(0, top + 12, table.title, "table"),
                text(WIDTH, top + 12, table.measured_in() + (", logarithmic" if logarithmic else ""), "faint", "end")]
    y = top + 20
    for row in rows:
        width = across(row.value)
        elements += [text(LABELS - 8, y + 11, row.name, "", "end"),
                     f'<rect x="{LABELS}" y="{y}" width="{width}" height="{THICKNESS}" rx="2" class="{row.role}"/>',
                     text(LABELS + width + 6, y + 11, number(row.value), "faint")]
        if wanted and row.role == "ours":
            # Where the line has to end, and the figure beside it out of the way.
            x = LABELS + across(wanted)
            elements[-1] = text(max(LABELS + width, x) + 6, y + 11, number(row.value), "faint")
            elements.append(f'<path d="M{x} {y - 3}v{THICKNESS + 6}" class="wanted"/>')
        y += THICKNESS + GAP
    return elements, y + 14


def draw(title, tables, number):
    elements, y = [text(0, 16, title, "title")], 34
    elements += [f'<path d="M{WIDTH - 345} 4v14" class="wanted"/>', text(WIDTH - 337, 15, "ours at most")]
    for x, (kind, name) in zip((WIDTH - 240, WIDTH - 165, WIDTH - 90),
                               (("ours", "ours"), ("limit", "limit"), ("peer", "others"))):
        elements += [f'<rect x="{x}" y="5" width="12" height="12" rx="2" class="{kind}"/>', text(x + 17, 15, name)]
    for table in tables:
        drawn, y = draw_table(table, y, number)
        elements += drawn
    lines = "\n  ".join(elements)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="-10 -4 {WIDTH + 20} {y + 4}" width="{WIDTH + 20}" '
            f'role="img">\n  <!-- SPDX-License-Identifier: Apache-2.0 -->\n  <title>{escape(title)}</title>\n'
            f"  <style>{STYLE}  </style>\n  {lines}\n</svg>\n")
