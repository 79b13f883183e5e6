"""The live scene: its objects, their names and family, and the records that
keep the front end's object tree in step with it.

A first-class object is known by its own name, which is a name in the world's
namespace. A part belongs to its parent and is known by a dotted name
(`Bunny.Head`), reached as an attribute of the parent. Positions and
orientations are relative to the parent; the backend holds them.
"""

import itertools

from . import backend
from . import geometry as g
from . import models
from . import namespace
from . import records
from . import vocabulary as v
from .animation import DoInOrder
from .commands import Commands
from .events import Responses, Window
from .mistakes import Mistake, NoSuchAttribute, checked, text
from .scene_index import LivingIndex, NumberedNames

DEFAULT_VALUES = backend.DEFAULT_VALUES

# What an object is besides its transform and color; saved, copied and
# put back by the handbasket as they stand. The backend keeps those that say
# how the object is drawn (backend.STYLES); the counts are the engine's.
STYLE_DEFAULTS = dict(backend.STYLES, vertex_count=0, face_count=0)


def _drawn(style):
    return property(lambda self: self.scene.backend.get_style(self.id, style),
                    lambda self, value: self.scene.backend.set_style(self.id, style, value))


@checked
class Thing(Commands):
    """An object of the scene: the scene itself, a camera, a light or a model."""

    def __init__(self, scene, kind, name, first_class=True):
        self.scene = scene
        self.id = scene.new_id()
        self.kind = kind
        self.local_name = name
        self.first_class = first_class
        self.parent = None
        self.children = []
        self.alive = True
        self.responses = Responses()
        if kind == "camera":
            self._Window = Window()
        self.vertex_count = self.face_count = 0

    def __repr__(self):
        return self.name

    def __getattr__(self, attribute):
        if attribute.startswith("_") or "scene" not in self.__dict__:
            raise AttributeError(attribute)
        parts = [child for child in self.children if not child.first_class]
        for child in parts:
            if child.local_name.lower() == attribute.lower():
                return child
        raise NoSuchAttribute("no_part_or_command", object=self.name, name=attribute,
                              among=lambda: [a for a in dir(self) if not a.startswith("_")]
                              + [child.local_name for child in parts])

    @property
    def name(self):
        if self.first_class or self.parent is None:
            return self.local_name
        return self.parent.name + "." + self.local_name

    # -- transform and look, kept by the backend -----------------------------

    def _channel(self, channel):
        return self.scene.backend.get(self.id, channel)

    visible, filling, lighting = _drawn("visible"), _drawn("filling"), _drawn("lighting")
    texture, model, shadow = _drawn("texture"), _drawn("model"), _drawn("shadow")

    position = property(lambda self: self._channel("position"))
    orientation = property(lambda self: self._channel("orientation"))
    size = property(lambda self: self._channel("size"))
    color = property(lambda self: self._channel("color"))

    def world_orientation(self):
        if self.parent is None:
            return self.orientation
        return g.quat_mul(self.parent.world_orientation(), self.orientation)

    def world_position(self):
        if self.parent is None:
            return self.position
        parent = self.parent
        return g.add(parent.world_position(), g.rotate(parent.world_orientation(), self.position))

    def family(self, how_much="objectandparts"):
        """self and the descendants that a HowMuch value takes along."""
        found = [self]
        for child in self.living_children():
            if how_much == "objectandchildren" or (how_much == "objectandparts"
                                                   and not child.first_class):
                found.extend(child.family(how_much))
        return found

    # -- questions a world may ask ----------------------------------------

    def GetName(self):
        return self.name

    def GetPosition(self):
        """Where the object is in the scene, as [x, y, z] in meters."""
        return list(self.world_position())

    def GetSize(self):
        return list(self.size)

    def GetColor(self):
        return list(self.color)

    def IsVisible(self):
        return self.visible

    def GetParent(self):
        return self.parent

    def GetChildren(self, which=None):
        """The children; with All, every descendant."""
        if which is not None and v.key(which) == "all":
            return [t for child in self.living_children() for t in child.family("objectandchildren")]
        return self.living_children()

    def living_children(self):
        """Destroyed children keep their place until they are forgotten, so
        that undo can bring them back where they were."""
        return [child for child in self.children if child.alive]

    def DistanceTo(self, other):
        return g.length(g.sub(self.world_position(), self.scene.thing(other).world_position()))

    def GetVertexCount(self):
        return sum(t.vertex_count for t in self.family())

    def GetFaceCount(self):
        return sum(t.face_count for t in self.family())

    # -- edits from the object menu and the trees ---------------------------

    def Rename(self, new_name):
        self.scene.rename(self, str(new_name))

    rename = Rename

    def becomepart(self):
        self.scene.set_first_class(self, False)

    def becomefirstclass(self):
        self.scene.set_first_class(self, True)

    def Copy(self):
        """A new object like this one, with copies of its parts, beside it."""
        return self.scene.copy(self)

    def SetFillingStyle(self, style):
        self._set_style("filling", style, "filling", "Solid, Lines or Points")

    def SetLightingStyle(self, style):
        self._set_style("lighting", style, "lighting", "Lit or UnLit")

    def _set_style(self, attribute, value, kind, choices):
        if not v.is_word(value, kind):
            raise Mistake("look_style", object=self.name, styles=choices)
        self.set_on_family(attribute, str(value))

    def SetTexture(self, *texture):
        """SetTexture() shows the object's picture, SetTexture(None) hides it."""
        self.set_on_family("texture", not texture or texture[0] is not None)

    def set_on_family(self, attribute, value, how_much="objectandparts"):
        members = self.family(how_much)
        saved = [(thing, getattr(thing, attribute)) for thing in members]
        self.scene.remember(lambda: [setattr(thing, attribute, old) for thing, old in saved])
        for thing in members:
            setattr(thing, attribute, value)
        self.scene.changed()

    def pause(self):
        """Stops every animation that is running."""
        self.scene.animator.stop_all()

    def pointat(self, other):
        return self.PointAt(other, Duration=0)

    def getagoodlookat(self, other):
        """Moves to where other is seen whole, and looks at it."""
        other = self.scene.thing(other)

        def prepare():
            target = other.world_position()
            back = g.rotate(self.world_orientation(), (0.0, 0.0, -1.0))
            distance = 2.0 * max(other.size) + 1.0
            place = g.add(target, g.scale(back, distance))
            return [(self.id, "position",
                     self._to_parent_frame_world(g.sub(place, self.world_position())))]
        return self.scene.animator.block(DoInOrder, [
            self._animate("getagoodlookat", prepare), self.PointAt(other, Duration=0)])

    def store(self, path):
        """Writes the object with its parts to an object file (.mdl)."""
        models.store(self, path)

    def RemoveSound(self, sound):
        """Takes a sound, given as itself or by its name, out of the scene."""
        self.scene.sounds.remove(sound)

    def addresponse(self, event, response):
        self.responses.add(event, response)

    def removeresponse(self, event, response):
        self.responses.remove(event, response)


class Scene:
    def __init__(self, queue, backend, animator, on_change):
        self._queue = queue
        self.backend = backend
        self.animator = animator
        self.changed = on_change
        self.remember = lambda step: None   # where undo steps go
        self.namespace = {}
        self.sounds = None                  # the sounds.SoundShelf, once the engine has one
        self._ids = itertools.count(1)
        self.things = {}                    # every object, living or destroyed, by id
        self._living = LivingIndex()
        self._numbered = NumberedNames()
        self.none_id = self.new_id()
        self.junkyard_id = self.new_id()
        self._tell_special_ids()
        self.root = self.create("scene", "Scene", None)

    def _tell_special_ids(self):
        """The front end learns the ids that mean "no parent" and "destroyed"
        before any object arrives."""
        self._queue.add_tree(records.object_construct(self.none_id, "none"))
        self._queue.add_tree(records.object_construct(self.junkyard_id, "junkyard"))

    def new_id(self):
        return next(self._ids)

    # -- finding ---------------------------------------------------------

    def living(self):
        return self._living.living()

    def find(self, name):
        return self._living.find(name)

    def thing(self, ref):
        """An object given as itself or by its name."""
        if isinstance(ref, Thing):
            return ref
        found = self.find(ref) if isinstance(ref, str) else None
        if found is None:
            raise Mistake("no_object", name=ref,
                          among=lambda: [t.name for t in self.living() if t.first_class])
        return found

    def cameras(self):
        return self._living.cameras()

    def name_refusal(self, name, thing=None):
        """Why name can't be the name of thing (of a new object or sound,
        when thing is None); None when it can."""
        if isinstance(thing, Thing) and not thing.first_class and thing.parent is not None:
            return self._part_name_refusal(name, thing)
        why = namespace.refusal(name)
        if why is not None:
            return why
        taken = self.find(name)
        if taken is None and self.sounds is not None:
            taken = self.sounds.find(name)
        if taken is None or taken is thing:
            return None
        return text("why_taken" if taken.name == name else "why_taken_case", taken=taken.name)

    @staticmethod
    def _part_name_refusal(name, part):
        """A part is reached through its object (Bunny.Back), so any name
        will do that Python reads as one and no other part there has."""
        why = namespace.part_refusal(name)
        if why is not None:
            return why
        for other in part.parent.living_children():
            if other is not part and not other.first_class and v.key(other.local_name) == v.key(name):
                return text("why_taken" if other.local_name == name else "why_taken_case",
                            taken=other.name)
        return None

    def is_free_name(self, name, thing=None):
        return self.name_refusal(name, thing) is None

    def unique_name(self, base):
        stem = base.rstrip("0123456789")
        if not stem or namespace.is_reserved(stem + "2"):
            stem = "Object"
        return self._numbered.first_free(stem, self.is_free_name)

    def name_let_go(self, name):
        """name, of an object or a sound, is no longer taken."""
        self._numbered.let_go(name)

    # -- making and changing ---------------------------------------------

    def create(self, kind, name, parent, first_class=True, values=None, styles=None):
        """A new object arrives at the front end as construct, parent, name."""
        thing = Thing(self, kind, name, first_class)
        self.things[thing.id] = thing
        self.backend.add_node(thing.id, dict(DEFAULT_VALUES, **(values or {})), kind)
        for attribute, value in (styles or {}).items():
            setattr(thing, attribute, value)
        if parent is not None:
            thing.parent = parent
            parent.children.append(thing)
            self.backend.set_parent(thing.id, parent.id)
        self._living.add(thing)
        self._tell_new(thing)
        self._bind(thing)
        self.remember(lambda: self.destroy(thing))
        self.changed()
        return thing

    def _tell_new(self, thing):
        self._queue.add_tree(records.object_construct(thing.id, thing.kind))
        # The scene itself has no parent to tell: it stays at the top of the
        # front end's tree, open, as it was made.
        if thing.parent is not None:
            self._queue.add_tree(records.object_parent_change(thing.id, self.none_id,
                                                              thing.parent.id))
        self._queue.add_tree(records.object_name_change(thing.id, "", thing.name))
        # A part is drawn in the tree with its kind's part image.
        if not thing.first_class and thing.parent is not None:
            self._queue.add_tree(records.object_first_class_or_part_change(
                thing.id, thing.name, False))

    def start_afresh(self):
        """Forgets every object but the scene itself, with no record for
        each: the front end empties its trees before it loads a world, so
        the new world is told from the start, scene first, and whatever the
        front end has not yet heard of the old one is dropped."""
        # newest first: the backend lets a crowd go quickest that way
        for thing in reversed(self.things.values()):
            if thing is not self.root:
                self._unbind(thing)
                self.backend.remove_node(thing.id)
        self.things = {self.root.id: self.root}
        self.root.children = []
        self._living.clear()
        self._living.add(self.root)
        self._numbered.clear()
        self._queue.restart_tree()
        self._tell_special_ids()
        self._tell_new(self.root)

    def _bind(self, thing):
        if thing.first_class:
            self.namespace[thing.name] = thing

    def _unbind(self, thing):
        if self.namespace.get(thing.name) is thing:
            del self.namespace[thing.name]

    def _renamed(self, thing, old_names):
        """Tells the front end the new full names of thing and its parts."""
        for member, old in zip(thing.family(), old_names):
            if member.name != old:
                self._living.renamed(member, old)
                self.name_let_go(old)
                self._queue.add_tree(records.object_name_change(member.id, old, member.name))

    def rename(self, thing, new_name):
        why = self.name_refusal(new_name, thing)
        if why is not None:
            raise Mistake("bad_name", object=thing.name, name=new_name, why=why)
        old_names = [t.name for t in thing.family()]
        old_name = thing.local_name
        self.remember(lambda: self.rename(thing, old_name))
        self._unbind(thing)
        thing.local_name = new_name
        self._bind(thing)
        self._renamed(thing, old_names)
        self.changed()

    def set_first_class(self, thing, first_class):
        if thing.first_class == bool(first_class) or thing.parent is None:
            return
        old_names = [t.name for t in thing.family()]
        self.remember(lambda: self.set_first_class(thing, not first_class))
        self._unbind(thing)
        thing.first_class = bool(first_class)
        if thing.first_class and not self.is_free_name(thing.local_name, thing):
            thing.local_name = self.unique_name(thing.local_name)
        self._bind(thing)
        self._queue.add_tree(records.object_first_class_or_part_change(
            thing.id, thing.name, thing.first_class))
        self._renamed(thing, old_names)
        self.changed()

    def reparent(self, thing, new_parent):
        """thing keeps its place in the world; only its family changes."""
        if thing is self.root or new_parent is thing or new_parent in thing.family("objectandchildren"):
            raise Mistake("own_parent", object=thing.name, other=new_parent.name)
        position, orientation = thing.world_position(), thing.world_orientation()
        old_parent = thing.parent
        self.remember(lambda: self.reparent(thing, old_parent))
        old_names = [t.name for t in thing.family()]
        old_parent.children.remove(thing)
        thing.parent = new_parent
        new_parent.children.append(thing)
        if thing.alive:
            self.backend.set_parent(thing.id, new_parent.id)
        inverse = g.quat_conj(new_parent.world_orientation())
        self.backend.set(thing.id, "orientation", g.quat_mul(inverse, orientation))
        self.backend.set(thing.id, "position",
                         g.rotate(inverse, g.sub(position, new_parent.world_position())))
        self._queue.add_tree(records.object_parent_change(thing.id, old_parent.id, new_parent.id))
        self._renamed(thing, old_names)
        self.changed()

    def destroy(self, thing, how_much="objectandchildren"):
        """thing goes with the members of its family that how_much takes
        along; the others stay where they are in the world, under thing's
        parent, and a part that stays becomes an object of its own."""
        if thing is self.root or not thing.alive:
            return
        going = thing.family(how_much)
        for member in going:
            for child in member.living_children():
                if child not in going:
                    self.set_first_class(child, True)
                    self.reparent(child, thing.parent)
        self._destroy_family(thing)

    def _destroy_family(self, thing):
        """Descendants go first, so each leaves its own record behind."""
        if not thing.alive:
            return
        for child in list(thing.children):
            self._destroy_family(child)
        thing.alive = False
        self._living.remove(thing)
        self.name_let_go(thing.name)
        self.backend.set_parent(thing.id, None)
        self._unbind(thing)
        self.remember(lambda: self.resurrect(thing))
        self._queue.add_tree(records.object_destruct(thing.id))
        self.changed()

    def resurrect(self, thing):
        thing.alive = True
        self._living.add(thing)
        self.backend.set_parent(thing.id, thing.parent.id)
        self._bind(thing)
        self._queue.add_tree(records.object_resurrect(thing.id))
        self.changed()

    def copy(self, thing, parent=None, name=None):
        parent = parent or thing.parent
        if name is None:
            name = self.unique_name(thing.local_name) if thing.first_class else thing.local_name
        values = {c: self.backend.get(thing.id, c) for c in DEFAULT_VALUES}
        styles = {a: getattr(thing, a) for a in STYLE_DEFAULTS}
        twin = self.create(thing.kind, name, parent, thing.first_class, values, styles)
        for child in thing.children:
            if child.alive:
                self.copy(child, twin, child.local_name if not child.first_class else None)
        return twin
