"""Scene edits, the records that follow them, undo and the handbasket."""

import pytest

from conftest import misc, tagged


@pytest.fixture
def world(clocked):
    engine = clocked
    engine.PollForTreeDifferences()
    return engine


def run(engine, code, steps=True):
    assert engine.ExecuteCode(code, "<Tool>", "exec") is None
    if steps:
        engine.clock.advance(5.0)
        engine.Loop()


def make_bunny(engine):
    scene = engine.scene
    with engine.undo.quiet():     # as a loaded world: nothing to undo yet
        bunny = scene.create("model", "Bunny", scene.root)
        scene.create("model", "Head", bunny, first_class=False)
    engine.PollForTreeDifferences()
    return bunny


def test_a_part_is_an_attribute_with_a_dotted_name(world):
    make_bunny(world)
    run(world, "Bunny.Head.Turn(Right, 1/4)\nassert Bunny.Head.GetName() == 'Bunny.Head'")
    assert world.scene.find("bunny.head") is not None


def test_rename_tells_the_new_full_names_of_the_object_and_its_parts(world):
    bunny = make_bunny(world)
    run(world, "Bunny.Rename('Hare')", steps=False)
    head = world.scene.find("Hare.Head")
    assert world.PollForTreeDifferences() == [
        ["objectnamechange", str(bunny.id), "Bunny", "Hare"],
        ["objectnamechange", str(head.id), "Bunny.Head", "Hare.Head"]]
    assert world.ExecuteCode("Hare.Head", "<Tool>", "exec") is None
    assert "NameError" in world.ExecuteCode("Bunny", "<Tool>", "exec")


def test_rename_refuses_a_taken_or_invalid_name(world):
    make_bunny(world)
    assert "Mistake" in world.ExecuteCode("Bunny.rename('Camera')", "<Tool>", "exec")
    assert "Mistake" in world.ExecuteCode("Bunny.rename('my bunny')", "<Tool>", "exec")


def test_reparent_keeps_the_place_in_the_world_and_sends_the_new_parent(world):
    bunny = make_bunny(world)
    run(world, "Bunny.Move(Forward, 3)\nCamera.Move(Up, 1)")
    run(world, "Bunny.BecomeChildOf(Camera, Duration=0)")
    camera = world.scene.find("Camera")
    assert world.PollForTreeDifferences() == [
        ["objectparentchange", str(bunny.id), str(world.scene.root.id), str(camera.id)]]
    assert bunny.GetPosition() == pytest.approx([0, 0, 3])
    run(world, "Camera.Move(Up, 1)")
    assert bunny.GetPosition() == pytest.approx([0, 1, 3])


def test_becoming_a_part_changes_the_image_record_and_the_name(world):
    bunny = make_bunny(world)
    run(world, "Bunny.BecomeChildOf(Camera)")
    world.PollForTreeDifferences()
    run(world, "Bunny.becomepart()", steps=False)
    records = world.PollForTreeDifferences()
    assert records[0] == ["objectfirstclassorpartchange", str(bunny.id), "Camera.Bunny", "0"]
    assert ["objectnamechange", str(bunny.id), "Bunny", "Camera.Bunny"] in records


def test_destroy_sends_descendants_first_and_undo_brings_them_back(world):
    bunny = make_bunny(world)
    head = world.scene.find("Bunny.Head")
    run(world, "Vessa.Undo.Push(None, '[')\nBunny.Destroy()", steps=True)
    run(world, "Vessa.Undo.Push(None, ']')", steps=False)
    assert world.PollForTreeDifferences() == [["objectdestruct", str(head.id)],
                                               ["objectdestruct", str(bunny.id)]]
    assert "NameError" in world.ExecuteCode("Bunny", "<Tool>", "exec")
    run(world, "undo()", steps=False)
    assert world.PollForTreeDifferences() == [["objectresurrect", str(bunny.id)],
                                               ["objectresurrect", str(head.id)]]
    assert world.ExecuteCode("Bunny.Head", "<Tool>", "exec") is None


def test_undo_records_tell_when_the_stack_empties(world):
    make_bunny(world)
    misc(world)
    run(world, "Vessa.Undo.Push(None, '[')\nBunny.Move(Up, 2)\nBunny.Turn(Left, 1)")
    run(world, "Vessa.Undo.Push(None, ']')", steps=False)
    assert tagged(misc(world), "undoemptychange") == [["undoemptychange", "", False]]
    run(world, "undo()", steps=False)
    assert world.scene.find("Bunny").GetPosition() == pytest.approx([0, 0, 0])
    assert tagged(misc(world), "undoemptychange") == [["undoemptychange", "", True]]


def test_copy_makes_a_new_object_with_its_parts(world):
    make_bunny(world)
    run(world, "Vessa.Undo.Push(None, '['); DoInOrder(Bunny.Copy().Nudge(Forward, 1)); "
               "Vessa.Undo.Push(None, ']'); PlaySystemSound('Copy')")
    copy = world.scene.find("Bunny2")
    assert copy.GetPosition() == pytest.approx([0, 0, 1])
    records = world.PollForTreeDifferences()
    assert [r[0] for r in records[:3]] == ["objectconstruct", "objectparentchange", "objectnamechange"]
    assert records[2][3] == "Bunny2" and records[5][3] == "Bunny2.Head"


def test_statistics_and_style_statements_of_the_object_menu_run(world):
    make_bunny(world)
    for code in ["Bunny.SetFillingStyle(Lines)", "Bunny.SetLightingStyle(UnLit)",
                 "Bunny.SetTexture(None)", "Bunny.SetTexture()",
                 "c=getdefaultcamera()\nif c==None:\n pass\nelse:\n c.getagoodlookat(Bunny)",
                 "print(Bunny.GetName(), len([Bunny] + Bunny.GetChildren(All)), "
                 "Bunny.GetFaceCount(), Bunny.GetVertexCount())"]:
        assert world.ExecuteCode(code, "<Tool>", "exec") is None
    assert world.scene.find("Bunny.Head").filling == "Lines"
    assert tagged(misc(world), "output") == [["output", "Bunny 2 0 0\n"]]


def test_handbasket_puts_back_a_scene_that_a_run_has_wrecked(world):
    bunny = make_bunny(world)
    run(world, "Bunny.SetColor(Blue)\nBunny.Move(Left, 2)")
    run(world, "PreserveHandbasket()", steps=False)
    before = (bunny.GetPosition(), bunny.GetColor(), bunny.size)
    world.PollForTreeDifferences()
    world.ExecuteLines("Bunny.Resize(InAllDirections, 3)\nBunny.Head.Destroy()\n"
                       "Bunny.Rename('Wreck')\nWreck.BecomeChildOf(Camera)\n"
                       "Extra = Camera.Copy()\nCamera.addresponse(KeyDown, Camera.Move(Up, 1))\n",
                       0, 5, "<treeview>", "exec")
    run(world, "Wreck.Move(Up, 4, Duration=10)")
    run(world, "RestoreHandbasket()", steps=False)
    assert (bunny.GetPosition(), bunny.GetColor(), bunny.size) == before
    assert bunny.name == "Bunny" and bunny.parent is world.scene.root
    assert world.scene.find("Bunny.Head").alive and world.scene.find("Camera2") is None
    assert world.GetLoopWait() == -1
    world.KeyEvent("KeyDown", "A", 65)
    world.clock.advance(2)
    world.Loop()
    assert world.scene.find("Camera").GetPosition() == pytest.approx([0, 0, 0])
    tree = [r[0] for r in world.PollForTreeDifferences()]
    assert "objectresurrect" in tree and "objectdestruct" in tree and "objectnamechange" in tree


def test_handbasket_puts_back_how_an_object_and_its_parts_looked(world):
    bunny = make_bunny(world)
    head = world.scene.find("Bunny.Head")
    run(world, "Bunny.Head.SetFillingStyle(Points)\nBunny.Head.Turn(Left, 1/8)")

    def looks():
        return [(t.visible, t.filling, t.lighting, t.texture, t.shadow, t.GetColor(), t.GetSize(),
                 t.orientation) for t in (bunny, head)]
    run(world, "PreserveHandbasket()", steps=False)
    before = looks()
    world.ExecuteLines("Bunny.Hide()\nBunny.SetFillingStyle(Lines)\nBunny.SetLightingStyle(UnLit)\n"
                       "Bunny.SetTexture(None)\nBunny.StopCastingShadow()\nBunny.SetColor(Red)\n"
                       "Bunny.Flatten()\nBunny.Head.Turn(Right, 1/3)\n", 0, 7, "<treeview>", "exec")
    run(world, "")
    wrecked = looks()
    for look, was in zip(wrecked[0][:-1], before[0][:-1]):
        assert look != was      # the run changed every look of the bunny but its turn
    assert wrecked[1][-1] != before[1][-1]
    run(world, "RestoreHandbasket()", steps=False)
    assert looks() == before


def test_the_python_2_statistics_statement_runs_from_the_front_end(world):
    make_bunny(world)
    o = "Bunny"
    code = ("print " + o + ".GetName()+': '+ `len([" + o + "]+" + o + ".GetChildren(All))` + "
            "' objects, '+`" + o + ".GetFaceCount()` + ' faces, ' + `" + o + ".GetVertexCount()` "
            "+ ' vertices'")
    assert world.ExecuteCode(code, "<Tool>", "exec") is None
    assert misc(world)[-1] == ["output", "Bunny: 2 objects, 0 faces, 0 vertices\n"]
    world.ExecuteCode("print `1`", "<Command Line>", "exec")
    assert tagged(misc(world), "popuperrordialog")      # the user's own code stays Python 3


def test_object_menu_description_follows_the_object(world):
    make_bunny(world)
    run(world, "Bunny.SetFillingStyle(Lines)\nBunny.SetLightingStyle(UnLit)\nBunny.SetTexture(None)",
        steps=False)
    menu = world.PrepareObjectMenu("bunny")
    assert menu[0] is True and menu[4] is True and menu[5] is True
    assert menu[6:] == [0, 64, 0]
    assert world.PrepareObjectMenu("Bunny.Head")[5] is False
    world.SetCurrentObject("Bunny")
    assert world.ExecuteCode("assert _CurrentlySelectedObject is Bunny", "<Tool>", "exec") is None


def test_the_camera_can_start_where_a_run_took_it(world):
    bunny = make_bunny(world)
    run(world, "PreserveHandbasket()", steps=False)
    run(world, "Camera.Move(Back, 3)\nCamera.Turn(Left, 1/4)\nBunny.Move(Up, 1)\n"
               "Camera.BecomeChildOf(Bunny)")
    place = (world.scene.find("Camera").GetPosition(), world.scene.find("Camera").world_orientation())
    assert world.SetCameraPosInOpeningScene() is None
    run(world, "Camera.Move(Forward, 5)")
    run(world, "RestoreHandbasket()", steps=False)
    camera = world.scene.find("Camera")
    assert camera.parent is world.scene.root and bunny.GetPosition() == pytest.approx([0, 0, 0])
    assert camera.GetPosition() == pytest.approx(place[0])
    assert camera.world_orientation() == pytest.approx(place[1])


def test_a_part_named_as_a_word_of_the_world_keeps_its_name_through_a_run(world):
    # a chair's Back is a part, reached as Chair.Back; only as an object of
    # its own would it hide the direction Back
    scene = world.scene
    with world.undo.quiet():
        chair = scene.create("model", "Chair", scene.root)
        scene.create("model", "Back", chair, first_class=False)
    run(world, "PreserveHandbasket()", steps=False)
    run(world, "Chair.Back.becomefirstclass()", steps=False)
    assert scene.find("Back2").parent is chair
    run(world, "RestoreHandbasket()", steps=False)
    assert scene.find("Chair.Back") is not None
    assert world.ExecuteCode("Camera.Move(Back, 1)", "<Tool>", "exec") is None
