"""Turned frames: commands seen from another object that has turned, and
families whose parents have turned."""

import pytest

from vessa import geometry as g


@pytest.fixture
def world(clocked):
    """A box at (3, 0, 0) rolled a quarter to its left: its up points to the
    world's left, its right points up."""
    engine = clocked
    scene = engine.scene
    with engine.undo.quiet():
        scene.create("model", "Box", scene.root, values={"position": (3, 0, 0)})
        scene.create("model", "Bunny", scene.root, values={"position": (0, 0, 5)})
    run(engine, "Box.Roll(Left, 1/4, Duration=0)")
    return engine


def run(engine, code):
    assert engine.ExecuteCode(code, "<Tool>", "exec") is None
    engine.clock.advance(2.0)
    engine.Loop()


def thing(engine, name):
    return engine.scene.find(name)


def facing(engine, name):
    """Where the object's front and its top point, in the world."""
    turn = thing(engine, name).world_orientation()
    return g.rotate(turn, g.FORWARD), g.rotate(turn, g.UP)


def test_a_turn_seen_by_a_turned_object_turns_about_its_axes(world):
    # Left as the box sees it swings the front toward the box's left: down
    run(world, "Camera.Turn(Left, 1/4, AsSeenBy=Box)")
    front, top = facing(world, "Camera")
    assert front == pytest.approx([0, -1, 0], abs=1e-9)
    assert top == pytest.approx([0, 0, 1], abs=1e-9)
    # seen by itself, the same turn swings its front to its own left
    run(world, "Camera.Turn(Left, 1/4)")
    assert facing(world, "Camera")[0] == pytest.approx([-1, 0, 0], abs=1e-9)


def test_a_roll_and_a_move_seen_by_a_turned_object(world):
    run(world, "Bunny.Move(Up, 2, AsSeenBy=Box)")
    assert thing(world, "Bunny").GetPosition() == pytest.approx([-2, 0, 5])
    run(world, "Bunny.Roll(Right, 1/4, AsSeenBy=Box)")      # both look along the world's z
    assert facing(world, "Bunny")[1] == pytest.approx([1, 0, 0], abs=1e-9)


def test_a_new_child_of_a_turned_parent_stays_where_it_is_and_then_follows_it(world):
    run(world, "Box.Turn(Left, 1/8, Duration=0)")
    before = thing(world, "Bunny").GetPosition(), facing(world, "Bunny")
    run(world, "Bunny.BecomeChildOf(Box)")
    bunny = thing(world, "Bunny")
    assert bunny.parent is thing(world, "Box")
    assert bunny.GetPosition() == pytest.approx(before[0])
    for axis, was in zip(facing(world, "Bunny"), before[1]):
        assert axis == pytest.approx(was)
    # half a turn of the box about the world's up swings the bunny round it
    run(world, "Box.Turn(Left, 1/2, AsSeenBy=Scene)")
    assert bunny.GetPosition() == pytest.approx([6, 0, -5])
    run(world, "Bunny.BecomeChildOf(Scene)")
    assert bunny.GetPosition() == pytest.approx([6, 0, -5])
