"""Parts follow their object: a resized object keeps its parts on it, scaled
with it, and a hidden one hides them; HowMuch chooses otherwise."""

import pytest

from conftest import misc, tagged
from fronttrees import FrontTrees


@pytest.fixture
def world(clocked):
    engine = clocked
    scene = engine.scene
    with engine.undo.quiet():
        bunny = scene.create("model", "Bunny", scene.root, values={"size": (1, 2, 1)})
        head = scene.create("model", "Head", bunny, False,
                            {"position": (0, 1.5, 0.25), "size": (0.5, 0.5, 0.5)})
        scene.create("model", "Ear", head, False, {"position": (0.1, 0.3, 0)})
        scene.create("model", "Rider", bunny, True, {"position": (0, 1, -1)})
    return engine


def run(engine, code, seconds=2.0):
    assert engine.ExecuteCode(code, "<Tool>", "exec") is None
    engine.clock.advance(seconds)
    engine.Loop()


def state(engine, name):
    thing = engine.scene.find(name)
    return thing.GetPosition(), thing.GetSize(), thing.IsVisible()


def hit_from_the_left(engine, height):
    """How far a level line from x = -10 at height goes before it meets a shape."""
    return engine.backend.first_hit((-10.0, height, 0.0), (1.0, 0.0, 0.0), 100.0)


def test_a_resized_object_takes_its_parts_along_and_leaves_other_objects(world):
    before = [state(world, n) for n in ("Bunny", "Bunny.Head", "Bunny.Head.Ear")]
    run(world, "Bunny.Resize(InAllDirections, 2, Duration=1, Style=abruptly)", seconds=0.5)
    assert state(world, "Bunny.Head")[:2] == (pytest.approx([0, 2.25, 0.375]),
                                               pytest.approx([0.75] * 3))
    run(world, "", seconds=1.0)
    assert state(world, "Bunny")[1] == pytest.approx([2, 4, 2])
    assert state(world, "Bunny.Head")[:2] == (pytest.approx([0, 3, 0.5]), pytest.approx([1] * 3))
    assert state(world, "Bunny.Head.Ear")[:2] == (pytest.approx([0.2, 3.6, 0.5]),
                                                   pytest.approx([2] * 3))
    assert state(world, "Rider")[:2] == (pytest.approx([0, 1, -1]), pytest.approx([1] * 3))
    assert hit_from_the_left(world, 3.2) == pytest.approx(9.2)     # the ear, where it went
    run(world, "undo()")
    assert [state(world, n) for n in ("Bunny", "Bunny.Head", "Bunny.Head.Ear")] == before


def test_howmuch_and_like_rubber_choose_who_is_resized_and_how(world):
    run(world, "Bunny.Resize(TopToBottom, 2, ObjectOnly)")
    assert state(world, "Bunny.Head")[:2] == (pytest.approx([0, 1.5, 0.25]),
                                               pytest.approx([0.5] * 3))
    run(world, "Bunny.Resize(TopToBottom, 2, ObjectAndChildren)")
    assert state(world, "Rider")[:2] == (pytest.approx([0, 2, -1]), pytest.approx([1, 2, 1]))
    assert state(world, "Bunny.Head")[0] == pytest.approx([0, 3, 0.25])
    run(world, "Bunny.Resize(TopToBottom, 4, LikeRubber)")     # the volume stays
    assert state(world, "Bunny")[1] == pytest.approx([0.5, 32, 0.5])
    assert state(world, "Bunny.Head")[:2] == (pytest.approx([0, 12, 0.125]),
                                               pytest.approx([0.25, 4, 0.25]))


def test_a_turned_part_stretches_along_the_objects_axes(world):
    run(world, "Bunny.Head.Turn(Left, 1/4, Duration=0)\nBunny.Head.Ear.Turn(Right, 1/4, Duration=0)")
    run(world, "Bunny.Resize(FrontToBack, 2)")
    # the head's left-to-right side lies along the bunny's front-to-back axis
    assert state(world, "Bunny.Head")[:2] == (pytest.approx([0, 1.5, 0.5]),
                                               pytest.approx([1, 0.5, 0.5]))
    assert state(world, "Bunny.Head.Ear")[:2] == (pytest.approx([0, 1.8, 0.7]),
                                                   pytest.approx([1, 1, 2]))


def test_hide_and_show_take_the_parts_along(world):
    run(world, "Bunny.Hide()")
    assert [state(world, n)[2] for n in ("Bunny", "Bunny.Head", "Bunny.Head.Ear", "Rider")] == [
        False, False, False, True]
    assert hit_from_the_left(world, 1.6) is None        # nothing of the bunny is left to meet
    run(world, "Bunny.Head.Show()")
    assert [state(world, n)[2] for n in ("Bunny", "Bunny.Head", "Bunny.Head.Ear")] == [
        False, True, True]
    run(world, "Bunny.Show(Toggle)")        # the bunny was hidden: all of it shows
    assert all(state(world, n)[2] for n in ("Bunny", "Bunny.Head", "Bunny.Head.Ear"))
    run(world, "Bunny.Hide(No)\nBunny.Hide(ObjectOnly)")
    assert [state(world, n)[2] for n in ("Bunny", "Bunny.Head")] == [False, True]
    run(world, "Bunny.Hide(ObjectAndChildren)")
    assert not state(world, "Rider")[2]


def test_shadows_and_first_class_commands_follow_the_family(world):
    run(world, "Bunny.StopCastingShadow()")
    shadows = lambda: [world.scene.find(n).shadow for n in ("Bunny", "Bunny.Head.Ear", "Rider")]
    assert shadows() == [False, False, True]
    run(world, "Bunny.CastShadow(ObjectOnly)")
    assert shadows() == [True, False, True]
    run(world, "DoInOrder(Bunny.Head.BecomeFirstClass(), Bunny.Head.Move(Up, 1, Duration=0))")
    assert state(world, "Head")[0] == pytest.approx([0, 2.5, 0.25])
    assert state(world, "Head.Ear")[0] == pytest.approx([0.1, 2.8, 0.25])


EVERYONE = ["Bunny", "Bunny.Head", "Bunny.Head.Ear", "Camera", "Hat", "Rider", "Scene"]


@pytest.fixture
def trees(world):
    """The front end's trees, with a hat on the bunny's head, an object of its own."""
    scene = world.scene
    with world.undo.quiet():
        scene.create("model", "Hat", scene.find("Bunny.Head"), True, {"position": (0, 0.5, 0)})
    run(world, "Bunny.Move(Right, 2, Duration=0)")
    front = FrontTrees()
    front.take(world.PollForTreeDifferences())
    assert front.names() == EVERYONE
    return front


@pytest.mark.parametrize("how_much, left", [
    ("", ["Camera", "Hat", "Rider", "Scene"]),
    ("ObjectOnly", ["Camera", "Hat", "Head", "Head.Ear", "Rider", "Scene"]),
    ("ObjectAndChildren", ["Camera", "Scene"]),
])
def test_destroy_leaves_what_howmuch_spares_where_it_was(world, trees, how_much, left):
    spared = [world.scene.find(n) for n in ("Bunny.Head", "Hat", "Rider")]
    places = [thing.GetPosition() for thing in spared]
    run(world, "Vessa.Undo.Push(None, '[')\nBunny.Destroy(%s)" % how_much)
    run(world, "Vessa.Undo.Push(None, ']')")
    trees.take(world.PollForTreeDifferences())
    assert trees.names() == left
    assert sorted(t.name for t in world.scene.living()) == left
    for thing, place in zip(spared, places):
        if thing.alive:
            assert thing.parent.alive and thing.GetPosition() == pytest.approx(place)
    run(world, "undo()")
    trees.take(world.PollForTreeDifferences())
    assert trees.names() == EVERYONE
    assert world.scene.find("Rider").parent is world.scene.find("Bunny")


@pytest.mark.parametrize("command, says", [
    ("Hide", "Yes, No or Toggle, or nothing at all"),
    ("Destroy", "nothing, or how much of it goes, such as ObjectAndChildren"),
    ("CastShadow", "nothing, or how much of it, such as ObjectOnly"),
])
def test_a_word_of_another_kind_is_told_what_the_command_takes(world, command, says):
    world.ExecuteCode("Bunny.%s(Red)" % command, "<Script Text>", "exec")
    assert tagged(misc(world), "popuperrordialog")[0][1] == "Bunny.%s needs %s." % (command, says)
