"""Place sets an object against another where their shapes meet: the shapes
with their parts, each turned as it is, not a one-meter box."""

import os
import re

import pytest


HERE = os.path.dirname(os.path.abspath(__file__))
DEFAULT_WORLD = os.path.join(HERE, "..", "..", "home", "Worlds", "Default")
GALLERY_TABLE = os.path.join(HERE, "..", "..", "tools", "gallery", "README.md")


@pytest.fixture
def world(clocked):
    """The default world: its ground's top is at height 0."""
    engine = clocked
    assert engine.LoadWorld(DEFAULT_WORLD) is None
    return engine


def add(engine, name, parent=None, first_class=True, **values):
    with engine.undo.quiet():
        return engine.scene.create("model", name, parent or engine.scene.root, first_class, values)


def run(engine, code):
    assert engine.ExecuteCode(code, "<Tool>", "exec") is None
    engine.clock.advance(2.0)
    engine.Loop()


def where(engine, name):
    return engine.scene.find(name).GetPosition()


@pytest.fixture
def bunny(world):
    """A one-meter body high up, with feet a meter below it and tall ears."""
    body = add(world, "Bunny", position=(4, 3, 0))
    add(world, "Feet", body, False, position=(0, -1, 0))
    add(world, "Ears", body, False, position=(0, 1.2, 0), size=(0.2, 0.6, 0.2))
    return body


def test_an_object_stands_on_the_ground_on_its_lowest_part(world, bunny):
    run(world, "Bunny.Place(OnTopOf, Ground)")
    assert where(world, "Bunny") == pytest.approx([0, 1.5, 0])     # the feet's soles at 0
    run(world, "Camera.Place(OnTopOf, Bunny, Distance=1/2)")
    assert where(world, "Camera") == pytest.approx([0, 3.5, 0])     # above the ears' tips


def test_inside_another_object_its_floor_and_ceiling_are_met(world, bunny):
    add(world, "Room", position=(0, 1.5, 0), size=(4, 3, 4))
    run(world, "Bunny.Place(OnFloorOf, Room, Distance=1/4)")
    assert where(world, "Bunny")[1] == pytest.approx(1.75)
    run(world, "Bunny.Place(OnCeilingOf, Room)")
    assert where(world, "Bunny")[1] == pytest.approx(1.5)


def test_a_turned_object_is_measured_as_it_lies_now(world):
    add(world, "Plank", size=(2, 0.5, 0.5))
    add(world, "Wall", position=(0, 1, 5))
    run(world, "Plank.Turn(Left, 1/4, Duration=0)")     # its length now runs front to back
    run(world, "Plank.Place(InBackOf, Wall)")
    assert where(world, "Plank") == pytest.approx([0, 1, 3.5])


def test_the_sides_of_a_turned_object_turn_with_it(world):
    add(world, "Plank", size=(2, 0.5, 0.5))
    add(world, "Wall", position=(0, 1, 5))
    run(world, "Wall.Turn(Left, 1/4, Duration=0)")      # its back now faces right
    run(world, "Plank.Place(InBackOf, Wall)")
    assert where(world, "Plank") == pytest.approx([0.5 + 1, 1, 5])
    # the plank lies along the wall's axes: its length now runs front to back
    run(world, "Plank.Turn(Left, 1/4, Duration=0)")
    run(world, "Plank.Place(InBackOf, Wall)")
    assert where(world, "Plank") == pytest.approx([0.5 + 0.25, 1, 5])


def gallery_height(name):
    """An object's height as the gallery's table gives it."""
    with open(GALLERY_TABLE, encoding="utf-8") as table:
        for line in table:
            found = re.match(r"^\| \w+ \| %s \| ([\d.]+) \|" % name, line)
            if found:
                return float(found[1])
    raise LookupError(name)


def test_gallery_objects_stand_on_the_ground_and_on_a_table(world, backend_kind):
    objects = os.path.join(os.environ.get("VESSA47_HOME", ""), "Objects")
    if backend_kind != "compiled" or not os.path.isdir(objects):
        pytest.skip("needs the compiled backend and the gallery in the home folder")
    for path in ("Animals/Bunny.mdl", "Furniture/Table.mdl"):
        assert world.addobject(os.path.join(objects, path)) is None
    run(world, "Table.Move(Left, 3, Duration=0)\nBunny.Move(Up, 2, Duration=0)")
    run(world, "Bunny.Place(OnTopOf, Ground)")
    assert where(world, "Bunny")[1] == pytest.approx(0.0, abs=1e-6)    # its feet on the grass
    run(world, "Bunny.Place(OnTopOf, Table)")
    assert where(world, "Bunny")[1] == pytest.approx(gallery_height("Table"), abs=0.005)
    run(world, "Table.Move(Up, 1, Duration=0)")
    run(world, "Table.Place(OnTopOf, Ground)")
    assert where(world, "Table")[1] == pytest.approx(0.0, abs=1e-6)
