"""World_Scene.py: saved worlds load back equal; strangers' files run nothing."""

import os
import struct

import pytest

from conftest import describe, misc, tagged
from fronttrees import FrontTrees
from vessa import Interpreter

DEFAULT_WORLD = os.path.join(os.path.dirname(__file__), "..", "..", "home", "Worlds", "Default")


@pytest.fixture
def interp():
    engine = Interpreter()
    yield engine
    engine.Close()


def test_the_default_world_loads_with_scene_camera_light_and_ground(interp):
    trees = FrontTrees()
    trees.take(interp.PollForTreeDifferences())
    interp.ExecuteCode("Camera.Copy()", "<Tool>", "exec")
    trees.take(interp.PollForTreeDifferences())
    trees.forget_world()        # as the front end does before a load
    assert interp.LoadWorld(DEFAULT_WORLD) is None
    assert sorted(describe(interp)) == ["Camera", "Ground", "Light", "Scene"]
    assert interp.IsThereADefaultCamera() and not interp.getisdirty()
    records = interp.PollForTreeDifferences()
    kinds = [r[2] for r in records if r[0] == "objectconstruct"]
    assert kinds == ["none", "junkyard", "scene", "camera", "light", "model"]
    trees.take(records)
    assert trees.names() == ["Camera", "Ground", "Light", "Scene"]
    assert interp.ExecuteCode("Ground.SetColor(Red)\nLight.Move(Up, 1)", "<Tool>", "exec") is None
    # The objects of the world before are gone for good, not only out of sight.
    assert interp.ExecuteCode("names = [o.GetName() for o in Vessa.GetDefaultScene().GetChildren(All)]\n"
                              "assert sorted(names) == ['Camera', 'Ground', 'Light'], names\n"
                              "for o in Vessa.GetDefaultScene().GetChildren(All): o.Move(Up, 1)",
                              "<Tool>", "exec") is None
    interp.Loop()


def test_a_saved_world_loads_back_equal(interp, tmp_path):
    interp.LoadWorld(DEFAULT_WORLD)
    scene = interp.scene
    bunny = scene.create("model", "Bunny", scene.find("Ground"), values={"color": (0.1, 0.2, 0.3)})
    scene.create("model", "Head", bunny, first_class=False, values={"position": (0.0, 1.0, 0.5)})
    interp.ExecuteCode("Bunny.Turn(Left, 1/8, Duration=0)\nBunny.SetFillingStyle(Points)\n"
                       "Bunny.StopCastingShadow()\n"
                       "Bunny.Head.Resize(TopToBottom, 2, Duration=0)", "<Tool>", "exec")
    interp.Loop()
    before = describe(interp)
    assert interp.SaveScene(str(tmp_path)) is None
    other = Interpreter()
    assert other.LoadWorld(str(tmp_path)) is None
    assert describe(other) == before
    assert other.ExecuteCode("Bunny.Head.GetName()", "<Tool>", "exec") is None
    other.Close()


def test_a_world_loaded_at_start_up_is_told_once(interp):
    """Before the front end's first poll, the world it never saw is dropped."""
    interp.ExecuteCode("Camera.Copy()", "<Tool>", "exec")
    interp.LoadWorld(DEFAULT_WORLD)
    trees = FrontTrees()
    trees.take(interp.PollForTreeDifferences())
    assert trees.names() == ["Camera", "Ground", "Light", "Scene"]


def test_loading_replaces_the_old_world_and_its_names(interp, tmp_path):
    interp.ExecuteCode("Old = 1\nCamera.rename('Eye')", "<Tool>", "exec")
    interp.LoadWorld(DEFAULT_WORLD)
    assert "NameError" in interp.ExecuteCode("Old", "<Tool>", "exec")
    assert interp.ExecuteCode("Camera", "<Tool>", "exec") is None


def bmp_pixel(path, x, y):
    """(red, green, blue) at x, y from the top left of a 24- or 32-bit BMP file."""
    data = path.read_bytes()
    start, width, height, bits = (struct.unpack_from("<I", data, 10)[0],
                                  *struct.unpack_from("<iixxH", data, 18))
    stride = (width * bits // 8 + 3) & ~3
    row = height - 1 - y if height > 0 else y       # rows are kept bottom up
    blue, green, red = data[start + row * stride + x * bits // 8:][:3]
    return red, green, blue


def test_a_world_saved_without_a_view_gets_its_picture(interp, tmp_path, backend_kind):
    interp.LoadWorld(DEFAULT_WORLD)
    assert interp.SaveScene(str(tmp_path)) is None
    picture = tmp_path / "world_thumbnail.bmp"
    if backend_kind == "python":
        assert not picture.exists()     # nothing is drawn there: the world is saved all the same
        return
    assert struct.unpack_from("<ii", picture.read_bytes(), 18) == (320, 240)
    red, green, blue = bmp_pixel(picture, 160, 2)
    assert blue > red + 40                                  # sky above
    red, green, blue = bmp_pixel(picture, 160, 236)
    assert green > red + 30 and green > blue + 30           # the ground below


def test_a_picture_of_a_given_size_is_drawn_without_a_view(interp, tmp_path, backend_kind):
    interp.LoadWorld(DEFAULT_WORLD)
    result = interp.SaveThumbnail(str(tmp_path), 64, 48)
    picture = tmp_path / "world_thumbnail.bmp"
    if backend_kind == "python":
        assert "not written" in result and not picture.exists()
        return
    assert result is None
    assert struct.unpack_from("<ii", picture.read_bytes(), 18) == (64, 48)
    red, green, blue = bmp_pixel(picture, 32, 46)
    assert green > red + 30 and green > blue + 30           # the ground below
    for width, height in ((0, 48), (64, 5000)):
        assert "4096" in interp.SaveThumbnail(str(tmp_path), width, height)


SCENE = "Object(kind='scene', name='Scene', parent=None)\n"
HOSTILE = {
    "import": "import os\nObject(kind='scene', name='Scene', parent=None)\n",
    "call in a value": "Object(kind='scene', name=__import__('os').system('touch {marker}'))\n",
    "attribute trick": "Object(kind='scene', name='Scene').__class__.__init__\n",
    "other call": "open('{marker}', 'w')\n",
    "lambda": "Object(kind='scene', name=(lambda: open('{marker}', 'w'))())\n",
    "assignment": "x = Object(kind='scene', name='Scene', parent=None)\n",
    "comprehension value": "Object(kind='scene', name='Scene', size=[open('{marker}','w') for i in 'a'])\n",
    "unknown field": "Object(kind='scene', name='Scene', parent=None, code='x')\n",
    "orphan": ("Object(kind='scene', name='Scene', parent=None)\n"
               "Object(kind='model', name='Bunny', parent='Nowhere')\n"),
    "model outside the folder": (SCENE + "Object(kind='model', name='Bunny', parent='Scene', "
                                 "model='/home/someone/.ssh/id_rsa#0')\n"),
    "model leading out of the folder": (SCENE + "Object(kind='model', name='Bunny', "
                                        "parent='Scene', model='Bunny/../../secret.obj#0')\n"),
    "sound with a call": SCENE + "Sound(name='Pop', file=open('{marker}', 'w'))\n",
    "sound with code": SCENE + "Sound(name='Pop', file='Pop.wav', code='x')\n",
    "sound without a file": SCENE + "Sound(name='Pop')\n",
    "sound by position": SCENE + "Sound('Pop', 'Pop.wav')\n",
    "sound outside the folder": SCENE + "Sound(name='Pop', file='../../secret.wav')\n",
    "sound by a path": SCENE + "Sound(name='Pop', file='/etc/passwd')\n",
    "sound named like an object": SCENE + "Sound(name='scene', file='Pop.wav')\n",
    "sound named twice": SCENE + "Sound(name='Pop', file='a.wav')\nSound(name='Pop', file='b.wav')\n",
    "sound with a keyword name": SCENE + "Sound(name='class', file='Pop.wav')\n",
}


@pytest.mark.parametrize("text", HOSTILE.values(), ids=HOSTILE.keys())
def test_a_hostile_scene_file_is_refused_without_running_anything(interp, tmp_path, text):
    marker = tmp_path / "ran"
    (tmp_path / "World_Scene.py").write_text(text.format(marker=marker))
    before = describe(interp)
    result = interp.LoadWorld(str(tmp_path))
    assert result and "World_Scene.py" in result
    assert not marker.exists()
    assert describe(interp) == before
    assert tagged(misc(interp), "error")


@pytest.mark.parametrize("statement", [
    "Object(kind='model', name='Forward', parent='Scene')",
    "Object(kind='model', name='preservehandbasket', parent='Scene', firstclass=True)",
    "Sound(name='Wait', file='Pop.wav')",
])
def test_a_scene_file_naming_a_thing_as_the_worlds_code_names_another_is_refused_with_its_line(
        interp, tmp_path, statement):
    (tmp_path / "World_Scene.py").write_text(SCENE + "Object(kind='camera', name='Camera', "
                                             "parent='Scene')\n" + statement + "\n")
    before = describe(interp)
    result = interp.LoadWorld(str(tmp_path))
    assert result.startswith("World_Scene.py line 3: ") and "can't be the name" in result
    assert describe(interp) == before


def test_a_part_may_have_a_name_that_only_first_class_objects_may_not(interp, tmp_path):
    (tmp_path / "World_Scene.py").write_text(SCENE + "Object(kind='model', name='Chair', "
                                             "parent='Scene')\nObject(kind='model', name='Back', "
                                             "parent='Chair', firstclass=False)\n")
    assert interp.LoadWorld(str(tmp_path)) is None
    assert interp.scene.find("Chair.Back") is not None


def test_a_missing_scene_file_is_reported(interp, tmp_path):
    assert "can't be read" in interp.LoadWorld(str(tmp_path / "nowhere"))


def test_the_file_name_is_found_whatever_its_case(interp, tmp_path):
    interp.SaveScene(str(tmp_path))
    os.rename(tmp_path / "World_Scene.py", tmp_path / "world_scene.py")
    assert interp.LoadWorld(str(tmp_path)) is None


GOOD = SCENE + "Object(kind='model', name='Bunny', parent='Scene')\n"
NUMBER = GOOD + "Object(kind='model', name='Hat', parent='Bunny', position=(%s, 0, 0))\n"
NESTED = "values may not be nested, nor have more than one sign"
STATEMENT = "each line must be Object(name=value, ...) or Sound(name=..., file=...)"
PLACE = "position must be 3 numbers"
# what line 3 holds, and what the refusal says of it
REFUSED_AT_LINE_3 = {
    "5,000 signs": (NUMBER % ("-" * 5000 + "1"), NESTED),
    "200,000 signs": (NUMBER % ("-" * 200000 + "1"), NESTED),
    "two signs": (NUMBER % "--1", "only plain values may stand here"),
    "deep parentheses": (NUMBER % ("(" * 5000 + "1" + ")" * 5000), NESTED),
    "deep lists": (GOOD + "Object(kind='model', name='Hat', size=" + "[" * 300 + "]" * 300 + ")\n",
                   NESTED),
    "infinity": (NUMBER % "1e999", PLACE),
    "a number too big for a float": (NUMBER % ("9" * 4000), PLACE),
    "a place out of the world": (NUMBER % "-2e6", PLACE),
    "a colour beyond white": (GOOD + "Object(kind='model', name='Hat', color=(2, 0, 0))\n",
                              "color must be 3 numbers from 0 to 1"),
    "no turn at all": (GOOD + "Object(kind='model', name='Hat', orientation=(0, 0, 0, 0))\n",
                       "orientation must be a turn"),
    "an object by another name": (GOOD + "Objekt(kind='model', name='Hat', parent='Bunny')\n",
                                  STATEMENT),
    "a sound by another name": (GOOD + "Play(name='Pop', file='Pop.wav')\n", STATEMENT),
    "two statements": (GOOD + "Object(kind='model', name='Hat', parent='Bunny'); "
                              "Sound(name='Pop', file='Pop.wav')\n", STATEMENT),
    "a NUL": (GOOD + "Object(kind='model', name='Hat', parent='Bunny')\0\n", STATEMENT),
    "not text": (GOOD.encode() + b"Object(kind='model', name='Hat\xff')\n", "this is not text"),
    "a parent below": (GOOD + "Object(kind='model', name='Hat', parent='Nowhere')\n",
                       "Hat comes before its parent Nowhere"),
    "a name twice": (GOOD + "Sound(name='bunny', file='Pop.wav')\n", "two things are called bunny"),
}


@pytest.mark.parametrize("text, says", REFUSED_AT_LINE_3.values(), ids=REFUSED_AT_LINE_3.keys())
def test_a_broken_line_is_refused_with_its_number_and_the_scene_stays(interp, tmp_path, text, says):
    (tmp_path / "World_Scene.py").write_bytes(text if isinstance(text, bytes) else text.encode())
    before = describe(interp)
    result = interp.LoadWorld(str(tmp_path))
    assert result.startswith("World_Scene.py line 3: " + says)
    assert describe(interp) == before


def test_too_many_objects_or_too_big_a_file_is_refused(interp, tmp_path):
    many = SCENE + "".join("Object(kind='model', name='B%d', parent='Scene')\n" % n
                           for n in range(20001))
    (tmp_path / "World_Scene.py").write_text(many)
    assert interp.LoadWorld(str(tmp_path)).startswith("World_Scene.py line 20001: ")
    with open(tmp_path / "World_Scene.py", "r+b") as big:
        big.truncate(33 * 1024 * 1024)      # zeros, without writing them to the disk
    assert "larger than 32 MB" in interp.LoadWorld(str(tmp_path))
    assert sorted(describe(interp)) == ["Camera", "Scene"]


def test_texts_may_hold_brackets_and_signs_and_a_turn_is_made_whole(interp, tmp_path):
    words = "((--[{~+" * 10
    (tmp_path / "World_Scene.py").write_text(
        GOOD + "Object(kind='model', name='Sign', parent='Scene', model=%r, "
               "orientation=(1, 0, 1, 0))\n" % ("text:" + words))
    assert interp.LoadWorld(str(tmp_path)) is None
    sign = interp.scene.find("Sign")
    assert sign.model == "text:" + words
    assert sign.orientation == pytest.approx((0.5 ** 0.5, 0, 0.5 ** 0.5, 0))


def test_a_line_written_by_hand_reads_as_the_engine_writes_it(interp, tmp_path):
    interp.LoadWorld(DEFAULT_WORLD)
    words = "text:it's a \\ \"sign\"\té, (-1, 2)"
    interp.scene.create("model", "Sign", interp.scene.root,
                        values={"position": (1.5, -2.0, 1e-05), "color": (0.0, 0.5, 1.0)},
                        styles={"model": words, "shadow": False, "face_count": 12})
    assert interp.SaveScene(str(tmp_path)) is None
    saved = describe(interp)
    scene_file = tmp_path / "World_Scene.py"
    written = scene_file.read_text()
    assert interp.LoadWorld(str(tmp_path)) is None and describe(interp) == saved
    assert interp.scene.find("Sign").model == words
    scene_file.write_text(written.replace("parent='Scene'", 'parent = "Scene" ')
                          .replace("-2.0", "-2.00").replace("1e-05", "0.00001"))
    assert interp.LoadWorld(str(tmp_path)) is None and describe(interp) == saved
