"""Objects from files, stored objects, words, and the scene's sounds."""

import os

import pytest

from conftest import describe, misc, tagged, write_tone
from fronttrees import FrontTrees
from vessa import Interpreter


@pytest.fixture
def world(clocked):
    clocked.PollForTreeDifferences()
    misc(clocked)
    return clocked


@pytest.fixture
def core_only(backend_kind):
    if backend_kind != "compiled":
        pytest.skip("model files are read by the compiled backend")


def run(engine, code):
    assert engine.ExecuteCode(code, "<Tool>", "exec") is None


def store_a_bunny(engine, path):
    scene = engine.scene
    bunny = scene.create("model", "Bunny", scene.root, values={"size": (1, 2, 1)})
    scene.create("model", "Head", bunny, first_class=False, values={"position": (0, 1.5, 0.25)})
    run(engine, "Bunny.store(%r)" % str(path))
    engine.PollForTreeDifferences()


@pytest.mark.parametrize("adding", ["addobject", "loadteddyobject"])
def test_a_file_that_is_no_model_adds_nothing_and_says_why(world, tmp_path, adding):
    # The sketch tool's object is added as any other, and refused as any other.
    add = getattr(world, adding)
    (tmp_path / "Broken.mdl").write_bytes(b"not a model")
    failure = add(str(tmp_path / "Broken.mdl"))
    assert failure and "Broken.mdl" in failure
    assert world.PollForTreeDifferences() == []
    assert add(str(tmp_path / "Missing.obj")) == world.addobject(str(tmp_path / "Missing.obj"))
    assert add(str(tmp_path / "Missing.obj"))


def test_a_stored_object_comes_back_with_its_parts(world, tmp_path, core_only):
    store_a_bunny(world, tmp_path / "Bunny.mdl")
    assert world.addobject(str(tmp_path / "Bunny.mdl")) is None
    records = world.PollForTreeDifferences()
    names = [r[3] for r in tagged(records, "objectnamechange")]
    assert names == ["Bunny2", "Bunny2.Head"]
    head = world.scene.find("Bunny2.Head")
    assert head.GetPosition() == pytest.approx([0, 1.5, 0.25])
    assert world.scene.find("Bunny2").GetVertexCount() > 0
    assert world.scene.find("Bunny2").GetSize() == [1, 1, 1]    # the size went into the shape
    run(world, "undo()")
    assert world.scene.find("Bunny2") is None and world.scene.find("Bunny2.Head") is None


def test_a_saved_world_keeps_its_model_files_in_its_folder(world, tmp_path, core_only):
    store_a_bunny(world, tmp_path / "Bunny.mdl")
    world.scene.destroy(world.scene.find("Bunny"))
    world.addobject(str(tmp_path / "Bunny.mdl"))
    folder = tmp_path / "World"
    folder.mkdir()
    assert world.SaveScene(str(folder)) is None
    assert (folder / "Bunny.mdl").is_file()
    assert "model='Bunny.mdl#1'" in (folder / "World_Scene.py").read_text()
    os.remove(tmp_path / "Bunny.mdl")
    other = Interpreter()
    assert other.LoadWorld(str(folder)) is None
    head = other.scene.find("Bunny.Head")
    assert head.model == str(folder / "Bunny.mdl") + "#1"
    assert other.replaceobject("Bunny", str(folder / "Bunny.mdl")) is None
    assert other.replaceobject("Nobody", str(folder / "Bunny.mdl"))
    other.Close()


def test_words_stand_as_an_object_named_after_them(world):
    world.AddText("Hello there")
    thing = world.scene.find("Hello_there")
    assert thing is not None and thing.model == "text:Hello there"
    world.AddText("")
    assert len(tagged(world.PollForTreeDifferences(), "objectconstruct")) == 1


def test_a_sound_joins_the_scene_is_renamed_removed_and_put_back(world, tmp_path):
    write_tone(tmp_path / "Pop.wav")
    assert world.AddSound(str(tmp_path / "Pop.wav")) is None
    records = world.PollForTreeDifferences()
    sound_id = records[0][1]
    assert records == [["objectconstruct", sound_id, "sound"],
                       ["soundnamechange", sound_id, "", "Pop"],
                       ["sceneaddsound", str(world.scene.root.id), sound_id]]
    run(world, "Playsound(Pop)\nPop.Rename('Bang')\nCamera.PlaySound(Bang, Volume=0.5)")
    assert not world.isvalidname("Bang")
    world.clock = world.animator.clock
    world.clock.advance(1.0)
    world.Loop()
    assert not tagged(misc(world), "output")
    run(world, "Vessa.GetDefaultScene().RemoveSound(Bang)")
    assert world.PollForTreeDifferences() == [
        ["soundnamechange", sound_id, "Pop", "Bang"],
        ["sceneremovesound", str(world.scene.root.id), sound_id]]
    run(world, "undo()")
    assert world.PollForTreeDifferences() == [
        ["soundnamechange", sound_id, "Bang", "Bang"],
        ["sceneaddsound", str(world.scene.root.id), sound_id]]


def test_sounds_that_cannot_be_played_are_reported_and_change_nothing(world, tmp_path):
    (tmp_path / "Bad.wav").write_bytes(b"RIFF, or not")
    assert world.AddSound(str(tmp_path / "Bad.wav"))
    assert world.PollForTreeDifferences() == []
    run(world, 'Camera.PlaySound("%s")' % (tmp_path / "Gone.wav"))
    world.Loop()
    output = tagged(misc(world), "output")
    assert len(output) == 1 and "Gone.wav" in output[0][1]
    world.SetHomeDirectory(str(tmp_path))
    run(world, "PlaySystemSound('Error')\nplaysystemsound('Selection')")    # no such files
    (tmp_path / "Sounds").mkdir()
    write_tone(tmp_path / "Sounds" / "Undo.wav")
    run(world, "PlaySystemSound('Undo')")
    assert misc(world) == []


def sound_world(engine, tmp_path):
    """A scene with the sounds Pop and Drum, whose files share a name."""
    (tmp_path / "kit").mkdir()
    write_tone(tmp_path / "Pop.wav")
    write_tone(tmp_path / "kit" / "Pop.wav", step=300)
    assert engine.AddSound(str(tmp_path / "Pop.wav")) is None
    assert engine.AddSound(str(tmp_path / "kit" / "Pop.wav")) is None
    run(engine, "Pop2.Rename('Drum')")


def test_a_saved_world_keeps_its_sounds_and_loads_them_back(world, tmp_path):
    sound_world(world, tmp_path)
    folder = tmp_path / "World"
    folder.mkdir()
    assert world.SaveScene(str(folder)) is None
    assert world.SaveScene(str(folder)) is None     # again: the copies are there already
    kept = sorted(name for name in os.listdir(folder) if name != "world_thumbnail.bmp")
    assert kept == ["Pop.wav", "Pop2.wav", "World_Scene.py"]
    assert (folder / "Pop2.wav").read_bytes() == (tmp_path / "kit" / "Pop.wav").read_bytes()
    text = (folder / "World_Scene.py").read_text()
    assert text.endswith("Sound(name='Pop', file='Pop.wav')\nSound(name='Drum', file='Pop2.wav')\n")
    os.remove(tmp_path / "Pop.wav")
    other = Interpreter()
    trees = FrontTrees()
    assert other.LoadWorld(str(folder)) is None
    records = other.PollForTreeDifferences()
    trees.take(records)
    assert trees.sound_names() == ["Drum", "Pop"]
    pop = other.sounds.find("Pop")
    assert records[-6:-3] == [["objectconstruct", str(pop.id), "sound"],
                              ["soundnamechange", str(pop.id), "", "Pop"],
                              ["sceneaddsound", str(other.scene.root.id), str(pop.id)]]
    run(other, "Playsound(Pop)\nCamera.PlaySound(Drum)")
    other.Loop()
    assert not other.isvalidname("Drum") and misc(other) == []
    other.Close()


def test_a_world_whose_sound_file_is_gone_loads_and_says_so(world, tmp_path):
    (tmp_path / "World_Scene.py").write_text("Object(kind='scene', name='Scene', parent=None)\n"
                                             "Sound(name='Gone', file='Gone.wav')\n")
    assert world.LoadWorld(str(tmp_path)) is None
    output = tagged(misc(world), "output")
    assert len(output) == 1 and "Gone.wav" in output[0][1]
    run(world, "assert Gone.GetName() == 'Gone'")


def test_the_handbasket_puts_back_the_sounds_of_the_scene(world, tmp_path):
    trees = FrontTrees()
    trees.take(world.PollForTreeDifferences())
    sound_world(world, tmp_path)
    write_tone(tmp_path / "Bell.wav")
    trees.take(world.PollForTreeDifferences())
    run(world, "PreserveHandbasket()")
    run(world, "Pop.Rename('Boom')\nVessa.GetDefaultScene().RemoveSound(Drum)")
    world.AddSound(str(tmp_path / "Bell.wav"))
    trees.take(world.PollForTreeDifferences())
    assert trees.sound_names() == ["Bell", "Boom"]
    run(world, "RestoreHandbasket()")
    trees.take(world.PollForTreeDifferences())
    assert trees.sound_names() == ["Drum", "Pop"]
    run(world, "assert Pop.path.endswith('Pop.wav') and Drum.GetName() == 'Drum'")
    assert world.isvalidname("Boom") and world.isvalidname("Bell")
    # names swapped by a run come back to their own sounds
    run(world, "Pop.Rename('Spare')\nDrum.Rename('Pop')\nSpare.Rename('Drum')")
    world.PollForTreeDifferences()
    run(world, "RestoreHandbasket()")
    run(world, "assert 'kit' not in Pop.path and 'kit' in Drum.path")


def test_a_save_into_a_staging_folder_leaves_the_worlds_own_files_alone(world, tmp_path, core_only):
    """The scene file and picture go to the staging folder for the caller to move; the
    files the scene names are copied into the world's folder, each whole, by way of it."""
    store_a_bunny(world, tmp_path / "Bunny.mdl")
    world.scene.destroy(world.scene.find("Bunny"))
    world.addobject(str(tmp_path / "Bunny.mdl"))
    sound_world(world, tmp_path)
    folder, staging = tmp_path / "World", tmp_path / "World" / ".staging"
    staging.mkdir(parents=True)
    (folder / "World_Scene.py").write_text("the old scene\n")
    assert world.SaveScene(str(folder), str(staging)) is None
    assert (folder / "World_Scene.py").read_text() == "the old scene\n"
    assert sorted(os.listdir(staging)) == ["World_Scene.py", "world_thumbnail.bmp"]
    assert sorted(os.listdir(folder)) == [".staging", "Bunny.mdl", "Pop.wav", "Pop2.wav",
                                          "World_Scene.py"]
    assert (folder / "Bunny.mdl").read_bytes() == (tmp_path / "Bunny.mdl").read_bytes()
    # The scene names the files as the world's folder holds them: moved there, it loads.
    os.replace(staging / "World_Scene.py", folder / "World_Scene.py")
    other = Interpreter()
    assert other.LoadWorld(str(folder)) is None
    assert other.scene.find("Bunny.Head").model == str(folder / "Bunny.mdl") + "#1"
    assert other.sounds.find("Drum") is not None
    other.Close()


def test_a_copy_of_the_scene_names_each_file_once_and_loads_in_its_own_folder(world, tmp_path,
                                                                            core_only):
    store_a_bunny(world, tmp_path / "Bunny.mdl")
    world.addobject(str(tmp_path / "Bunny.mdl"))
    sound_world(world, tmp_path)
    files = world.StartSceneCopy(0)
    assert sorted(name for _, name in files) == ["Bunny.mdl", "Pop.wav", "Pop2.wav"]
    text, part = "", world.NextSceneCopyPart(1)
    parts = 0
    while part:
        text, part, parts = text + part, world.NextSceneCopyPart(1), parts + 1
    assert parts == len(world.scene.living()) and world.NextSceneCopyPart(1) == ""
    copy = tmp_path / "Copy"
    copy.mkdir()
    (copy / "World_Scene.py").write_text(text, newline="")
    for path, name in files:
        (copy / name).write_bytes(open(path, "rb").read())
    before = describe(world)
    other = Interpreter()
    assert other.LoadWorld(str(copy)) is None
    assert describe(other) == before
    assert other.sounds.find("Drum").path == str(copy / "Pop2.wav")
    other.Close()


def test_a_copy_taken_while_the_world_runs_holds_it_as_the_handbasket_keeps_it(world):
    run(world, "Camera.Copy()\nCamera2.Move(Left, 2, Duration=0)")
    world.Loop()
    world.ExecuteCode("PreserveHandbasket()", "<Tool>", "exec")
    run(world, "Camera2.Move(Up, 3, Duration=0)\nCamera2.Rename('Eye')\nCamera.Copy()")
    world.Loop()

    def copy(as_preserved):
        world.StartSceneCopy(as_preserved)
        return "".join(iter(lambda: world.NextSceneCopyPart(100), ""))
    running, kept = copy(0), copy(1)
    assert "Eye" in running and "Eye" not in kept and "Camera3" not in kept
    world.ExecuteCode("RestoreHandbasket()", "<Tool>", "exec")
    assert copy(0) == kept
