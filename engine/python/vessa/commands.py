"""The commands of the world's language, methods of every scene object.

Each command checks its values, then answers an animation that computes its
change when it begins (so a step of a sequence starts from where the step
before it left the object). Optional values come by keyword only (AsSeenBy,
Duration, Style, Speed, Volume); the flags HowMuch, LikeRubber and
Yes/No/Toggle come bare, after the essential values.
"""

import itertools
import math
from numbers import Real

from . import geometry as g
from . import vocabulary as v
from .animation import Primitive
from .mistakes import Mistake, not_a_word
from .sounds import names_a_sound

DEFAULT_DURATION = 1.0
DEFAULT_STYLE = "Gently"
TURN = 2.0 * math.pi    # radians in one revolution
NUDGE_DISTANCE = 0.1    # meters: a nudge with nothing said is a small step
FLATTENED = 0.05        # what is left of an object's height once flattened
PAN_DURATION = 4.0      # seconds: a look all round is slow enough to follow


def _number(value):
    # int and float first: asking Real of them goes through the abstract class's check
    return type(value) in (int, float) or (isinstance(value, Real) and not isinstance(value, bool))


def _flag(flags, kind, default):
    for flag in flags:
        if v.is_word(flag, kind):
            return v.key(flag)
    return default


class _Step:
    """What a command does when its animation begins and ends, once its object
    is known to be still there (a command made before its object was
    destroyed may run after); the values a beginning changes are remembered
    for undo. One small object: a world makes thousands of animations at once."""

    __slots__ = ("thing", "label", "act", "end")

    def __init__(self, thing, label, act, end):
        self.thing, self.label, self.act, self.end = thing, label, act, end

    def prepare(self):
        self.thing._still_here(self.label)
        changes = self.act()
        backend = self.thing.scene.backend
        saved = [(node, channel, backend.get(node, channel)) for node, channel, _ in changes]
        self.thing.scene.remember(lambda: [backend.set(*value) for value in saved])
        return changes

    def finish(self):
        self.thing._still_here(self.label)
        return self.end()


class Commands:
    """Mixed into scene objects; relies on their frame and family methods."""

    def _need(self, command, wants):
        raise Mistake("needs", object=self.name, command=command, wants=wants)

    def _word(self, command, value, table, kind, wants):
        """The entry of table that value names. A text that is no word at
        all is told so; a word of another kind, what the command needs."""
        entry = table.get(v.key(value)) if isinstance(value, str) else None
        if entry is None:
            if isinstance(value, str) and not v.any_word(value):
                raise not_a_word(value, kind, table)
            self._need(command, wants)
        return entry

    def _frame(self, as_seen_by):
        """The object whose axes a direction is given in."""
        return self if as_seen_by is None else self.scene.thing(as_seen_by)

    def _animate(self, label, prepare, duration=DEFAULT_DURATION, style=DEFAULT_STYLE,
                 finish=None):
        self._still_here(label)
        if not _number(duration) or duration < 0:
            raise Mistake("duration", object=self.name, command=label)
        if not v.is_word(style, "style"):
            raise not_a_word(style, "style")
        step = _Step(self, label, prepare, finish)
        animation = Primitive(self.scene.animator, "%s.%s" % (self.name, label), duration, style,
                              prepare and step.prepare, finish and step.finish)
        self.scene.animator.made(animation)
        return animation

    def _still_here(self, label):
        if not self.alive:
            raise Mistake("destroyed", object=self.name, command=label)

    def _to_parent_frame(self, vector, frame):
        """A vector given in frame's axes, in the axes of self's parent."""
        world = g.rotate(frame.world_orientation(), vector)
        if self.parent is None:
            return world
        return g.rotate(g.quat_conj(self.parent.world_orientation()), world)

    def _turn_towards(self, world_orientation):
        """The orientation change that brings self to world_orientation."""
        current = self.world_orientation()
        axis, angle = g.to_axis_angle(g.quat_mul(world_orientation, g.quat_conj(current)))
        return [(self.id, "orientation", self._to_parent_frame_world(axis) + (angle,))]

    def _to_parent_frame_world(self, world_vector):
        if self.parent is None:
            return world_vector
        return g.rotate(g.quat_conj(self.parent.world_orientation()), world_vector)

    # -- moving -------------------------------------------------------------

    def Move(self, direction=None, distance=None, *, AsSeenBy=None, Duration=DEFAULT_DURATION,
             Style=DEFAULT_STYLE, Speed=None):
        wants = "a direction, such as Forward, and a distance, such as 1"
        vector = self._word("Move", direction, v.MOVE_DIRECTIONS, "direction", wants)
        if not _number(distance):
            self._need("Move", wants)
        if _number(Speed) and Speed > 0:
            Duration = abs(distance) / Speed
        frame = self._frame(AsSeenBy)

        def prepare():
            return [(self.id, "position", g.scale(self._to_parent_frame(vector, frame), distance))]
        return self._animate("Move", prepare, Duration, Style)

    def Nudge(self, direction="Forward", distance=NUDGE_DISTANCE, *, AsSeenBy=None):
        """Moves at once, without taking time; on its own, a small step forward."""
        return self.Move(direction, distance, AsSeenBy=AsSeenBy, Duration=0)

    def Flatten(self, *flags, Duration=DEFAULT_DURATION, Style=DEFAULT_STYLE):
        """Squashes the object flat, top to bottom, as if something sat on it."""
        return self.Resize("TopToBottom", FLATTENED, *flags, Duration=Duration, Style=Style)

    def Pan(self, *, AsSeenBy=None, Duration=PAN_DURATION, Style=DEFAULT_STYLE):
        """Turns slowly once all the way round, looking about as a camera pans."""
        return self.Turn("Left", 1, AsSeenBy=AsSeenBy, Duration=Duration, Style=Style)

    def _rotate(self, command, table, direction, amount, as_seen_by, duration, style):
        wants = ("a direction, such as %s, and an amount of turning, such as 1/4"
                 % ("Left" if command == "Roll" else "Left or Up"))
        axis, sign = self._word(command, direction, table, "direction", wants)
        if not _number(amount):
            self._need(command, wants)
        frame = self._frame(as_seen_by)

        def prepare():
            return [(self.id, "orientation",
                     self._to_parent_frame(axis, frame) + (sign * amount * TURN,))]
        return self._animate(command, prepare, duration, style)

    def Turn(self, direction=None, amount=None, *, AsSeenBy=None, Duration=DEFAULT_DURATION,
             Style=DEFAULT_STYLE):
        return self._rotate("Turn", v.TURN_DIRECTIONS, direction, amount, AsSeenBy, Duration, Style)

    def Roll(self, direction=None, amount=None, *, AsSeenBy=None, Duration=DEFAULT_DURATION,
             Style=DEFAULT_STYLE):
        return self._rotate("Roll", v.ROLL_DIRECTIONS, direction, amount, AsSeenBy, Duration, Style)

    def PointAt(self, target=None, *, AsSeenBy=None, Duration=DEFAULT_DURATION,
                Style=DEFAULT_STYLE):
        if target is None:
            self._need("PointAt", "another object to point at, such as Camera")
        other = self.scene.thing(target)

        def prepare():
            direction = g.sub(other.world_position(), self.world_position())
            if g.length(direction) < 1e-9:
                return []
            return self._turn_towards(g.look_rotation(direction))
        return self._animate("PointAt", prepare, Duration, Style)

    def StandUp(self, *, AsSeenBy=None, Duration=DEFAULT_DURATION, Style=DEFAULT_STYLE):
        def prepare():
            forward = g.rotate(self.world_orientation(), g.FORWARD)
            level = (forward[0], 0.0, forward[2])
            return self._turn_towards(g.look_rotation(level if g.length(level) > 1e-9 else g.FORWARD))
        return self._animate("StandUp", prepare, Duration, Style)

    def AlignWith(self, other=None, *, Duration=DEFAULT_DURATION, Style=DEFAULT_STYLE):
        if other is None:
            self._need("AlignWith", "another object to line up with, such as Camera")
        other = self.scene.thing(other)
        return self._animate("AlignWith", lambda: self._turn_towards(other.world_orientation()),
                             Duration, Style)

    def Place(self, surface=None, other=None, Distance=0, Duration=DEFAULT_DURATION,
              Style=DEFAULT_STYLE, AsSeenBy=None):
        """Distance: the gap between the two, in meters; script lines give it by name."""
        if not v.is_word(surface, "surface") or other is None or not _number(Distance):
            self._need("Place", "a place, such as OnTopOf, and another object, such as Ground")
        other = self.scene.thing(other)

        def prepare():
            target = _placed(self, v.key(surface), other, Distance)
            change = self._to_parent_frame_world(g.sub(target, self.world_position()))
            return [(self.id, "position", change)]
        return self._animate("Place", prepare, Duration, Style)

    # -- shape and look ---------------------------------------------------

    def Resize(self, direction=None, factor=None, *flags, Duration=DEFAULT_DURATION,
               Style=DEFAULT_STYLE):
        """The object grows or shrinks along its own axes, and its parts with
        it: each part keeps its place on the object, scaled as the object is
        (HowMuch: ObjectAndParts unless another is given)."""
        wants = "a direction, such as InAllDirections, and a size factor, such as 2"
        axes = self._word("Resize", direction, v.RESIZE_DIRECTIONS, "resize", wants)
        if not _number(factor) or factor <= 0:
            self._need("Resize", wants)
        rubber = _flag(flags, "rubber", None) is not None and sum(axes) == 1
        how_much = _flag(flags, "howmuch", "objectandparts")
        # LikeRubber keeps the volume: the other two directions give way
        others = 1.0 / math.sqrt(factor) if rubber else 1.0
        factors = tuple(factor if a else others for a in axes)
        return self._animate("Resize", lambda: _resized(self, factors, how_much), Duration, Style)

    def SetColor(self, color=None, *flags, Duration=DEFAULT_DURATION, Style=DEFAULT_STYLE):
        rgb = self._word("SetColor", color, v.COLORS, "color", "a color, such as Red")
        how_much = _flag(flags, "howmuch", "objectandparts")

        def prepare():
            return [(t.id, "color", g.sub(rgb, t.color)) for t in self.family(how_much)]
        return self._animate("SetColor", prepare, Duration, Style)

    def Show(self, *flags):
        return self._set_visible("Show", flags, True)

    def Hide(self, *flags):
        return self._set_visible("Hide", flags, False)

    def _set_visible(self, command, flags, visible):
        """Yes, No or Toggle, and how much of the family: the object and its
        parts unless another HowMuch is given."""
        if not all(v.is_word(f, "value") or v.is_word(f, "howmuch") for f in flags):
            self._need(command, "Yes, No or Toggle, or nothing at all")
        choice = _flag(flags, "value", "yes")
        how_much = _flag(flags, "howmuch", "objectandparts")

        def finish():
            if choice != "no":
                self.set_on_family("visible", not self.visible if choice == "toggle" else visible,
                                   how_much)
        return self._animate(command, None, 0, DEFAULT_STYLE, finish)

    def CastShadow(self, *flags):
        """On the ground, in the high-quality drawing (the object and its
        parts unless HowMuch says otherwise)."""
        return self._set_shadow("CastShadow", flags, True)

    def StopCastingShadow(self, *flags):
        return self._set_shadow("StopCastingShadow", flags, False)

    def _set_shadow(self, command, flags, casts):
        if not all(v.is_word(flag, "howmuch") for flag in flags):
            self._need(command, "nothing, or how much of it, such as ObjectOnly")
        how_much = _flag(flags, "howmuch", "objectandparts")
        return self._animate(command, None, 0, DEFAULT_STYLE,
                             lambda: self.set_on_family("shadow", casts, how_much))

    # -- existence and family ---------------------------------------------

    def Destroy(self, *flags, Duration=0, Style=DEFAULT_STYLE):
        """The object goes with its parts (HowMuch: ObjectAndParts); what
        stays of its family stays where it is, under the object's parent."""
        if not all(v.is_word(flag, "howmuch") for flag in flags):
            self._need("Destroy", "nothing, or how much of it goes, such as ObjectAndChildren")
        how_much = _flag(flags, "howmuch", "objectandparts")
        return self._animate("Destroy", None, Duration, Style,
                             lambda: self.scene.destroy(self, how_much))

    def BecomeFirstClass(self, *, Duration=0, Style=DEFAULT_STYLE):
        """A part becomes an object of its own, known by its own name."""
        return self._animate("BecomeFirstClass", None, Duration, Style,
                             lambda: self.scene.set_first_class(self, True))

    def BecomeChildOf(self, other=None, *, Duration=0, Style=DEFAULT_STYLE):
        if other is None:
            self._need("BecomeChildOf", "another object to belong to, such as Scene")
        other = self.scene.thing(other)
        if other is self:
            raise Mistake("own_parent", object=self.name, other=other.name)
        return self._animate("BecomeChildOf", None, Duration, Style,
                             lambda: self.scene.reparent(self, other))

    # -- time and sound -----------------------------------------------------

    def Nothing(self):
        """Does nothing, and takes no time."""
        return self._animate("Nothing", None, 0)

    def Wait(self, duration=None):
        if not _number(duration) or duration < 0:
            self._need("Wait", "a number of seconds, such as 1")
        return self._animate("Wait", None, duration)

    def PlaySound(self, sound=None, *, Volume=1):
        """Starts the sound and goes on at once; Volume 1 is the sound as it is."""
        if not names_a_sound(sound):
            self._need("PlaySound", 'a sound file name, such as "c:\\pickme.wav"')
        if not _number(Volume) or Volume < 0:
            raise Mistake("volume", object=self.name)
        return self._animate("PlaySound", None, 0, DEFAULT_STYLE,
                             lambda: self.scene.sounds.play(sound, Volume))


# The commands of the world's language, as a line spells them.
COMMAND_NAMES = tuple(name for name in vars(Commands) if name[:1].isupper())


def _resized(thing, factors, how_much):
    """The changes of size, and of place within the object, that scale thing
    and the members of its family by factors along thing's own axes. A part
    turned on the object is scaled along the object's axes as nearly as its
    own box allows: each of its sides by how much that side's direction
    stretches."""
    frame = g.quat_conj(thing.world_orientation())
    changes = []
    for member in thing.family(how_much):
        turned = g.quat_mul(frame, member.world_orientation())
        stretch = [g.length(_times(factors, g.rotate(turned, axis))) for axis in (g.RIGHT, g.UP, g.FORWARD)]
        changes.append((member.id, "size", tuple(s * (f - 1.0) for s, f in zip(member.size, stretch))))
        if member is not thing:
            to_thing = g.quat_mul(frame, member.parent.world_orientation())
            scaled = g.rotate(g.quat_conj(to_thing),
                              _times(factors, g.rotate(to_thing, member.position)))
            changes.append((member.id, "position", g.sub(scaled, member.position)))
    return changes


def _times(factors, vector):
    return tuple(f * x for f, x in zip(factors, vector))


# Place: the axis of the other object, the side of it (+1 or -1), and
# whether the object goes inside it.
PLACES = {
    "ontopof": (1, 1, False), "above": (1, 1, False), "onbottomof": (1, -1, False),
    "below": (1, -1, False), "beneath": (1, -1, False), "infrontof": (2, 1, False),
    "inbackof": (2, -1, False), "behind": (2, -1, False), "torightof": (0, 1, False),
    "toleftof": (0, -1, False), "onfloorof": (1, -1, True), "onceilingof": (1, 1, True),
}


def _placed(thing, surface, other, distance):
    """Where thing's position goes for Place(surface, other, distance): its
    shape against the side of other's shape that surface names (inside it
    for a floor or a ceiling), distance away, and the middles of the two in
    line along the other axes. Shapes count with their parts, each turned
    as it is; along other's axes."""
    axis, sign, inside = PLACES[surface]
    frame = g.quat_conj(other.world_orientation())
    turn = g.quat_mul(frame, thing.world_orientation())
    low, high = _box(_shape_corners(other))
    my_low, my_high = _box([g.rotate(turn, corner) for corner in _shape_corners(thing)])
    offset = [(a + b - c - d) / 2.0 for a, b, c, d in zip(low, high, my_low, my_high)]
    face = high[axis] if sign > 0 else low[axis]
    near_side = (my_high if (sign > 0) == inside else my_low)[axis]
    offset[axis] = face + sign * (-distance if inside else distance) - near_side
    return g.add(other.world_position(), g.rotate(other.world_orientation(), tuple(offset)))


def extent(thing):
    """The lowest and highest corner of the box around thing's shape and its
    parts' shapes, along thing's axes, from its position."""
    return _box(_shape_corners(thing))


def _shape_corners(thing):
    """The corners of the boxes around thing's shape and its parts' shapes,
    in thing's frame (from its position, along its axes); its position
    alone when none of them has a shape."""
    backend = thing.scene.backend
    frame = g.quat_conj(thing.world_orientation())
    origin = thing.world_position()
    corners = []
    for member in thing.family():
        box = backend.bounds(member.id)
        if box is None:
            continue
        turn = g.quat_mul(frame, member.world_orientation())
        place = g.rotate(frame, g.sub(member.world_position(), origin))
        own = itertools.product(*zip(*box))      # the eight corners of the box
        corners += [g.add(place, g.rotate(turn, corner)) for corner in own]
    return corners or [(0.0, 0.0, 0.0)]


def _box(points):
    """The lowest and highest corner of the box around points."""
    return tuple(map(min, zip(*points))), tuple(map(max, zip(*points)))
