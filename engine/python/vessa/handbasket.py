"""The handbasket: the world as it was before a run, its objects and its
sounds, put back after it.

Putting it back goes through the scene's own operations, so the front end's
trees follow by the usual records.
"""

from . import geometry as g
from .scene import DEFAULT_VALUES, STYLE_DEFAULTS


def snapshot(scene):
    saved = {}
    for thing in scene.things.values():
        windows = getattr(thing, "_Window", None)
        saved[thing.id] = {
            "alive": thing.alive, "parent": thing.parent, "name": thing.local_name,
            "first_class": thing.first_class,
            "values": {c: scene.backend.get(thing.id, c) for c in DEFAULT_VALUES},
            "styles": {a: getattr(thing, a) for a in STYLE_DEFAULTS},
            "responses": thing.responses.copy(),
            "window": windows.responses.copy() if windows else None,
        }
    return saved


def put_back(scene, saved):
    for thing in list(scene.things.values()):
        if thing.id not in saved:
            scene.destroy(thing)
    for thing_id in sorted(saved):
        thing, state = scene.things[thing_id], saved[thing_id]
        if state["alive"] and not thing.alive:
            scene.resurrect(thing)
    for thing_id in sorted(saved):
        thing, state = scene.things[thing_id], saved[thing_id]
        if not state["alive"]:
            continue
        if state["parent"] is not None and thing.parent is not state["parent"]:
            scene.reparent(thing, state["parent"])
        scene.set_first_class(thing, state["first_class"])
        if thing.local_name != state["name"]:
            scene.rename(thing, state["name"])
    for thing_id in sorted(saved, reverse=True):
        thing, state = scene.things[thing_id], saved[thing_id]
        if not state["alive"]:
            scene.destroy(thing)
        for channel, value in state["values"].items():
            scene.backend.set(thing_id, channel, value)
        for attribute, value in state["styles"].items():
            setattr(thing, attribute, value)
        thing.responses.restore(state["responses"])
        if state["window"] is not None:
            thing._Window.responses.restore(state["window"])


class Handbasket:
    def __init__(self, scene, animator, undo):
        self._scene, self._animator, self._undo = scene, animator, undo
        self._saved = None
        self._undo_mark = 0

    def forget(self):
        self._saved = None

    def preserve(self):
        self._saved = (snapshot(self._scene), self._scene.sounds.snapshot())
        self._undo_mark = self._undo.mark()

    def keep_place_of(self, thing):
        """thing will be put back where it is in the world now, under the
        parent it had when the handbasket was taken."""
        state = self._saved[0].get(thing.id) if self._saved else None
        if state is None or state["parent"] is None:
            return
        parent = state["parent"]
        inverse = g.quat_conj(parent.world_orientation())
        offset = g.sub(thing.world_position(), parent.world_position())
        state["values"] = dict(state["values"], position=g.rotate(inverse, offset),
                               orientation=g.quat_mul(inverse, thing.world_orientation()))

    def restore(self):
        self._animator.stop_all()
        if self._saved is None:
            return
        things, sounds = self._saved
        with self._undo.quiet():
            put_back(self._scene, things)
            self._scene.sounds.put_back(sounds)
        self._undo.truncate(self._undo_mark)
