"""The scene's indexes (objects by name, the living, the cameras, free
numbered names) stay true to the scene through every way names and the
living change: checked after each step against a search of every object."""

import pytest

from conftest import write_tone
from vessa import Interpreter
from vessa.clock import ManualClock


@pytest.fixture
def world():
    clock = ManualClock()
    engine = Interpreter(clock=clock)
    engine.clock = clock
    yield engine
    engine.Close()


def run(engine, code):
    assert engine.ExecuteCode(code, "<Tool>", "exec") is None
    engine.clock.advance(5.0)
    engine.Loop()


def searched(scene, name):
    """The first living object of that name, found the slow way."""
    return next((t for t in scene.things.values()
                 if t.alive and t.name.lower() == name.lower()), None)


def first_free_searched(scene, stem):
    n = 2
    while not scene.is_free_name("%s%d" % (stem, n)):
        n += 1
    return "%s%d" % (stem, n)


def assert_indexes_agree(scene, stems=("Ground", "Bunny", "Camera")):
    living = [t for t in scene.things.values() if t.alive]
    assert scene.living() == living
    assert scene.cameras() == [t for t in living if t.kind == "camera"]
    for thing in scene.things.values():
        for name in (thing.name, thing.name.upper(), thing.name.lower()):
            assert scene.find(name) is searched(scene, name), name
    for stem in stems:
        assert scene.unique_name(stem) == first_free_searched(scene, stem)


def test_names_and_the_living_through_every_edit_undo_and_the_handbasket(world):
    scene = world.scene
    world.LoadWorld(world.GetHomeDirectory() + "Worlds/Default")
    assert_indexes_agree(scene)
    run(world, "b = Ground.Copy()\nb.Rename('Bunny')\n"
               "for _ in range(5): Bunny.Copy()")
    head = scene.create("model", "Head", scene.find("Bunny3"), first_class=False)
    assert scene.find("BUNNY3.head") is head
    assert_indexes_agree(scene)
    run(world, "PreserveHandbasket()")

    steps = [
        "Bunny3.Rename('Hare')",                    # a part's full name follows
        "Bunny2.Destroy()\nBunny4.Destroy()",       # numbers let go
        "Ground.Copy()\nBunny.Copy()",              # the first free numbers again
        "Hare.Head.becomefirstclass()",             # a part becomes an object
        "Head.BecomeChildOf(Camera, Duration=0)\nHead.becomepart()",
        "Camera.Copy()\nCamera2.Rename('bunny4')",  # a name in other capitals
        "undo()",                                   # renamed back
        "undo()",                                   # the copied camera goes
        "undo()",                                   # Head is an object again
        "Hare.Destroy()",
        "undo()",                                   # brought back with its name
    ]
    for step in steps:
        run(world, step)
        assert_indexes_agree(scene)
    assert scene.find("camera2") is None and scene.find("hare") is not None

    run(world, "RestoreHandbasket()")
    assert_indexes_agree(scene)
    assert sorted(t.name for t in scene.living() if t.name.startswith("Bunny")) == [
        "Bunny", "Bunny2", "Bunny3", "Bunny3.Head", "Bunny4", "Bunny5", "Bunny6"]


def test_a_name_let_go_is_the_first_free_again_whatever_its_capitals(world):
    run(world, "for _ in range(4): Camera.Copy()")
    run(world, "Camera3.Destroy()")
    run(world, "Camera5.Rename('CAMERA3')")
    assert world.scene.unique_name("Camera") == "Camera5"
    run(world, "Camera2.Rename('Eye')")
    assert world.scene.unique_name("camera") == "camera2"
    assert "Mistake" in world.ExecuteCode("Eye.Rename('camera4')", "<Tool>", "exec")


def test_a_sound_takes_a_number_and_gives_it_back(world, tmp_path):
    write_tone(tmp_path / "Camera2.wav")
    assert world.AddSound(str(tmp_path / "Camera2.wav")) is None
    assert world.scene.unique_name("Camera") == "Camera3"
    run(world, "Camera2.Rename('Beep')")
    assert world.scene.unique_name("Camera") == "Camera2"


def test_a_loaded_world_is_found_by_its_names_and_counts_on_from_them(world, tmp_path):
    run(world, "for _ in range(3): Camera.Copy()\nCamera3.Destroy()")
    assert world.SaveScene(str(tmp_path)) is None
    other = Interpreter()
    other.ExecuteCode("for _ in range(9): Camera.Copy()", "<Tool>", "exec")
    assert other.LoadWorld(str(tmp_path)) is None
    assert_indexes_agree(other.scene)
    assert [t.name for t in other.scene.cameras()] == ["Camera", "Camera2", "Camera4"]
    assert other.scene.unique_name("Camera") == "Camera3"
    other.Close()
