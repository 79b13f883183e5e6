"""The web page that plays a saved world: the page itself and the shapes of
the world's models, which a browser can't read from their files.

The page loads the player (the engine's package on WebAssembly Python, over
a backend in JavaScript) from a folder beside it, the world from the
archive `<name>.ves` beside it, and the shapes from `<name>.models.json`.
The archive and the player's files are written by the front end.
"""

import base64
import html
import json
import os
import re
import struct
import zlib

from . import models

SIDES = (1, 4096)                     # pixels a side of the page's view
POSITIONS = {"left": "left", "center": "center", "right": "right"}
PAGE_ENDINGS = (".html", ".htm")
PLAYER_FOLDER = re.compile(r"[A-Za-z0-9_][A-Za-z0-9_.-]*\Z")   # beside the page

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>{title}</title>
<style>
  body {{ margin: 0; font-family: sans-serif; }}
  #vessa47-place {{ text-align: {align}; padding: 8px; }}
  #vessa47-world {{ display: inline-block; text-align: left; }}
  #vessa47-world canvas {{ display: block; outline: none; }}
  #vessa47-status {{ font-size: 13px; color: #333; }}
  #vessa47-navigator button {{ width: 2.5em; height: 2em; }}
</style>
</head>
<body>
<div id="vessa47-place">
<div id="vessa47-world">
<canvas id="vessa47-view" width="{width}" height="{height}" tabindex="0" aria-label="{title}"></canvas>
<div id="vessa47-navigator" {navigator_hidden}aria-label="Camera controls">
<button type="button" data-key="Left" data-rawkey="37" aria-label="Turn left">&#8592;</button>
<button type="button" data-key="Up" data-rawkey="38" aria-label="Forward">&#8593;</button>
<button type="button" data-key="Down" data-rawkey="40" aria-label="Back">&#8595;</button>
<button type="button" data-key="Right" data-rawkey="39" aria-label="Turn right">&#8594;</button>
</div>
<div id="vessa47-status" role="status">Loading the world...</div>
</div>
</div>
<script type="module">
import {{ play }} from "./{player}/player.js";
play({{
  player: "./{player}/",
  archive: {archive},
  models: {models_file},
  canvas: document.getElementById("vessa47-view"),
  status: document.getElementById("vessa47-status"),
  navigator: document.getElementById("vessa47-navigator"),
}});
</script>
</body>
</html>
"""


class PageError(Exception):
    """A value the page can't be made with; the message is for the user."""


def check(page, width, height, position, player):
    """The page's values as they will be used, or PageError."""
    page = str(page)
    if not PLAYER_FOLDER.match(str(player)):
        raise PageError("SaveForPlugin: the player's folder %s is not a name of a folder "
                        "beside the page" % player)
    if not page.lower().endswith(PAGE_ENDINGS):
        raise PageError("SaveForPlugin: the page %s must end in .html or .htm" % page)
    try:
        width, height = int(width), int(height)
    except (TypeError, ValueError):
        raise PageError("SaveForPlugin: the size %s x %s is not in pixels" % (width, height)) \
            from None
    low, high = SIDES
    if not (low <= width <= high and low <= height <= high):
        raise PageError("SaveForPlugin: a page's view is %d to %d pixels a side, not %d x %d"
                        % (low, high, width, height))
    align = POSITIONS.get(str(position).strip().lower())
    if align is None:
        raise PageError("SaveForPlugin: the position %s is not Left, Center or Right" % position)
    return page, width, height, align


def model_shapes(things, folder, backend):
    """{path from the folder: the model's parts and its meshes} for every
    model file the things are drawn with. Files outside the folder are not
    the world's (a saved world keeps its files inside it)."""
    folder = os.path.join(os.path.abspath(folder), "")
    shapes = {}
    for path in sorted({models.file_of(thing.model) for thing in things} - {None}):
        if not os.path.abspath(path).startswith(folder):
            continue
        try:
            model = backend.load_model(path)
            described = backend.describe_model(path)
        except ValueError:      # told when the world was loaded; drawn with nothing
            continue
        key = os.path.relpath(path, folder).replace(os.sep, "/")
        shapes[key] = dict(model, meshes=described["parts"],
                           pictures=[png_data_url(p["width"], p["height"], p["rgba"])
                                     for p in described["pictures"]])
    return shapes


def png_data_url(width, height, rgba):
    """A picture (red, green, blue, alpha bytes, bottom row first) as a PNG
    the browser decodes itself, top row first as PNG has it; None when the
    bytes are not width x height pixels."""
    row = 4 * width
    if width <= 0 or height <= 0 or len(rgba) != row * height:
        return None
    rows = b"".join(b"\0" + rgba[y * row:(y + 1) * row] for y in reversed(range(height)))

    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF))

    png = (b"\x89PNG\r\n\x1a\n"
           + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0))
           + chunk(b"IDAT", zlib.compress(rows, 6)) + chunk(b"IEND", b""))
    return "data:image/png;base64," + base64.b64encode(png).decode("ascii")


def write(things, backend, folder, page, width, height, position, navigator, player):
    """Writes the page and its models' shapes beside it; raises PageError
    or OSError."""
    page, width, height, align = check(page, width, height, position, player)
    stem = os.path.splitext(os.path.basename(page))[0]
    title = os.path.basename(os.path.normpath(str(folder))) or stem
    shapes = model_shapes(things, str(folder), backend)
    models_file = stem + ".models.json"
    with open(os.path.join(os.path.dirname(page), models_file), "w", encoding="utf-8") as out:
        json.dump(shapes, out, separators=(",", ":"))
    text = PAGE.format(title=html.escape(title), align=align, width=width, height=height,
                       navigator_hidden="" if _flag(navigator) else "hidden ",
                       player=player, archive=_in_script(stem + ".ves"),
                       models_file=_in_script(models_file))
    with open(page, "w", encoding="utf-8", newline="\r\n") as out:
        out.write(text)


def _in_script(name):
    """A file name as a string of the page's script, which no name can end."""
    return json.dumps(name).replace("<", "\\u003c").replace(">", "\\u003e")


def _flag(value):
    if isinstance(value, str):
        return value.strip().lower() not in ("", "0", "false")
    return bool(value)
