"""What the mouse and the keys do in the camera view.

The backend hands over the view's events at each Loop(): buttons and keys
reach the world's responses; a right click on an object asks the front end
for its menu; a drag on an object applies the mouse tool the user chose
(Vessa._SetRespondToMouse: 0 move, 1 raise, 2 turn left-right, 3 turn
forward-back, 4 tumble); a drag on empty space, the arrow keys, Page Up and
Page Down and the wheel drive the camera; the inspector turns the camera
round the object it was started on. Drags are undone in one step.
"""

import math

from . import geometry as g
from . import records

MOVE, RAISE, TURN_LEFT_RIGHT, TURN_FORWARD_BACK, TUMBLE = range(5)

TURN_PER_PIXEL = 2.0 * math.pi / 400.0   # a drag across 400 pixels turns once round
CAMERA_SPEED = 3.0                      # meters a second, arrow keys
CAMERA_CLIMB = 2.0                      # meters a second, Page Up and Down
CAMERA_TURN = math.pi / 2.0             # radians a second, arrow keys
DRAG_METERS_PER_PIXEL = 0.02            # a camera drag up moves the camera forward
WHEEL_METERS = 0.5                      # one step of the wheel
CLEARANCE = 0.3                         # how near the camera comes to what it can't pass
LOOK_AHEAD = 5.0                        # the inspector's centre when started on nothing

# Windows key codes: how each held key drives the camera.
KEY_MOTIONS = {38: ("forward", 1.0), 40: ("forward", -1.0), 37: ("turn", -1.0),
               39: ("turn", 1.0), 33: ("climb", 1.0), 34: ("climb", -1.0)}

BUTTONS = ("LeftMouseDown", "LeftMouseUp", "RightMouseDown", "RightMouseUp")


class _Drag:
    """A left-button drag in progress: what it holds and where it began."""

    def __init__(self, event, thing=None, tool=None):
        self.x, self.y = event["x"], event["y"]
        self.grab = event["point"]
        self.ray = event["ray"]
        self.thing, self.tool = thing, tool
        self.moved = False
        if thing is not None:
            self.position = thing.world_position()
            self.orientation = thing.world_orientation()
            self.saved = (thing.position, thing.orientation)


class _Engine:
    """What the view's input needs of the engine."""

    def __init__(self, scene, queue, camera, mouse_tool, mouse_event, key_event):
        self.scene, self.backend, self.queue = scene, scene.backend, queue
        self.camera = camera                # the camera the view looks through, or None
        self.mouse_tool = mouse_tool        # the tool _SetRespondToMouse chose
        self.mouse_event = mouse_event      # (kind, thing or None): the world's responses
        self.key_event = key_event          # (kind, key, rawkey)


class ViewInput:
    def __init__(self, scene, queue, camera, mouse_tool, mouse_event, key_event):
        self._engine = _Engine(scene, queue, camera, mouse_tool, mouse_event, key_event)
        self.collisions = True
        self.inspecting = False
        self._pivot = None
        self._drag = None
        self._held = set()
        self._last_step = None

    # -- the engine's loop --------------------------------------------------

    def busy(self):
        """True while held keys move the camera: Loop() must keep coming."""
        return bool(self._held & set(KEY_MOTIONS))

    def step(self, now):
        for event in self._engine.backend.poll_input():
            self._handle(event)
        last, self._last_step = self._last_step, now
        if last is not None and self.busy():
            self._drive_camera(min(now - last, 0.25))

    def _handle(self, event):
        kind = event["kind"]
        thing = self._thing(event["node"])
        if kind == "RightMouseDown" and thing is not None:
            self._engine.queue.add_misc(records.right_mouse_menu(thing.id, thing.name))
        if kind == "LeftMouseDown":
            self._drag = self._start_drag(event, thing)
        elif kind == "MouseMove" and self._drag is not None:
            self._dragged(event)
        elif kind == "LeftMouseUp":
            self._end_drag()
        elif kind == "Wheel":
            self._wheel(event["wheel"])
        elif kind in ("KeyDown", "KeyUp"):
            (self._held.add if kind == "KeyDown" else self._held.discard)(event["rawkey"])
            self._engine.key_event(kind, event["key"], event["rawkey"])
        if kind in BUTTONS:
            self._engine.mouse_event(kind, thing)

    def _thing(self, node_id):
        thing = self._engine.scene.things.get(node_id) if node_id is not None else None
        return thing if thing is not None and thing.alive else None

    # -- mouse tools ----------------------------------------------------------

    def _start_drag(self, event, picked):
        if self.inspecting:
            self._pivot = picked.world_position() if picked is not None else self._ahead()
            return _Drag(event)
        target = picked
        while target is not None and not target.first_class:
            target = target.parent
        if target is None or target is self._engine.scene.root or event["point"] is None:
            return _Drag(event)
        return _Drag(event, target, self._engine.mouse_tool())

    def _dragged(self, event):
        drag = self._drag
        dx, dy = event["x"] - drag.x, event["y"] - drag.y
        if drag.thing is None:
            if self.inspecting:
                self._orbit(dx, dy)
            else:
                self._camera_turn(dx * TURN_PER_PIXEL / 4.0)
                self._camera_move(g.FORWARD, -dy * DRAG_METERS_PER_PIXEL)
            drag.x, drag.y = event["x"], event["y"]
            return
        drag.moved = True
        origin, direction = event["ray"]
        if drag.tool == MOVE:
            hit = _on_plane(origin, direction, drag.grab, g.UP)
            if hit is not None:
                shift = g.sub(hit, drag.grab)
                self._place(drag, g.add(drag.position, (shift[0], 0.0, shift[2])))
        elif drag.tool == RAISE:
            facing = g.normalized((drag.ray[1][0], 0.0, drag.ray[1][2]))
            hit = _on_plane(origin, direction, drag.grab, facing)
            if hit is not None:
                self._place(drag, g.add(drag.position, (0.0, hit[1] - drag.grab[1], 0.0)))
        else:
            left_right = dx if drag.tool in (TURN_LEFT_RIGHT, TUMBLE) else 0.0
            forward_back = dy if drag.tool in (TURN_FORWARD_BACK, TUMBLE) else 0.0
            self._turn(drag, left_right * TURN_PER_PIXEL, forward_back * TURN_PER_PIXEL)

    def _place(self, drag, world_position):
        thing = drag.thing
        parent = thing.parent
        local = g.rotate(g.quat_conj(parent.world_orientation()),
                         g.sub(world_position, parent.world_position()))
        self._engine.backend.set(thing.id, "position", local)

    def _turn(self, drag, about_up, about_right):
        camera = self._engine.camera()
        right = g.rotate(camera.world_orientation(), g.RIGHT) if camera else g.RIGHT
        turn = g.quat_mul(g.quat_axis_angle(right, about_right), g.quat_axis_angle(g.UP, about_up))
        world = g.quat_normalized(g.quat_mul(turn, drag.orientation))
        parent = drag.thing.parent
        local = g.quat_mul(g.quat_conj(parent.world_orientation()), world)
        self._engine.backend.set(drag.thing.id, "orientation", local)

    def _end_drag(self):
        drag, self._drag = self._drag, None
        if drag is None or not drag.moved:
            return
        thing, (position, orientation) = drag.thing, drag.saved
        backend = self._engine.backend

        def put_back():
            backend.set(thing.id, "position", position)
            backend.set(thing.id, "orientation", orientation)
        self._engine.scene.remember(put_back)
        self._engine.scene.changed()

    # -- the camera -----------------------------------------------------------

    def _drive_camera(self, seconds):
        for rawkey in self._held & set(KEY_MOTIONS):
            motion, sign = KEY_MOTIONS[rawkey]
            if motion == "forward":
                self._camera_move(g.FORWARD, sign * CAMERA_SPEED * seconds)
            elif motion == "climb":
                self._camera_move(g.UP, sign * CAMERA_CLIMB * seconds, level=False)
            else:
                self._camera_turn(sign * CAMERA_TURN * seconds)

    def _wheel(self, steps):
        if self.inspecting and self._pivot is not None:
            camera = self._engine.camera()
            if camera is not None:
                toward = g.sub(self._pivot, camera.world_position())
                room = max(g.length(toward) - CLEARANCE, 0.0)
                self._camera_move_world(g.normalized(toward),
                                        min(steps * WHEEL_METERS, room), collide=False)
            return
        self._camera_move(g.FORWARD, steps * WHEEL_METERS)

    def _camera_move(self, axis, distance, level=True):
        """Moves the camera along its own axis; forward stays level."""
        camera = self._engine.camera()
        if camera is None or distance == 0.0:
            return
        direction = g.rotate(camera.world_orientation(), axis) if axis != g.UP else g.UP
        if level and axis != g.UP:
            flat = g.normalized((direction[0], 0.0, direction[2]))
            direction = flat if flat != (0.0, 0.0, 0.0) else direction
        if distance < 0.0:
            direction, distance = g.scale(direction, -1.0), -distance
        self._camera_move_world(direction, distance)

    def _camera_move_world(self, direction, distance, collide=True):
        camera = self._engine.camera()
        if direction == (0.0, 0.0, 0.0) or distance <= 0.0:
            return
        if collide and self.collisions:
            hit = self._engine.backend.first_hit(camera.world_position(), direction,
                                                 distance + CLEARANCE)
            if hit is not None:
                distance = max(0.0, hit - CLEARANCE)
        self._set_camera_world(g.add(camera.world_position(), g.scale(direction, distance)),
                               camera.world_orientation())

    def _camera_turn(self, angle):
        camera = self._engine.camera()
        if camera is not None and angle:
            turned = g.quat_normalized(g.quat_mul(g.quat_axis_angle(g.UP, angle),
                                                  camera.world_orientation()))
            self._set_camera_world(camera.world_position(), turned)

    def _orbit(self, dx, dy):
        camera = self._engine.camera()
        if camera is None or self._pivot is None:
            return
        right = g.rotate(camera.world_orientation(), g.RIGHT)
        turn = g.quat_mul(g.quat_axis_angle(g.UP, -dx * TURN_PER_PIXEL),
                          g.quat_axis_angle(right, -dy * TURN_PER_PIXEL))
        offset = g.rotate(turn, g.sub(camera.world_position(), self._pivot))
        place = g.add(self._pivot, offset)
        self._set_camera_world(place, g.look_rotation(g.sub(self._pivot, place)))

    def _ahead(self):
        camera = self._engine.camera()
        if camera is None:
            return (0.0, 0.0, 0.0)
        return g.add(camera.world_position(),
                     g.scale(g.rotate(camera.world_orientation(), g.FORWARD), LOOK_AHEAD))

    def _set_camera_world(self, position, orientation):
        camera = self._engine.camera()
        parent = camera.parent
        inverse = g.quat_conj(parent.world_orientation())
        backend = self._engine.backend
        backend.set(camera.id, "position", g.rotate(inverse, g.sub(position, parent.world_position())))
        backend.set(camera.id, "orientation", g.quat_mul(inverse, orientation))
        self._engine.scene.changed()


def _on_plane(origin, direction, point, normal):
    """Where the line from origin along direction meets the plane through
    point with that normal, ahead of origin; None if it never does."""
    across = g.dot(direction, normal)
    if abs(across) < 1e-6:
        return None
    t = g.dot(g.sub(point, origin), normal) / across
    return g.add(origin, g.scale(direction, t)) if t > 0 else None
