"""Simulated time: a caller moves the engine's clock itself and runs a world's
seconds as fast as it can, while runaway user code is still stopped in real time."""

import time

import pytest

from conftest import misc, tagged
from vessa import Interpreter


@pytest.fixture
def interp():
    engine = Interpreter()
    yield engine
    engine.Close()


def camera_z(engine):
    return engine.scene.find("Camera").GetPosition()[2]


def test_a_world_moves_by_the_seconds_advanced_not_by_the_wall_clock(interp):
    assert interp.AdvanceClock(1) is not None       # refused on the wall clock
    assert interp.UseManualClock() is None
    assert interp.ExecuteCode("Camera.Move(Forward, 4, Duration=4)", "<Script Text>", "exec") is None
    interp.Loop()
    time.sleep(0.05)
    interp.Loop()
    assert camera_z(interp) == pytest.approx(0)     # real time passing moves nothing
    assert interp.AdvanceClock(1) is None
    interp.Loop()
    assert 0.5 < camera_z(interp) < 1.5
    for _ in range(3):
        interp.AdvanceClock(1)
        interp.Loop()
    assert camera_z(interp) == pytest.approx(4)
    assert interp.GetLoopWait() == -1


@pytest.mark.parametrize("seconds", [-1, float("nan"), float("inf"), "soon"])
def test_the_clock_only_goes_forward_by_a_number(interp, seconds):
    interp.UseManualClock()
    assert "AdvanceClock" in interp.AdvanceClock(seconds)


def test_runaway_code_is_stopped_in_real_time_while_the_clock_stands(interp):
    interp.UseManualClock()
    interp.SetWatchdogSeconds(0.3)
    started = time.monotonic()
    assert interp.ExecuteLines("x = 1\nwhile True: pass\n", 0, 1, "<Script Text>", "exec") is None
    assert time.monotonic() - started < 3
    popups = tagged(misc(interp), "popuperrordialog")
    assert popups == [["popuperrordialog",
                       "Your code took too long (more than 0.3 seconds) and was stopped", "2"]]
    # and the world goes on afterwards, on its own clock
    interp.ExecuteCode("Camera.Move(Up, 1)", "<Script Text>", "exec")
    interp.Loop()
    interp.AdvanceClock(2)
    interp.Loop()
    assert interp.scene.find("Camera").GetPosition()[1] == pytest.approx(1)
