"""The backend interface, and its pure-Python implementation.

The engine keeps every object's transform and color in the backend and asks
it to ease values over time; the backend knows nothing of names, parts,
commands or events. A compiled backend (scene graph, drawing) implements the
same methods and replaces PythonBackend without other changes.

Interface (ids are the engine's integer object ids; vectors are tuples):
    add_node(node_id, values)        values: {channel: tuple} for every channel
    remove_node(node_id)
    get(node_id, channel) -> tuple
    set(node_id, channel, value)
    add_tween(node_id, channel, delta, start, duration, style) -> tween id
        Changes the channel by delta over [start, start + duration], shaped by
        the style's easing curve. Tweens add up: two on one channel combine.
        For "orientation", delta is (axis x, y, z, angle in radians) in the
        parent's frame. node_id None makes a pure timer.
    cancel(tween_id)                 the value stays where it has got to
    step(now) -> [tween id, ...]     advances every tween to now (never past
        its end) and answers those that reached their end, in order of end
    tween_count() -> int
"""

from . import geometry

CHANNELS = ("position", "orientation", "size", "color")


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
    def __init__(self):
        self._nodes = {}
        self._tweens = {}
        self._next_id = 1

    def add_node(self, node_id, values):
        self._nodes[node_id] = {c: tuple(values[c]) for c in CHANNELS}

    def remove_node(self, node_id):
        self._nodes.pop(node_id, None)
        for tween_id in [i for i, t in self._tweens.items() if t.node_id == node_id]:
            del self._tweens[tween_id]

    def get(self, node_id, channel):
        return self._nodes[node_id][channel]

    def set(self, node_id, channel, value):
        self._nodes[node_id][channel] = tuple(value)

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
