"""One click of Undo takes back one user action, whatever it touched: an
object with all its parts, a copy with the nudge that set it aside, a
reparenting that moved a family."""

import pytest

from conftest import describe, misc, tagged


@pytest.fixture
def world(clocked):
    """A bunny with a head, two ears and a tail, and a turned box beside it."""
    engine = clocked
    scene = engine.scene
    with engine.undo.quiet():
        bunny = scene.create("model", "Bunny", scene.root, values={"position": (1, 0, 2)})
        head = scene.create("model", "Head", bunny, False, {"position": (0, 1, 0.3)})
        scene.create("model", "LeftEar", head, False, {"position": (-0.1, 0.4, 0)})
        scene.create("model", "RightEar", head, False, {"position": (0.1, 0.4, 0)})
        scene.create("model", "Tail", bunny, False, {"position": (0, 0.3, -0.5)})
        scene.create("model", "Box", scene.root, values={"position": (-3, 1, 0)})
    assert engine.ExecuteCode("Box.Turn(Left, 1/8, Duration=0)", "<Tool>", "exec") is None
    engine.Loop()
    engine.undo.truncate(0)
    misc(engine)
    return engine


def act(engine, code, source="<Tool>"):
    """A statement from the front end, and the animations it made run to their end."""
    assert engine.ExecuteCode(code, source, "exec") is None
    engine.clock.advance(3.0)
    engine.Loop()


def undo_once(engine):
    act(engine, "undo()")


COMPOUND_ACTIONS = {
    "destroy with parts": "Bunny.Destroy()",
    "destroy sparing the parts": "Bunny.Destroy(ObjectOnly)",
    "resize with parts": "Bunny.Resize(InAllDirections, 2)",
    "color of the whole family": "Bunny.SetColor(Red, ObjectAndChildren)",
    "hide with parts": "Bunny.Hide()",
    "reparent under a turned box": "Bunny.BecomeChildOf(Box)",
    "copy as the object menu does": ("Vessa.Undo.Push(None, '['); DoInOrder(Bunny.Copy().Nudge("
                                     "Forward, 1)); Vessa.Undo.Push(None, ']'); "
                                     "PlaySystemSound('Copy')"),
    "two commands on one command line": "Bunny.Move(Up, 1); Bunny.Head.Turn(Left, 1/4)",
}


@pytest.mark.parametrize("code", COMPOUND_ACTIONS.values(), ids=COMPOUND_ACTIONS.keys())
def test_one_undo_takes_back_a_whole_action(world, code):
    before = describe(world)
    act(world, code)
    assert describe(world) != before
    undo_once(world)
    assert describe(world) == before
    # nothing of the action is left over for a second click
    assert tagged(misc(world), "undoemptychange")[-1] == ["undoemptychange", "", True]


def test_each_action_is_its_own_step_even_when_its_animation_runs_later(world):
    act(world, "Bunny.Move(Up, 1)")
    moved = describe(world)
    # made now, run by the next Loop(): the turn still belongs to this action
    assert world.ExecuteCode("Bunny.Turn(Left, 1/4)", "<Tool>", "exec") is None
    act(world, "Box.Move(Down, 1)")
    undo_once(world)
    undo_once(world)
    assert describe(world) == moved
    undo_once(world)
    assert world.scene.find("Bunny").GetPosition() == pytest.approx([1, 0, 2])


def test_added_objects_go_with_one_undo_each(world):
    world.AddText("Hello")
    world.AddText("World")
    undo_once(world)
    assert world.scene.find("Hello") is not None and world.scene.find("World") is None


def test_a_destroyed_part_that_is_still_commanded_says_so(world):
    act(world, "head = Bunny.Head\nBunny.Destroy()")
    world.ExecuteCode("head.Turn(Left, 1/4)", "<Command Line>", "single")
    popup = tagged(misc(world), "popuperrordialog")[0]
    assert popup[1:] == ["Bunny.Head has been destroyed, so it can't Turn any more.", "1"]
    undo_once(world)        # back again, it does as it is told
    act(world, "head.Turn(Left, 1/4)", "<Command Line>")
    assert not tagged(misc(world), "popuperrordialog")
