import glob
import os
import struct
import wave

import pytest

import vessa
from vessa import Interpreter, native
from vessa import backend as backends
from vessa.clock import ManualClock


def _compiled_backend():
    """The compiled backend; a build that has it must be able to import it."""
    folder = os.path.dirname(vessa.__file__)
    if not glob.glob(os.path.join(folder, "_backend*.so")):
        pytest.skip("the compiled backend is not built")
    from vessa import _backend
    return _backend.Backend


@pytest.fixture(autouse=True, params=["python", "compiled"])
def backend_kind(request, monkeypatch):
    """Every engine test runs against both backends: the pure-Python engine
    (no compiled code at all, so no compiled guard either) and the compiled one."""
    if request.param == "python":
        monkeypatch.setattr(backends, "create", backends.PythonBackend)
        monkeypatch.setattr(native, "guard", None)
    else:
        monkeypatch.setattr(backends, "create", _compiled_backend())
        assert native.guard is not None, "the compiled guard is not built"
    return request.param


@pytest.fixture
def interp():
    engine = Interpreter()
    yield engine
    engine.Close()


@pytest.fixture
def clocked():
    """An engine whose time moves only when a test says so (see at())."""
    clock = ManualClock()
    engine = Interpreter(clock=clock)
    engine.clock = clock
    yield engine
    engine.Close()


def at(engine, seconds):
    """Sets the engine's manual clock to seconds and runs one Loop()."""
    engine.clock._now = seconds
    engine.Loop()


def misc(engine):
    """What the front end's main loop sees: flush, then the misc poll."""
    engine.flushout()
    return engine.PollForMiscDifferences()


def tagged(records, tag):
    return [r for r in records if r[0] == tag]


def write_tone(path, frames=2205, step=400):
    with wave.open(str(path), "wb") as sound:
        sound.setnchannels(1)
        sound.setsampwidth(2)
        sound.setframerate(22050)
        sound.writeframes(b"".join(struct.pack("<h", (i % 50) * step) for i in range(frames)))


def describe(engine):
    """Everything a saved scene should keep, by full name."""
    scene = engine.scene
    return {t.name: (t.kind, t.parent.name if t.parent else None, t.first_class,
                     [round(x, 6) for c in ("position", "orientation", "size", "color")
                      for x in scene.backend.get(t.id, c)],
                     t.visible, t.filling, t.lighting, t.texture, t.shadow)
            for t in scene.living()}
