"""The handbasket: the world as it was before a run, its objects and its
sounds, put back after it.

Putting it back goes through the scene's own operations, so the front end's
trees follow by the usual records.
"""

from . import geometry as g
from .backend import STYLES as DRAWN
from .scene import DEFAULT_VALUES, STYLE_DEFAULTS

COUNTS = [a for a in STYLE_DEFAULTS if a not in DRAWN]


def snapshot(scene):
    # Straight from the backend: a snapshot of a big world must stay quick.
    get, get_style = scene.backend.get, scene.backend.get_style
    saved = {}
    for thing in scene.things.values():
        windows = getattr(thing, "_Window", None)
        styles = {s: get_style(thing.id, s) for s in DRAWN}
        styles.update((a, getattr(thing, a)) for a in COUNTS)
        saved[thing.id] = {
            "alive": thing.alive, "parent": thing.parent, "name": thing.local_name,
            "first_class": thing.first_class,
            "values": {c: get(thing.id, c) for c in DEFAULT_VALUES},
            "styles": styles,
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
        _put_back_look(scene.backend, thing, state)
        thing.responses.restore(state["responses"])
        if state["window"] is not None:
            thing._Window.responses.restore(state["window"])


def _put_back_look(backend, thing, state):
    """Only what a run changed is set again: a big world is put back quickly,
    and a view redraws only for what changed."""
    for channel, value in state["values"].items():
        if backend.get(thing.id, channel) != value:
            backend.set(thing.id, channel, value)
    styles = state["styles"]
    for style in DRAWN:
        if backend.get_style(thing.id, style) != styles[style]:
            backend.set_style(thing.id, style, styles[style])
    for attribute in COUNTS:
        setattr(thing, attribute, styles[attribute])


class Handbasket:
    def __init__(self, scene, animator, undo):
        self._scene, self._animator, self._undo = scene, animator, undo
        self._saved = None
        self._undo_mark = 0

    def forget(self):
        self._saved = None

    def saved(self):
        """(things, sounds) as preserve() took them, or None."""
        return self._saved

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
