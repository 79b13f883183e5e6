"""The engine in a web page: the page's backend, written in JavaScript, seen
as a backend of the engine, and how the page starts a world.

Runs only in a browser's Python (WebAssembly CPython, whose `pyodide`
module converts values between the two languages); nothing here is imported
on the desktop. The page calls start() and then, each frame, Interpreter.Loop().
"""

import os

from .interpreter import Interpreter

GENERATED_TAG = "<treeview>"
HAND_EDITED_TAG = "<Script Text>"
SCRIPT_FILE = "world_script.py"
# The line of a world's Python that parts the generated lines from the code box's.
HAND_EDITED_MARKER = "### Everything below this line is hand-edited Python Code ###"


# JavaScript's null as the browser's Python gives it (not None); set by start().
_js_null = None


def _plain(value):
    """A JavaScript answer as the engine's values: arrays become tuples, null None."""
    if value is _js_null:
        return None
    if hasattr(value, "to_py"):
        value = value.to_py()
    if isinstance(value, list):
        return tuple(_plain(x) for x in value)
    if isinstance(value, dict):
        return {k: _plain(v) for k, v in value.items()}
    return value


class WebBackend:
    """Forwards the backend interface (see backend.py) to the page's
    JavaScript backend, converting arguments and answers; its failures come
    back as the ValueError the engine expects of a file that can't be read."""

    def __init__(self, page_backend, to_js, js_error):
        self._js, self._to_js, self._js_error = page_backend, to_js, js_error

    def _call(self, name, *args):
        return _plain(getattr(self._js, name)(*(self._to_js(a) if isinstance(a, (tuple, list, dict))
                                                else a for a in args)))

    def add_node(self, node_id, values, kind="model"):
        self._call("add_node", node_id, {k: list(v) for k, v in values.items()}, kind)

    def remove_node(self, node_id):
        self._call("remove_node", node_id)

    def get(self, node_id, channel):
        return self._call("get", node_id, channel)

    def set(self, node_id, channel, value):
        self._call("set", node_id, channel, [float(x) for x in value])

    def set_parent(self, node_id, parent_id):
        self._call("set_parent", node_id, parent_id)

    def bounds(self, node_id):
        return self._call("bounds", node_id)

    def get_style(self, node_id, style):
        return self._call("get_style", node_id, style)

    def set_style(self, node_id, style, value):
        self._call("set_style", node_id, style, value)

    def add_tween(self, node_id, channel, delta, start, duration, style):
        return self._call("add_tween", node_id, channel, list(delta or ()), float(start),
                          float(duration), str(style))

    def cancel(self, tween_id):
        self._call("cancel", tween_id)

    def step(self, now):
        return list(self._call("step", float(now)))

    def tween_count(self):
        return self._call("tween_count")

    def poll_input(self):
        return [dict(event) for event in self._call("poll_input")]

    def first_hit(self, origin, direction, max_distance):
        return self._call("first_hit", list(origin), list(direction), float(max_distance))

    def screen_size(self):
        return self._call("screen_size")

    def model_formats(self):
        return list(self._call("model_formats"))

    def load_model(self, path):
        try:
            model = self._call("load_model", str(path))
        except self._js_error as exc:
            raise ValueError(str(exc.message if hasattr(exc, "message") else exc)) from None
        return {"name": model["name"], "parts": list(model["parts"]),
                "files": list(model["files"]), "missing": list(model["missing"])}

    def store_model(self, path, parts):
        raise ValueError("%s can't be written: a web page keeps no files" % path)

    def __getattr__(self, name):
        # The view, drawing and sound calls take and give plain values.
        method = getattr(self._js, name)
        return lambda *args: _plain(method(*args))


def hand_edited_line(text):
    """The first line (from 0) of the code box's text in a world's Python:
    the one after the marker; 0 (all of it) without one."""
    lines = text.replace("\r\n", "\n").replace("\r", "\n").split("\n")
    for number, line in enumerate(lines):
        if line.strip() == HAND_EDITED_MARKER:
            return number + 1
    return 0


def start(page_backend, folder, manual_clock=False):
    """Loads the world in folder over the page's backend and runs its
    Python as a run does: the generated lines, then the code box's. With
    manual_clock the world's time moves only by AdvanceClock."""
    from pyodide.ffi import JsException, jsnull, to_js
    from js import Object

    global _js_null
    _js_null = jsnull
    engine = Interpreter(backend=WebBackend(
        page_backend, lambda v: to_js(v, dict_converter=Object.fromEntries), JsException))
    if manual_clock:
        engine.UseManualClock()
    failure = engine.LoadWorld(folder)
    if failure:
        return engine
    run_script(engine, folder)
    return engine


def run_script(engine, folder):
    path = _script_path(folder)
    if path is None:
        return
    with open(path, encoding="latin-1", newline="") as script:
        text = script.read()
    if not text.endswith("\n"):
        text += "\n"
    last = text.replace("\r\n", "\n").replace("\r", "\n").count("\n") - 1
    first_edited = hand_edited_line(text)
    engine.ExecuteLines(text, 0, first_edited - 1, GENERATED_TAG, "exec")
    engine.ExecuteLines(text, first_edited, last, HAND_EDITED_TAG, "exec")


def _script_path(folder):
    for name in os.listdir(folder):
        if name.lower() == SCRIPT_FILE:
            return os.path.join(folder, name)
    return None

