"""The backend interface, and its pure-Python implementation.

The engine keeps every object's transform, color and drawing style in the
backend and asks it to ease values over time; the backend knows nothing of
names, parts, commands or events. The compiled backend `vessa._backend` (scene
graph, drawing) implements the same methods; create() answers it when it can
be imported and PythonBackend otherwise (a browser, a plain source tree).

Interface (ids are the engine's integer object ids; vectors are tuples):
    add_node(node_id, values, kind="model")
        values: {channel: tuple}; a missing channel takes its default. kind:
        "scene", "camera", "light" or "model". A scene node is the top of
        the drawn world; any other node is drawn while its parent is.
    remove_node(node_id)
    get(node_id, channel) -> tuple
    set(node_id, channel, value)
    set_parent(node_id, parent_id)   None takes the node out of the world
    bounds(node_id) -> ((x, y, z), (x, y, z)) or None
        The lowest and highest corner of the box around the node's own
        shape (not its children's), in the node's frame: its position is the
        origin, its axes the box's, its size included. None for a node
        without a shape (a scene, camera or light).
    get_style(node_id, style) / set_style(node_id, style, value)
        How the node's own shape is drawn (STYLES has the defaults):
        "visible", "texture" and "shadow" (it casts one on the high-quality
        path) are truth values; "filling" ("Solid",
        "Lines", "Points") and "lighting" ("Lit", "UnLit") are kept as given
        and read without regard to case; "model" names the shape of a model
        node: "" a box one meter on each side, which its size stretches,
        "text:<words>" solid letters on its front, "<file>#<part>" a part of
        a model file (see load_model). Its color tints the shape: white
        leaves the shape's own colours.
    add_tween(node_id, channel, delta, start, duration, style) -> tween id
        Changes the channel by delta over [start, start + duration], shaped by
        the style's easing curve. Tweens add up: two on one channel combine.
        For "orientation", delta is (axis x, y, z, angle in radians) in the
        parent's frame. node_id None makes a pure timer.
    cancel(tween_id)                 the value stays where it has got to
    step(now) -> [tween id, ...]     advances every tween to now (never past
        its end) and answers those that reached their end, in order of end
    tween_count() -> int

The camera view (texts answered are failures; None is success). It looks
through the first camera node in the world and draws only when something
changed. Where nothing can be drawn (no window system) these succeed idle.
    open_view(width, height, host_id)   in the front end's window host_id
    move_view(host_id), resize_view(width, height), close_view()
    focus_view()                     keys go to the view
    check_drawing() -> ""            or why no OpenGL context can be made
    hardware_accelerated() -> bool
    set_acceleration(on)             the high-quality (True) or light path
    frames_per_second() -> float     frames drawn in the last second
    save_picture(path, width=0, height=0)   a picture of the world as a BMP
        file: the view's own, or drawn offscreen through the first camera
        where there is no view; a width and height (pixels) draw it
        offscreen at that size, view or not
    screen_size() -> (width, height) of the screen in pixels
    poll_input() -> [event, ...]     mouse and keys in the view since the
        last call, each a dict: kind ("LeftMouseDown", "LeftMouseUp",
        "RightMouseDown", "RightMouseUp", "MouseMove", "Wheel", "KeyDown",
        "KeyUp"), x, y (pixels), node (under the pointer at a button, or
        None), point (where it meets that node), ray ((origin, direction),
        the pointer's line of sight), wheel (steps), key ("A", "Up"),
        rawkey (Windows key code), shift, control
    input_waiting() -> bool
    first_hit(origin, direction, max_distance) -> distance or None
        how far along the line (direction of unit length, engine world
        frame) the first visible model shape in the world is met

Model files (.mdl, the engine's own, and those of other programs):
    model_formats() -> [extension, ...]  the kinds load_model reads, lower
        case, without the dot ("mdl", "gltf", "obj", ...); none for a
        backend that reads no model files
    load_model(path) -> {"name": text, "parts": [part, ...], "files": [...],
                         "missing": [...]}
        parts[0] is the object, parents come before their children; each
        part is {"name", "parent" (index or None), "position",
        "orientation" (relative to the parent), "vertices", "faces"}. A
        node's style "model" "<path>#<index>" draws it with that part.
        "files": what the file named and was read with it (materials,
        pictures), as paths from its folder with "/" between folders, never
        leading out of it; "missing": what it named that is not there, as
        it names them. Raises ValueError with a message for the user when
        the file can't be read, or holds nothing that can be seen.
    describe_model(path) -> {"parts": [[mesh, ...] per part], "pictures": [...]}
        what the parts are made of, to be drawn elsewhere (a web page):
        each mesh {"positions", "normals", "colors", "texcoords" (none, or
        s t a vertex), "triangles", "diffuse", "ambient", "specular",
        "emission" (r g b, or None: the drawing's own), "shininess" (or
        None), "blended", "picture" (index into pictures, or None)}, numbers in the file's right-handed axes
        (x mirrored from the engine's); each picture {"width", "height",
        "rgba" (bytes, bottom row first)}. ValueError as load_model
    store_model(path, parts)         writes nodes as one object (.mdl):
        parts are (node_id, name, parent index or None), the object first

Sound (silent, and successful, where there is no sound device):
    start_sound()
    load_sound(path) -> failure text or None    whether it can be played
    play_sound(path, volume=1.0) -> failure text or None
"""

import wave

from . import geometry

CHANNELS = ("position", "orientation", "size", "color")
STYLES = {"visible": True, "filling": "Solid", "lighting": "Lit", "texture": True, "model": "",
          "shadow": True}
FLAG_STYLES = ("visible", "texture", "shadow")
SCREEN_SIZE = (1920, 1080)      # where there is no screen to ask
DEFAULT_VALUES = {"position": (0.0, 0.0, 0.0), "orientation": geometry.IDENTITY,
                  "size": (1.0, 1.0, 1.0), "color": (1.0, 1.0, 1.0)}


def create():
    """The compiled backend when it can be imported, else the Python one."""
    try:
        from . import _backend
    except ImportError:
        return PythonBackend()
    return _backend.Backend()


def _linear(t):
    return t


def _gently(t):
    return t * t * (3.0 - 2.0 * t)


def _begin_gently(t):
    return t * t


def _begin_abruptly(t):
    return 1.0 - (1.0 - t) * (1.0 - t)


EASING = {
    "abruptly": _linear,
    "gently": _gently,
    "begingently": _begin_gently,       # and end abruptly
    "endabruptly": _begin_gently,
    "beginabruptly": _begin_abruptly,   # and end gently
    "endgently": _begin_abruptly,
}


class _Tween:
    __slots__ = ("node_id", "channel", "delta", "start", "duration", "ease", "done")

    def __init__(self, node_id, channel, delta, start, duration, ease):
        self.node_id, self.channel, self.delta = node_id, channel, delta
        self.start, self.duration, self.ease = start, duration, ease
        self.done = 0.0     # eased fraction applied so far

    @property
    def end(self):
        return self.start + self.duration

    def fraction(self, now):
        if self.duration <= 0 or now >= self.end:
            return 1.0
        return self.ease(max(0.0, (now - self.start) / self.duration))


class PythonBackend:
    """The reference backend: the same answers as `vessa._backend`, nothing drawn."""

    def __init__(self):
        self._nodes = {}
        self._kinds = {}
        self._parents = {}
        self._styles = {}
        self._tweens = {}
        self._next_id = 1
        self._input = []

    def add_node(self, node_id, values, kind="model"):
        self.remove_node(node_id)
        self._nodes[node_id] = {c: tuple(values.get(c, DEFAULT_VALUES[c])) for c in CHANNELS}
        self._kinds[node_id] = kind
        self._parents[node_id] = None
        self._styles[node_id] = dict(STYLES)

    def remove_node(self, node_id):
        self._nodes.pop(node_id, None)
        self._kinds.pop(node_id, None)
        self._parents.pop(node_id, None)
        self._styles.pop(node_id, None)
        for tween_id in [i for i, t in self._tweens.items() if t.node_id == node_id]:
            del self._tweens[tween_id]

    def get(self, node_id, channel):
        return self._nodes[node_id][channel]

    def set(self, node_id, channel, value):
        self._nodes[node_id][channel] = tuple(float(x) for x in value)

    def set_parent(self, node_id, parent_id):
        if parent_id is not None and parent_id not in self._nodes:
            raise KeyError(parent_id)
        self._nodes[node_id]    # an unknown node is an error, as in _backend
        self._parents[node_id] = parent_id

    def bounds(self, node_id):
        """Every shape is taken for the box its size stretches."""
        if self._kinds[node_id] != "model":
            return None
        half = tuple(abs(x) / 2.0 for x in self._nodes[node_id]["size"])
        return tuple(-x for x in half), half

    def get_style(self, node_id, style):
        return self._styles[node_id][style]

    def set_style(self, node_id, style, value):
        if style not in STYLES:
            raise ValueError("unknown style %s" % style)
        self._styles[node_id][style] = bool(value) if style in FLAG_STYLES else str(value)

    # -- the camera view: nothing is drawn, events come from push_input ----

    def open_view(self, width, height, host_id):
        return None

    def move_view(self, host_id):
        return None

    def resize_view(self, width, height):
        pass

    def close_view(self):
        pass

    def focus_view(self):
        return None

    def check_drawing(self):
        return ""

    def hardware_accelerated(self):
        return False

    def set_acceleration(self, on):
        return None

    def frames_per_second(self):
        return 0.0

    def save_picture(self, path, width=0, height=0):
        return "%s is not written: pictures of the world need the compiled backend" % path

    def screen_size(self):
        return SCREEN_SIZE

    def push_input(self, kind, **values):
        """How a view drawn elsewhere (or a test) hands over an event."""
        event = {"kind": kind, "x": 0.0, "y": 0.0, "node": None, "point": None,
                 "ray": ((0.0, 0.0, 0.0), (0.0, 0.0, 1.0)), "wheel": 0.0, "key": "",
                 "rawkey": 0, "shift": False, "control": False}
        event.update(values)
        self._input.append(event)

    def poll_input(self):
        events, self._input = self._input, []
        return events

    def input_waiting(self):
        return bool(self._input)

    def first_hit(self, origin, direction, max_distance):
        """Every shape is taken for the box its size stretches."""
        hits = [self._box_hit(node_id, origin, direction) for node_id in self._nodes
                if self._kinds[node_id] == "model" and self._styles[node_id]["visible"]
                and self._in_world(node_id)]
        hits = [t for t in hits if t is not None and t <= max_distance]
        return min(hits) if hits else None

    def _in_world(self, node_id):
        while node_id is not None:
            if self._kinds[node_id] == "scene":
                return True
            node_id = self._parents[node_id]
        return False

    def _world_place(self, node_id):
        position, orientation = (0.0, 0.0, 0.0), geometry.IDENTITY
        while node_id is not None:
            node = self._nodes[node_id]
            position = geometry.add(node["position"], geometry.rotate(node["orientation"], position))
            orientation = geometry.quat_mul(node["orientation"], orientation)
            node_id = self._parents[node_id]
        return position, orientation

    def _box_hit(self, node_id, origin, direction):
        """Where the line enters the node's box (slabs in the box's frame)."""
        position, orientation = self._world_place(node_id)
        inverse = geometry.quat_conj(orientation)
        size = self._nodes[node_id]["size"]
        start = geometry.rotate(inverse, geometry.sub(origin, position))
        along = geometry.rotate(inverse, direction)
        near, far = 0.0, float("inf")
        for axis in range(3):
            half = abs(size[axis]) / 2.0
            if abs(along[axis]) < 1e-12:
                if abs(start[axis]) > half:
                    return None
                continue
            t1, t2 = sorted(((-half - start[axis]) / along[axis], (half - start[axis]) / along[axis]))
            near, far = max(near, t1), min(far, t2)
            if near > far:
                return None
        return near

    # -- model files and sound: the files are checked, nothing is drawn or heard

    def model_formats(self):
        return []

    def load_model(self, path):
        raise ValueError("%s can't be read: objects from files need the compiled backend" % path)

    def describe_model(self, path):
        raise ValueError("%s can't be read: objects from files need the compiled backend" % path)

    def store_model(self, path, parts):
        raise ValueError("%s can't be written: objects to files need the compiled backend" % path)

    def start_sound(self):
        pass

    def load_sound(self, path):
        try:
            with wave.open(path, "rb") as sound:
                channels = sound.getnchannels()
        except FileNotFoundError:
            return "There is no sound file %s" % path
        except Exception:   # whatever the reader makes of bytes it can't follow
            return "%s is damaged, or is not a sound Vessa47 can play" % path
        if channels > 2:
            return ("%s has more than two channels: Vessa47 plays sounds of one or two channels"
                    % path)
        return None

    def play_sound(self, path, volume=1.0):
        return self.load_sound(path)

    def add_tween(self, node_id, channel, delta, start, duration, style):
        tween_id = self._next_id
        self._next_id += 1
        ease = EASING.get(str(style).lower(), _gently)
        self._tweens[tween_id] = _Tween(node_id, channel, tuple(delta or ()), start,
                                        max(float(duration), 0.0), ease)
        return tween_id

    def cancel(self, tween_id):
        self._tweens.pop(tween_id, None)

    def tween_count(self):
        return len(self._tweens)

    def step(self, now):
        finished = []
        for tween_id, tween in self._tweens.items():
            if now < tween.start:
                continue
            fraction = tween.fraction(now)
            if tween.node_id is not None and fraction != tween.done:
                self._apply(tween, fraction - tween.done)
            tween.done = fraction
            if now >= tween.end:
                finished.append((tween.end, tween_id))
        finished.sort()
        for _, tween_id in finished:
            del self._tweens[tween_id]
        return [tween_id for _, tween_id in finished]

    def _apply(self, tween, amount):
        node = self._nodes.get(tween.node_id)
        if node is None:
            return
        if tween.channel == "orientation":
            turn = geometry.quat_axis_angle(tween.delta[:3], tween.delta[3] * amount)
            node["orientation"] = geometry.quat_normalized(
                geometry.quat_mul(turn, node["orientation"]))
        else:
            node[tween.channel] = geometry.add(node[tween.channel], geometry.scale(tween.delta, amount))
