"""A world's code runs under a policy unless the user trusts the world: what it
may not do is refused with its line and a reason, and nothing happens."""

import builtins
import importlib.util
import os
import shutil
import sys
import tempfile

import pytest

from conftest import misc, tagged
from vessa import Interpreter, policy

ONLY_TRUSTED = "Only a world you trust may do that."


@pytest.fixture
def folders(tmp_path, monkeypatch):
    """The world's folder, the program's temporary folder, and a folder
    elsewhere with a file the world must not touch."""
    found = {name: tmp_path / name for name in ("world", "temp", "outside")}
    for folder in found.values():
        folder.mkdir()
    (found["outside"] / "secret.txt").write_text("keep out")
    monkeypatch.setattr(tempfile, "tempdir", str(found["temp"]))
    return found


@pytest.fixture
def world(folders):
    engine = Interpreter()
    assert engine.SaveScene(str(folders["world"])) is None
    yield engine
    engine.Close()


def run(engine, code, **folders):
    """Runs the world's code; answers the popup of its failure, or None."""
    engine.scene.namespace["os_file"] = os.__file__
    engine.ExecuteCode(code.format(**{k: str(v) for k, v in folders.items()}),
                       "<Script Text>", "exec")
    popups = tagged(misc(engine), "popuperrordialog")
    return popups[0] if popups else None


def refused(engine, code, why, line, **folders):
    popup = run(engine, code, **folders)
    assert popup is not None, "not refused: " + code
    assert popup[1].startswith("This world's code may not ") and why in popup[1], popup
    assert popup[1].endswith(ONLY_TRUSTED)
    assert popup[2] == str(line)


REFUSED = {
    "os.system": ("import os\nos.system('touch {outside}/ran')", "start other programs", 2),
    "os.posix_spawn": ("import os\n"
                       "os.posix_spawn('/usr/bin/touch', ['touch', '{outside}/ran'], {{}})",
                       "start other programs", 2),
    "subprocess": ("import subprocess", "use subprocess: it starts other programs", 1),
    "socket": ("import socket", "use socket: it uses the network", 1),
    "__import__": ("net = __import__('socket')", "use socket", 1),
    "a loaded socket module": ("real = print.__self__\nreal.__import__('socket').socket()",
                               "use the network", 2),
    "ctypes": ("import ctypes", "use ctypes: it runs code outside Python", 1),
    "importlib": ("import importlib\nimportlib.import_module('ctypes')", "use importlib", 1),
    "gc": ("import gc", "use gc: it looks inside the running program", 1),
    "gc reached by digging": ("real = print.__self__\nreal.__import__('gc').get_objects()",
                              "look inside the running program", 2),
    "frames": ("import sys\nsys._getframe(0).f_back", "look inside the running program", 2),
    "the engine's package": ("import vessa.policy", "use vessa.policy", 1),
    "writing elsewhere": ("open('{outside}/new.txt', 'w')", "change ", 1),
    "climbing out with ..": ("open('{world}/../outside/new.txt', 'w')", "change ", 1),
    "reading elsewhere": ("print(open('{outside}/secret.txt').read())", "read ", 1),
    "os.remove": ("import os\nos.remove('{outside}/secret.txt')", "change ", 2),
    "shutil.rmtree": ("import shutil\nshutil.rmtree('{outside}')", "change ", 2),
    "moving a file out": ("open('{world}/mine.txt', 'w').close()\nimport os\n"
                          "os.rename('{world}/mine.txt', '{outside}/mine.txt')", "change ", 3),
    "a link out of the world": ("import os\nos.symlink('{outside}', '{world}/way_out')",
                                "change ", 2),
    "a link that climbs out": ("import os\nos.symlink('../outside', '{world}/way_out')",
                               "change ", 2),
    "os.chdir": ("import os\nos.chdir('{outside}')", "change the current folder", 2),
    "the environment": ("import os\nos.environ['PATH'] = '{outside}'", "change the environment", 2),
    "files by number": ("import os\nos.read(0, 10)\nopen(0)", "use files or folders by number", 3),
    "the engine storing for the world": ("Camera.store('{outside}/camera.mdl')", "change ", 1),
    "the engine reading for the world": ("Camera.model = '{outside}/secret.txt#0'", "read ", 1),
    "a path that is its own object": ("class Where:\n    def __fspath__(self):\n"
                                      "        return '{outside}/secret.txt'\n"
                                      "import os\nos.remove(Where())", "change ", 5),
    "frames from a refusal's traceback": ("try:\n    import socket\nexcept Exception as e:\n"
                                          "    import traceback\n"
                                          "    print(list(traceback.walk_tb(e.__traceback__)))",
                                          "look inside the running program", 5),
    "lifting the policy itself": ("Vessa._engine.SetWorldTrusted(1)", "change what it may do", 1),
    "passing for the front end": ("exec(compile('import socket', '<Tool>', 'exec'))",
                                  "pretend to be the program's own code", 1),
    "passing for Python's library": ("exec(compile('import socket', os_file, 'exec'))",
                                     "pretend to be the program's own code", 1),
}


@pytest.mark.parametrize("code, why, line", REFUSED.values(), ids=REFUSED.keys())
def test_what_the_world_may_not_do_is_refused_with_its_line(world, folders, code, why, line):
    cwd = os.getcwd()
    refused(world, code, why, line, **folders)
    assert sorted(os.listdir(folders["outside"])) == ["secret.txt"]
    assert (folders["outside"] / "secret.txt").read_text() == "keep out"
    assert set(os.listdir(folders["world"])) <= {"World_Scene.py", "world_thumbnail.bmp", "mine.txt"}
    assert os.getcwd() == cwd


def test_a_link_in_the_world_does_not_lead_out(world, folders):
    (folders["world"] / "link").symlink_to(folders["outside"])
    refused(world, "open('{world}/link/new.txt', 'w')", "change ", 1, **folders)
    refused(world, "open('{world}/link/secret.txt').read()", "read ", 1, **folders)
    assert sorted(os.listdir(folders["outside"])) == ["secret.txt"]


def test_an_extension_module_in_the_world_is_not_loaded(world, folders):
    origin = importlib.util.find_spec("xxlimited").origin
    shutil.copy(origin, folders["world"])
    refused(world, "import sys\nsys.path.insert(0, '{world}')\nimport xxlimited",
            "it runs code outside Python", 3, **folders)
    assert "xxlimited" not in sys.modules


def test_the_policy_runs_no_method_of_the_world_s_own(world, folders):
    # A path whose methods would say it lies in the world's folder.
    code = ("class Sly(str):\n"
            "    def startswith(self, *args):\n"
            "        asked.append(args)\n"
            "        return True\n"
            "    __contains__ = __add__ = __radd__ = startswith\n"
            "asked = []\n"
            "open(Sly('{outside}/new.txt'), 'w')")
    refused(world, code, "change ", 7, **folders)
    assert world.scene.namespace["asked"] == []
    assert sorted(os.listdir(folders["outside"])) == ["secret.txt"]


def test_the_policy_makes_its_refusals_without_the_world_s_help(world, monkeypatch):
    monkeypatch.setattr(policy.NotAllowed, "__init__", policy.NotAllowed.__init__)
    code = ("asked = []\n"
            "try:\n"
            "    import socket\n"
            "except Exception as refusal:\n"
            "    type(refusal).__init__ = lambda self, *args: asked.append(args)\n"
            "import gc")
    refused(world, code, "use gc", 6)
    assert world.scene.namespace["asked"] == []


def test_what_the_world_changes_in_the_real_builtins_is_put_back(world):
    assert run(world, "import builtins\nbuiltins.len = None\nprint(len('abc'))") is None
    assert run(world, "print.__self__.len = None\ndel print.__self__.abs") is None
    assert builtins.len("abc") == 3 and builtins.abs(-1) == 1
    assert run(world, "print(len('abc'))") is None


ALLOWED = {
    "everyday modules": "import math, random, time, json, re, collections, itertools, datetime\n"
                        "print(round(math.pi, 2), random.random() < 1, time.time() > 0)",
    "writing and reading in the world": ("with open('{world}/notes.txt', 'w') as f:\n"
                                         "    f.write('hello')\n"
                                         "print(open('{world}/notes.txt').read())"),
    "the temporary folder": "import os\nopen('{temp}/scratch.txt', 'w').close()\n"
                            "os.remove('{temp}/scratch.txt')",
    "the program's home": "import os\nprint(len(os.listdir(os.environ['VESSA47_HOME'])) > 0)",
    "the world's folder listed": "import os\nprint('World_Scene.py' in os.listdir('{world}'))",
    "a link within the world": "import os\nos.symlink('World_Scene.py', '{world}/alias')",
    "paths as pathlib's": "import pathlib\n(pathlib.Path('{world}') / 'p.txt').write_text('x')",
}


@pytest.mark.parametrize("code", ALLOWED.values(), ids=ALLOWED.keys())
def test_what_the_world_may_do_works(world, folders, code):
    assert run(world, code, **folders) is None


def test_the_front_end_s_own_work_is_not_held_by_the_world_s_policy(world, folders, backend_kind):
    elsewhere = folders["outside"] / "saved_as"
    elsewhere.mkdir()
    assert world.SaveScene(str(elsewhere)) is None
    assert world.LoadWorld(str(elsewhere)) is None
    if backend_kind == "compiled":
        gallery = os.path.join(os.environ["VESSA47_HOME"], "Objects", "Animals", "Bunny.mdl")
        assert world.addobject(gallery) is None
        assert run(world, "print(Bunny.GetName())") is None


def test_the_front_end_s_own_statements_are_not_the_world_s_code(world, folders):
    assert world.ExecuteCode("open(%r).read()" % str(folders["outside"] / "secret.txt"),
                             "<Tool>", "exec") is None
    assert misc(world) == []


def test_what_the_engine_does_for_the_world_within_its_folders_works(world, folders,
                                                                       backend_kind):
    home = os.environ["VESSA47_HOME"]
    code = ("Camera.model = %r\nPlaySound(%r)\n"
            % (os.path.join(home, "Objects", "Animals", "Bunny.mdl#0"),
               os.path.join(home, "Sounds", "Boing.wav")))
    if backend_kind == "compiled":     # the pure-Python backend writes no object files
        code += "Camera.store('{world}/camera.mdl')\n"
    assert run(world, code, **folders) is None
    assert backend_kind == "python" or (folders["world"] / "camera.mdl").exists()


def test_a_trusted_world_may_do_anything_until_another_world_is_loaded(world, folders):
    assert world.SetWorldTrusted(1) is None
    assert run(world, "import socket\nopen('{outside}/new.txt', 'w').close()", **folders) is None
    assert (folders["outside"] / "new.txt").exists()
    assert world.LoadWorld(str(folders["world"])) is None
    refused(world, "import socket", "use socket", 1)
    world.SetWorldTrusted(1)
    world.SetWorldTrusted(0)
    refused(world, "import socket", "use socket", 1)
