"""Where no thread can be started (a browser's Python), the user's own lines
read the clock: runaway code is stopped as it is with the watchdog's thread,
told in the same words, and the engine goes on."""

import sys
import threading

import pytest

from conftest import misc, tagged
from test_watchdog import (COUNTING, GATEWAYS, LIMIT, RUNAWAYS, TICK, no_hang,  # noqa: F401
                           stopped_report, still_working)
from vessa import Interpreter, lineclock
from vessa.clock import ManualClock


@pytest.fixture
def no_threads(monkeypatch):
    """Python as a browser has it: starting a thread fails."""
    refused = []

    def refuse(thread):
        refused.append(thread)
        raise RuntimeError("can't start new thread")
    monkeypatch.setattr(threading.Thread, "start", refuse)
    return refused


@pytest.fixture
def interp(no_threads):
    engine = Interpreter()
    assert no_threads, "the watchdog did not ask for a thread"
    engine.SetWatchdogSeconds(LIMIT)
    yield engine
    engine.Close()


# A recursion that calls itself again in its own handler grows its stack of
# errors on the recursion limit, where the clock's reader is lost; it is put
# back only by chance of where the collector runs: not yet stopped for sure.
TIMED_BY_LINES = {name: source for name, source in RUNAWAYS.items()
                  if name != "recursion inside its own handler"}


@pytest.mark.parametrize("gateway", GATEWAYS.values(), ids=GATEWAYS.keys())
@pytest.mark.parametrize("source", TIMED_BY_LINES.values(), ids=TIMED_BY_LINES.keys())
def test_runaway_code_is_stopped_without_a_thread(interp, source, gateway):
    offset = gateway(interp, source)
    line = int(stopped_report(interp)[2])
    assert offset < line <= offset + len(source.splitlines())
    still_working(interp)


def test_the_trace_is_on_only_while_the_user_s_code_runs(interp):
    before = sys.gettrace()
    interp.ExecuteCode("import sys\nseen = sys.gettrace() is not None\n", "<Script Text>", "exec")
    assert interp.scene.namespace["seen"] is True
    assert sys.gettrace() is before
    interp.ExecuteCode("while True: pass\n", "<Script Text>", "exec")
    stopped_report(interp)
    assert sys.gettrace() is before


# A loop that moves a manual clock on without telling anyone: only the
# user's lines reading the clock can find that the limit has passed.
QUIET_TICKS = ("ticks = 0\nwhile ticks < {stop}:\n    ticks += 1\n    tick()\nprint('done')\n")


def quietly_counted_run(limit, stop_after_ticks):
    clock = ManualClock()
    engine = Interpreter(clock=clock)
    engine.SetWatchdogSeconds(limit)

    def tick():
        clock._now += TICK
    engine.scene.namespace["tick"] = tick
    engine.ExecuteCode(QUIET_TICKS.format(stop=stop_after_ticks), "<Script Text>", "exec")
    records, ticks = misc(engine), engine.scene.namespace["ticks"]
    engine.Close()
    return records, ticks


@pytest.mark.usefixtures("no_threads")
@pytest.mark.parametrize("limit", [0.5, 2.0])
def test_the_clock_is_read_every_so_many_lines(limit):
    records, ticks = quietly_counted_run(limit, stop_after_ticks=10 ** 9)
    assert tagged(records, "popuperrordialog")[0][1].startswith("Your code took too long")
    # Three lines a time round (the tick's own frame is not the user's).
    late = lineclock.LINES_BETWEEN_LOOKS / 3 * TICK
    assert limit <= ticks * TICK <= limit + late + TICK


@pytest.mark.usefixtures("no_threads")
def test_code_that_ends_before_the_limit_is_left_alone():
    records, _ = quietly_counted_run(1.0, stop_after_ticks=90)
    assert records == [["output", "done\n"]]
