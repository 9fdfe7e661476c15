"""Draws the time per byte of decode and encode of the offers as bars in an SVG."""

from html import escape

from results import FLOOR, OURS

WIDTH = 840
LABEL = 120  # where bars begin
BAR = 13
GAP = 4
STYLE = """
text { font: 12px sans-serif; fill: #24292f }
.title { font-weight: bold; font-size: 14px }
.body { font-weight: bold }
.value { font-size: 11px }
.ours { fill: #0969da }
.peer { fill: #afb8c1 }
.part { fill: none; stroke: #afb8c1; stroke-dasharray: 3 2 }
.floor { fill: #d4a72c }
.page { fill: #ffffff }
"""
BODIES = ["240B", "1KB", "4KB"]


def bars_of(results, operation, body):
    """(name, kind, time per byte), ours first, then peers, then the floor."""
    ours = results.get(operation, OURS, body)
    bars = [(OURS, "ours", ours.per_byte)] if ours else []
    for peer in results.peers():
        measured = results.get(operation, peer, body)
        if measured:
            bars.append((peer, "part" if measured.lost else "peer", measured.per_byte))
    floor = results.get(FLOOR, "table", body)
    if floor and bars:
        bars.append(("table pass", "floor", floor.per_byte))
    return bars


def panel(results, operation, title, left, width, parts):
    """Draws one operation from the left edge on and returns the height that it takes."""
    groups = [(body, bars_of(results, operation, body)) for body in BODIES]
    longest = max((value for _, bars in groups for _, _, value in bars), default=1.0)
    scale = (width - LABEL - 60) / longest
    parts.append(f'<text class="title" x="{left}" y="24">{escape(title)}</text>')
    y = 48
    for body, bars in groups:
        if not bars:
            continue
        parts.append(f'<text class="body" x="{left}" y="{y}">{escape(body)}</text>')
        for name, kind, value in bars:
            y += BAR + GAP
            start, length = left + LABEL, max(value * scale, 1)
            parts.append(f'<text x="{start - 8}" y="{y}" text-anchor="end">{escape(name)}</text>')
            parts.append(
                f'<rect class="{kind}" x="{start}" y="{y - BAR + 2}" width="{length:.1f}" '
                f'height="{BAR}"/>'
            )
            parts.append(
                f'<text class="value" x="{start + length + 5:.1f}" y="{y}">{value:.2f}</text>'
            )
        y += 2 * BAR + GAP
    return y


def svg(results):
    parts = []
    half = WIDTH // 2
    height = max(
        panel(results, "decode", "Decode and release, ns per byte", 20, half - 20, parts),
        panel(results, "encode", "Encode, ns per byte", half + 20, half - 20, parts),
    )
    parts.append(
        f'<text class="value" x="20" y="{height}">Shorter is faster. Dashed: prints something '
        "else than it read.</text>"
    )
    height += 20
    return (
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" '
        f'height="{height}" role="img" aria-label="Time per byte of decode and encode">\n'
        f"<style>{STYLE}</style>\n"
        f'<rect class="page" width="{WIDTH}" height="{height}"/>\n'
        + "\n".join(parts)
        + "\n</svg>\n"
    )


def write_plot(results, path):
    with open(path, "w", encoding="utf-8") as file:
        file.write(svg(results))
