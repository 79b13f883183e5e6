"""The world's language: commands, blocks and their timing, driven by a test clock."""

import pytest

from conftest import at, misc, tagged
from vessa import geometry as g
from vessa.animation import Primitive
from vessa.mistakes import Mistake


@pytest.fixture
def world(clocked):
    return clocked


def run(engine, code):
    assert engine.ExecuteCode(code, "<Tool>", "exec") is None


def where(engine, name="Camera"):
    return engine.scene.find(name).GetPosition()


def test_worked_example_moves_the_camera_one_meter_in_one_second(world):
    run(world, "Hop = DoInOrder(\r\n\tCamera.Move(Forward, 1),\r\n).stop()\r\nHop.Copy().Start()\r\n")
    at(world, 0.0)
    at(world, 0.5)
    assert 0.0 < where(world)[2] < 1.0
    at(world, 1.0)
    assert where(world) == pytest.approx([0, 0, 1])
    at(world, 5.0)
    assert where(world) == pytest.approx([0, 0, 1])


def test_a_stopped_definition_does_not_run_and_a_bare_command_does(world):
    run(world, "Hop = DoInOrder(Camera.Move(Up, 5)).stop()\nCamera.Move(Forward, 2)")
    at(world, 3.0)
    assert where(world) == pytest.approx([0, 0, 2])


def test_in_order_takes_the_sum_and_together_the_longest(world):
    run(world, "DoInOrder(Camera.Move(Forward, 1), Camera.Move(Up, 1, Duration=2))")
    at(world, 0.0)
    at(world, 2.0)
    assert world.GetLoopWait() == 0
    at(world, 3.0)
    assert where(world) == pytest.approx([0, 1, 1])
    assert world.GetLoopWait() == -1
    run(world, "DoTogether(Camera.Move(Back, 1), Camera.Move(Down, 1, Duration=3))")
    at(world, 5.9)
    assert world.GetLoopWait() == 0
    at(world, 6.0)
    assert where(world) == pytest.approx([0, 0, 0])
    assert world.GetLoopWait() == -1


def test_a_coarse_step_does_not_change_where_a_sequence_ends(world):
    run(world, "DoInOrder(Camera.Turn(Left, 1/4), Camera.Move(Forward, 1))")
    at(world, 10.0)     # one step over both parts
    assert where(world) == pytest.approx([-1, 0, 0])


def test_styles_shape_the_motion(world):
    positions = {}
    for style in ["abruptly", "Gently", "BeginGently", "BeginAbruptly"]:
        run(world, "Camera.Move(Forward, 1, Style=%s)" % style)
        start = world.clock.now()
        at(world, start)
        before = where(world)[2]
        at(world, start + 0.25)
        positions[style] = where(world)[2] - before
        at(world, start + 1.0)
    assert positions["abruptly"] == pytest.approx(0.25)
    assert positions["Gently"] < 0.25 and positions["BeginGently"] < 0.25
    assert positions["BeginAbruptly"] > 0.25


def test_stop_halts_a_running_animation_where_it_is(world):
    run(world, "Go = Camera.Move(Forward, 4, Duration=4)")
    at(world, 1.0)
    run(world, "Go.stop()")
    stopped_at = where(world)[2]
    at(world, 4.0)
    assert 0 < stopped_at < 4 and where(world)[2] == stopped_at


def test_active_records_when_animations_start_and_all_end(world):
    run(world, "Camera.Move(Forward, 1)")
    at(world, 0.5)
    at(world, 1.5)
    assert tagged(misc(world), "activechanged") == [["activechanged", "", True],
                                                     ["activechanged", "", False]]


def test_mistakes_get_messages_a_novice_understands(world):
    world.ExecuteCode("x = 1\nCamera.Move(1)\n", "<Script Text>", "exec")
    popup = tagged(misc(world), "popuperrordialog")[0]
    assert popup[1:] == ["Camera.Move needs a direction, such as Forward, and a distance, such as 1.",
                         "2"]


def test_every_command_of_the_vocabulary_runs_on_an_object(world):
    run(world, "\n".join([
        "Camera.Move(Forward, 1, AsSeenBy=Scene, Duration=1/2, Style=abruptly)",
        "Camera.Turn(Left, 1/4)", "Camera.Roll(Right, 1/8)",
        "Camera.Resize(LeftToRight, 2, LikeRubber)", "Camera.PointAt(Scene)",
        "Camera.SetColor(Red, ObjectOnly)", "Camera.Hide()", "Camera.Show(Toggle)",
        'Camera.PlaySound(r"c:\\pickme.wav", Volume=1)', "Camera.Wait(1)",
        "Camera.StandUp()", "Camera.Place(OnTopOf, Scene)", "Camera.AlignWith(Scene)",
        "Wait(2)", "Camera.Nudge(Forward, 1)", "Camera.Nothing()",
        "Camera.StopCastingShadow()", "Camera.CastShadow(ObjectOnly)",
        "Camera.Flatten()", "Camera.Pan()", "Camera.Nudge()",
    ]))
    at(world, 3.0)
    camera = world.scene.find("Camera")
    assert camera.GetColor() == pytest.approx([1, 0, 0])
    assert camera.visible       # hidden, then toggled back
    records = misc(world)
    assert not tagged(records, "error") and not tagged(records, "popuperrordialog")


def test_commands_without_values_flatten_pan_and_nudge(world):
    run(world, "Camera.Flatten()\nCamera.Nudge()")
    at(world, 0.0)
    at(world, 1.0)
    camera = world.scene.find("Camera")
    size = camera.GetSize()
    assert size[1] == pytest.approx(0.05 * size[0])        # flat, top to bottom
    assert where(world) == pytest.approx([0, 0, 0.1])        # a small step forward

    def facing():
        return g.rotate(camera.world_orientation(), g.FORWARD)
    run(world, "Camera.Pan()")
    at(world, 1.0)
    at(world, 3.0)      # half way through a four-second look all round
    assert facing() == pytest.approx([0, 0, -1], abs=1e-6)
    at(world, 5.0)
    assert facing() == pytest.approx([0, 0, 1], abs=1e-6)


def test_place_puts_an_object_against_another_with_the_gap_a_script_line_names(world):
    scene = world.scene
    scene.create("model", "Box", scene.root, values={"position": (3, 0, 0), "size": (2, 2, 2)})
    run(world, "Camera.Place(OnTopOf, Box, Distance=1/2, Duration=1)")
    at(world, 1.0)
    assert where(world) == pytest.approx([3, 1.5, 0])   # the eye half a meter above the box's top
    run(world, "Camera.Place(ToLeftOf, Box, 1, Duration=0)")
    at(world, 1.0)
    assert where(world) == pytest.approx([1, 0, 0])


def test_events_fire_functions_and_animations(world):
    run(world, "\n".join([
        "Hop = DoInOrder(Camera.Move(Up, 1)).stop()",
        "def TVDef_KeyDown_Hop(ev):",
        '\tif ev.key == "A" or ev.rawkey == 40:',
        "\t\tDoInOrder(Camera.Move(Forward, 1),)",
        "Camera._Window.addresponse(KeyDown, TVDef_KeyDown_Hop)",
        "Camera.addresponse(LeftMouseDown, Hop)",
    ]))
    world.KeyEvent("KeyDown", "B", 66)
    world.KeyEvent("KeyDown", "A", 65)
    world.MouseEvent("LeftMouseDown", "Camera")
    at(world, 2.0)
    assert where(world) == pytest.approx([0, 1, 1])


def test_event_names_are_the_same_in_any_case(world):
    run(world, "\n".join([
        "heard = []",
        "def seen(ev):",
        "    heard.append(ev.kind)",
        "Camera._Window.addresponse('keydown', seen)",
        "Camera.addresponse('LEFTMOUSEDOWN', seen)",
        "Camera._Window.addresponse(KeyUp, seen)",
        "Camera._Window.removeresponse('keyUP', seen)",
    ]))
    world.KeyEvent("KeyDown", "A", 65)
    world.KeyEvent("KeyUp", "A", 65)
    world.MouseEvent("LeftMouseDown", "camera")
    assert world.scene.namespace["heard"] == ["KeyDown", "LeftMouseDown"]


def test_a_failing_response_is_reported_with_its_line(world):
    world.ExecuteCode("def oops(ev):\n    return ev.nothing\nCamera._Window.addresponse(KeyUp, oops)\n",
                      "<Script Text>", "exec")
    world.KeyEvent("KeyUp", "A", 65)
    popup = tagged(misc(world), "popuperrordialog")[0]
    assert popup[2] == "2" and popup[1].startswith("AttributeError")


def loop_at(engine, seconds):
    engine.clock._now = seconds
    assert engine.Loop() is None


def test_a_parent_cycle_found_when_its_step_comes_is_told_and_the_rest_goes_on(world):
    scene = world.scene
    with world.undo.quiet():
        scene.create("model", "Bunny", scene.root)
        scene.create("model", "Ball", scene.root)
    # each step is right when it is written; the second is wrong once the first has run
    world.ExecuteCode("x = 1\nDoInOrder(Bunny.BecomeChildOf(Ball), Ball.BecomeChildOf(Bunny),\n"
                      "          Bunny.Move(Up, 1), Bunny.Hide())\n", "<Script Text>", "exec")
    loop_at(world, 0.0)
    loop_at(world, 1.0)
    records = misc(world)
    assert tagged(records, "popuperrordialog") == [
        ["popuperrordialog", "Ball can't become a child of Bunny.", "2"]]
    # The report names where the animation was made, so the hand-written lines can be
    # told from the generated ones.
    assert tagged(records, "error")[0][1] == (
        '  File "<Script Text>", line 2, where the animation was made\n'
        "Ball can't become a child of Bunny.\n")
    bunny = scene.find("Bunny")
    assert bunny.parent is scene.find("Ball") and scene.find("Ball").parent is scene.root
    assert where(world, "Bunny") == pytest.approx([0, 1, 0]) and not bunny.visible
    assert tagged(records, "activechanged") == [["activechanged", "", True],
                                                 ["activechanged", "", False]]
    assert world.GetLoopWait() == -1


def test_the_line_that_made_a_failing_animation_is_the_innermost_of_the_users_text(world):
    scene = world.scene
    with world.undo.quiet():
        scene.create("model", "Bunny", scene.root)
        scene.create("model", "Ball", scene.root)
    # made inside a function of the text, by a string it runs (a frame of no text of the
    # world's), and through the engine's own frames of the block
    world.ExecuteCode("def later():\n    x = 1\n"
                      "    exec('DoInOrder(Bunny.Move(Up, 1), Ball.BecomeChildOf(Bunny))')\n"
                      "Bunny.BecomeChildOf(Ball)\nlater()\n", "<Script Text>", "exec")
    loop_at(world, 0.0)
    loop_at(world, 1.0)
    records = misc(world)
    assert tagged(records, "popuperrordialog") == [
        ["popuperrordialog", "Ball can't become a child of Bunny.", "3"]]
    assert tagged(records, "error")[0][1].startswith(
        '  File "<Script Text>", line 3, where the animation was made\n')


def test_the_line_that_made_a_failing_animation_is_found_deep_in_a_long_text(world):
    scene = world.scene
    with world.undo.quiet():
        scene.create("model", "Bunny", scene.root)
        scene.create("model", "Ball", scene.root)
    filler = "".join("Ball.Move(Up, 0, Duration=0)\n" for _ in range(3000))
    world.ExecuteCode(filler + "Bunny.BecomeChildOf(Ball)\nDoInOrder(Bunny.Move(Up, 1),\n"
                      "    Ball.BecomeChildOf(Bunny))\n", "<treeview>", "exec")
    loop_at(world, 0.0)
    loop_at(world, 1.0)
    records = misc(world)
    assert tagged(records, "popuperrordialog") == [
        ["popuperrordialog", "Ball can't become a child of Bunny.", "3003"]]
    assert tagged(records, "error")[0][1].startswith(
        '  File "<treeview>", line 3003, where the animation was made\n')


def test_a_step_that_fails_as_it_begins_is_passed_over_and_its_block_goes_on(world):
    def broken():
        raise Mistake("no_object", name="Boing")
    world.ExecuteCode("Hop = DoTogether(Camera.Move(Up, 1))", "<Script Text>", "exec")
    hop = world.scene.namespace["Hop"]
    hop.children.append(Primitive(world.animator, "Camera.Broken", 5, "Gently", broken))
    loop_at(world, 0.0)
    assert tagged(misc(world), "popuperrordialog")[0][1:] == ["There is no object called Boing.", "-1"]
    loop_at(world, 1.0)
    assert where(world) == pytest.approx([0, 1, 0])
    assert world.GetLoopWait() == -1     # the block ended with its one good step


def test_a_fault_of_the_engine_in_loop_comes_back_as_its_answer_and_stops_the_world(world):
    run(world, "Camera.Move(Forward, 10, Duration=10)")
    loop_at(world, 0.0)

    def faulty():
        raise RuntimeError("a fault of the engine")
    world.animator.step = faulty
    world.clock._now = 1.0
    assert "a fault of the engine" in world.Loop()
    assert tagged(misc(world), "activechanged")[-1] == ["activechanged", "", False]
    assert world.GetLoopWait() == -1


def test_a_python_statement_among_a_blocks_animations_runs_and_the_block_goes_on(world):
    # the script tree writes a hand-written line as an item of its block
    world.ExecuteCode("Hop = DoInOrder(\r\n\tprint('hi'),\r\n\tCamera.Move(Forward, 1),\r\n"
                      "\tDoTogether(\r\n\t\tlen('abc'),\r\n\t\tCamera.Move(Up, 1),\r\n\t),\r\n"
                      ").stop()\r\nHop.Copy().Start()\r\n", "<treeview>", "exec")
    loop_at(world, 0.0)
    loop_at(world, 2.0)
    assert where(world) == pytest.approx([0, 1, 1])
    assert misc(world) == [["output", "hi\n"], ["undoemptychange", "", False],
                           ["activechanged", "", True], ["activechanged", "", False]]
