"""Objects from the files of other programs, as a user adds and saves them:
named after the file, their parts after the file's groups, shrunk when too
big to see, saved with the files they name, and a missing one told."""

import os

import pytest

from conftest import misc, tagged
from vessa import Interpreter, commands


@pytest.fixture
def world(clocked):
    engine = clocked
    engine.PollForTreeDifferences()
    misc(engine)
    return engine


@pytest.fixture
def compiled(backend_kind):
    if backend_kind != "compiled":
        pytest.skip("model files are read by the compiled backend")


def write_obj(path, groups, mtl=None, size=1.0):
    """An .obj file of groups, each (name, corner) a triangle of size
    meters from corner; mtl: the text of its material file."""
    lines = ["mtllib %s.mtl" % path.stem] if mtl is not None else []
    for n, (name, (x, y, z)) in enumerate(groups):
        lines += ["g " + name, "usemtl paint" if mtl is not None else "",
                  "v %g %g %g" % (x, y, z), "v %g %g %g" % (x + size, y, z),
                  "v %g %g %g" % (x, y + size, z), "f %d %d %d" % (3 * n + 1, 3 * n + 2, 3 * n + 3)]
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("\n".join(lines) + "\n")
    if mtl is not None:
        (path.parent / (path.stem + ".mtl")).write_text(mtl)


def outputs(engine):
    return [record[1] for record in tagged(misc(engine), "output")]


def test_the_kinds_of_model_file_are_those_its_backend_reads(world, backend_kind, tmp_path):
    write_obj(tmp_path / "Tooth.obj", [("Tooth", (0, 0, 0))])
    if backend_kind == "python":
        assert world.GetModelFileKinds() == []
        assert "need the compiled backend" in world.addobject(str(tmp_path / "Tooth.obj"))
        assert world.PollForTreeDifferences() == []
    else:
        assert {"mdl", "gltf", "glb", "fbx", "dae", "obj", "3ds"} <= set(world.GetModelFileKinds())
        assert world.addobject(str(tmp_path / "Tooth.obj")) is None


def test_an_object_is_named_after_its_file_and_its_parts_after_the_files_groups(
        world, tmp_path, compiled):
    horse = tmp_path / "zoo animals" / "My Horse.obj"
    write_obj(horse, [("Zahn", (0, 0, 0)), ("zahn", (1, 0, 0)), ("Zahn2", (2, 0, 0)),
                      ("class", (3, 0, 0)), ("Mähne", (4, 0, 0))])
    assert world.addobject(str(horse)) is None
    assert world.addobject(str(horse)) is None
    write_obj(tmp_path / "3d tree.obj", [("Trunk", (0, 0, 0))])
    assert world.addobject(str(tmp_path / "3d tree.obj")) is None
    names = [r[3] for r in tagged(world.PollForTreeDifferences(), "objectnamechange")]
    # Numbers only where two names meet, never over a name of the file;
    # none of the folders' names, nor a name Python keeps for itself.
    parts = ["Zahn", "zahn3", "Zahn2", "Part_class", "Mähne"]
    assert names == (["MyHorse"] + ["MyHorse." + p for p in parts] + ["MyHorse2"]
                     + ["MyHorse2." + p for p in parts] + ["Object3dTree"])
    world.ExecuteCode("MyHorse.zahn3.Turn(Left, 1/4, Duration=0)", "<Tool>", "exec")
    assert tagged(misc(world), "error") == []


def test_a_model_too_big_to_see_comes_in_shrunk_and_the_output_says_how_to_undo_that(
        world, tmp_path, compiled):
    write_obj(tmp_path / "Tower.obj", [("Base", (0, 0, 0)), ("Top", (0, 500, 0))], size=500)
    assert world.addobject(str(tmp_path / "Tower.obj")) is None
    tower = world.scene.find("Tower")
    low, high = commands.extent(tower)
    assert max(h - l for l, h in zip(low, high)) == pytest.approx(4.0)
    [message] = outputs(world)
    assert "Tower is 1,000 meters across in its file" in message
    command = "Tower.Resize(InAllDirections, 250)"
    assert command in message
    assert world.ExecuteCode(command, "<Tool>", "exec") is None
    world.clock.advance(2.0)
    world.Loop()
    low, high = commands.extent(tower)
    assert max(h - l for l, h in zip(low, high)) == pytest.approx(1000.0)
    # Its part is back in its place: the middle of its triangle in the file.
    assert world.scene.find("Tower.Top").position == pytest.approx((-250, 750, 0))


def test_a_saved_world_keeps_what_its_models_name_and_tells_what_is_missing(
        world, tmp_path, compiled):
    # Two lamps from two folders name pictures of one name that differ.
    for folder, colour in (("red", b"red"), ("blue", b"blue")):
        lamp = tmp_path / folder / "Lamp.obj"
        write_obj(lamp, [("Shade", (0, 1, 0))],
                  "newmtl paint\nKd 1 1 1\nmap_Kd textures/shade.png\n")
        (lamp.parent / "textures").mkdir()
        (lamp.parent / "textures" / "shade.png").write_bytes(b"not really a " + colour + b" picture")
        assert world.addobject(str(lamp)) is None
    write_obj(tmp_path / "Bare.obj", [("Pole", (0, 0, 0))],
              "newmtl paint\nmap_Kd C:\\Pictures\\gone.png\n")
    assert world.addobject(str(tmp_path / "Bare.obj")) is None
    assert outputs(world) == ["Bare.obj uses C:\\Pictures\\gone.png, which is not in its "
                              "folder: Bare is shown without it.\n"]

    folder = tmp_path / "World"
    folder.mkdir()
    assert world.SaveScene(str(folder)) is None
    assert outputs(world) == ["Bare.obj uses C:\\Pictures\\gone.png, which is not in its "
                              "folder: the world was saved without it.\n"]
    kept = sorted(os.path.relpath(os.path.join(top, name), folder)
                  for top, _, files in os.walk(folder) for name in files)
    assert kept == ["Bare.mtl", "Bare.obj", "Lamp.mtl", "Lamp.obj", "Lamp/Lamp.mtl",
                    "Lamp/Lamp.obj", "Lamp/textures/shade.png", "World_Scene.py",
                    "textures/shade.png", "world_thumbnail.bmp"]
    assert (folder / "Lamp" / "textures" / "shade.png").read_bytes().endswith(b"blue picture")
    # (A file of one group is an object of one piece.)
    assert world.scene.find("Lamp2").model == str(folder / "Lamp" / "Lamp.obj") + "#0"
    assert world.SaveScene(str(folder)) is None       # again: the copies are there already
    assert len(list(folder.rglob("*.obj"))) == 3

    other = Interpreter()
    assert other.LoadWorld(str(folder)) is None
    assert sorted(t.name for t in other.scene.living()) == sorted(
        t.name for t in world.scene.living())
    assert other.scene.find("Lamp2").model == world.scene.find("Lamp2").model
    assert outputs(other) == []
    other.Close()
