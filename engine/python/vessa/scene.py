"""The live scene: its objects, their names and family, and the records that
keep the front end's object tree in step with it."""

import itertools

from . import records


class Thing:
    """An object of the scene: the scene itself, a camera, a light or a model."""

    def __init__(self, scene, kind, name):
        self._scene = scene
        self.id = scene.new_id()
        self.kind = kind
        self.name = name
        self.parent = None
        self.children = []

    def __repr__(self):
        return self.name


class Scene:
    def __init__(self, queue):
        self._queue = queue
        self._ids = itertools.count(1)
        self.things = {}
        # The front end learns the ids that mean "no parent" and "destroyed"
        # before any object arrives.
        self.none_id = self.new_id()
        self.junkyard_id = self.new_id()
        queue.add_tree(records.object_construct(self.none_id, "none"))
        queue.add_tree(records.object_construct(self.junkyard_id, "junkyard"))
        self.root = self.create("scene", "Scene", None)

    def new_id(self):
        return next(self._ids)

    def create(self, kind, name, parent):
        """A new object arrives at the front end as construct, parent, name."""
        thing = Thing(self, kind, name)
        self.things[thing.id] = thing
        if parent is not None:
            thing.parent = parent
            parent.children.append(thing)
        parent_id = parent.id if parent is not None else self.none_id
        self._queue.add_tree(records.object_construct(thing.id, kind))
        self._queue.add_tree(records.object_parent_change(thing.id, self.none_id, parent_id))
        self._queue.add_tree(records.object_name_change(thing.id, "", name))
        return thing

    def cameras(self):
        return [t for t in self.things.values() if t.kind == "camera"]
