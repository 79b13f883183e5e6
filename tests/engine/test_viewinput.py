"""Mouse and keys in the camera view: menus, responses, mouse tools, the camera.

The view's events are handed over as a view would, through the reference
backend; what they do is the engine's own Python, the same over any backend.
"""

import math

import pytest

from conftest import misc, tagged
from vessa import Interpreter, viewinput
from vessa.backend import PythonBackend
from vessa.clock import ManualClock


@pytest.fixture(params=["python"])
def backend_kind(request):
    return request.param


@pytest.fixture
def world():
    engine = Interpreter(clock=ManualClock(), backend=PythonBackend())
    scene = engine.scene
    with engine.undo.quiet():
        bunny = scene.create("model", "Bunny", scene.root, values={"position": (0.0, 0.5, 0.0)})
        scene.create("model", "Head", bunny, first_class=False,
                     values={"position": (0.0, 0.75, 0.0), "size": (0.5, 0.5, 0.5)})
    engine.PollForTreeDifferences()
    misc(engine)
    yield engine
    engine.Close()


def send(engine, kind, **values):
    engine.backend.push_input(kind, **values)


def at(engine, seconds):
    engine.animator.clock._now = seconds
    engine.Loop()


def thing(engine, name):
    return engine.scene.find(name)


def test_a_right_click_on_a_part_asks_for_the_menu_of_its_full_name(world):
    head = thing(world, "Bunny.Head")
    world.ExecuteCode("Bunny.addresponse(RightMouseDown, Bunny.Move(Up, 1, Duration=0).stop())",
                      "<Tool>", "exec")
    send(world, "RightMouseDown", node=head.id, point=(0.0, 1.25, -0.25))
    send(world, "RightMouseDown")                       # on the sky: no menu
    at(world, 0.0)
    at(world, 0.1)
    assert tagged(misc(world), "rightmousemenu") == [["rightmousemenu", str(head.id), "Bunny.Head"]]
    assert thing(world, "Bunny").GetPosition() == pytest.approx([0, 1.5, 0])


def drag(engine, tool, node, grab, ray_at_grab, moves):
    """A left-button drag with a tool; moves are (x, y, ray) of the pointer."""
    engine.ExecuteCode("Vessa._SetRespondToMouse(%d)" % tool, "<Tool>", "exec")
    send(engine, "LeftMouseDown", node=node, point=grab, ray=ray_at_grab, x=100.0, y=100.0)
    for x, y, ray in moves:
        send(engine, "MouseMove", x=x, y=y, ray=ray)
    send(engine, "LeftMouseUp", node=node, x=moves[-1][0], y=moves[-1][1])
    engine.Loop()


def test_the_move_tool_follows_the_pointer_on_the_ground_and_undoes_in_one_step(world):
    head = thing(world, "Bunny.Head")
    eye = (0.0, 1.5, -8.0)
    toward = lambda point: (eye, tuple((p - e) / math.dist(point, eye) for p, e in zip(point, eye)))
    grab = (0.0, 1.0, -0.25)
    later = (2.0, 1.0, 1.75)
    drag(world, viewinput.MOVE, head.id, grab, toward(grab),
         [(120.0, 90.0, toward((1.0, 1.0, 0.75))), (140.0, 80.0, toward(later))])
    assert thing(world, "Bunny").GetPosition() == pytest.approx([2, 0.5, 2])
    assert head.GetPosition() == pytest.approx([2, 1.25, 2])     # the part goes along
    assert world.ExecuteCode("undo()", "<Tool>", "exec") is None
    assert thing(world, "Bunny").GetPosition() == pytest.approx([0, 0.5, 0])


def test_raising_moves_only_up_and_turning_goes_by_the_pixels_dragged(world):
    bunny = thing(world, "Bunny")
    eye = (0.0, 1.5, -8.0)
    grab = (0.0, 0.5, -0.5)
    up = (0.0, 2.5, -0.5)
    ray = lambda p: (eye, tuple((a - b) / math.dist(p, eye) for a, b in zip(p, eye)))
    drag(world, viewinput.RAISE, bunny.id, grab, ray(grab), [(100.0, 60.0, ray(up))])
    assert bunny.GetPosition() == pytest.approx([0, 2.5, 0])
    quarter_in_pixels = 0.25 * 2 * math.pi / viewinput.TURN_PER_PIXEL
    drag(world, viewinput.TURN_LEFT_RIGHT, bunny.id, grab, ray(grab),
         [(100.0 + quarter_in_pixels, 130.0, ray(grab))])
    world.ExecuteCode("Probe = Bunny.Copy()\nProbe.Move(Forward, 1, Duration=0)", "<Tool>", "exec")
    at(world, 1.0)
    probe = world.scene.namespace["Probe"]
    assert probe.GetPosition() == pytest.approx([1, 2.5, 0])   # it faces right


def test_arrow_keys_drive_the_camera_and_stop_it_short_of_objects(world):
    camera = thing(world, "Camera")
    world.backend.set(camera.id, "position", (0.0, 0.5, -8.0))
    send(world, "KeyDown", key="Up", rawkey=38)
    for tenth in range(11):
        at(world, tenth / 10)
    assert world.GetLoopWait() == 0
    assert camera.GetPosition() == pytest.approx([0, 0.5, -5])
    for tenth in range(11, 31):     # the bunny's box begins at z = -0.5
        at(world, tenth / 10)
    assert camera.GetPosition()[2] == pytest.approx(-0.5 - viewinput.CLEARANCE)
    world.SetImageNavigatorCollisionDetectionOff()
    for tenth in range(31, 37):
        at(world, tenth / 10)
    assert camera.GetPosition()[2] == pytest.approx(1.0)
    send(world, "KeyUp", key="Up", rawkey=38)
    at(world, 3.7)
    assert world.GetLoopWait() == -1


def test_the_inspector_turns_the_camera_round_the_object_and_looks_at_it(world):
    camera = thing(world, "Camera")
    bunny = thing(world, "Bunny")
    world.backend.set(camera.id, "position", (0.0, 1.5, -8.0))
    assert world.StartInspector() is None
    send(world, "LeftMouseDown", node=bunny.id, point=(0.0, 0.5, -0.5), x=100.0, y=100.0)
    quarter = 0.25 * 2 * math.pi / viewinput.TURN_PER_PIXEL
    send(world, "MouseMove", x=100.0 - quarter, y=100.0)
    send(world, "LeftMouseUp", x=100.0 - quarter, y=100.0)
    world.Loop()
    x, y, z = camera.GetPosition()
    assert math.dist((x, y, z), (0, 0.5, 0)) == pytest.approx(math.dist((0, 1.5, -8), (0, 0.5, 0)))
    assert abs(x) == pytest.approx(8.0, abs=0.01) and z == pytest.approx(0.0, abs=0.01)
    world.ExecuteCode("Camera.Move(Forward, 1, Duration=0)", "<Tool>", "exec")
    at(world, 1.0)
    assert math.dist(camera.GetPosition(), (0, 0.5, 0)) < math.dist((x, y, z), (0, 0.5, 0))
