"""Runaway user code is stopped however it catches the stop, told like any error
in the user's code, and the engine goes on. The same for memory."""

import faulthandler
import os
import traceback

import pytest

from conftest import misc, tagged
from vessa import Interpreter, reports
from vessa.clock import ManualClock

LIMIT = 0.1
TOOK_TOO_LONG = "Your code took too long (more than 0.1 seconds) and was stopped"
TOO_MUCH_MEMORY = "your code asked for too much memory"


@pytest.fixture(autouse=True)
def no_hang():
    """A watchdog that fails to stop runaway code would hang the suite: end it
    with everyone's traceback instead."""
    faulthandler.dump_traceback_later(120, exit=True)
    yield
    faulthandler.cancel_dump_traceback_later()


@pytest.fixture
def interp():
    engine = Interpreter()
    engine.SetWatchdogSeconds(LIMIT)
    yield engine
    engine.Close()


def stopped_report(engine, message=TOOK_TOO_LONG):
    """The one popup of a stopped run, after its traceback."""
    records = misc(engine)
    popups = tagged(records, "popuperrordialog")
    assert len(popups) == 1, records
    assert popups[0][1] == message
    assert tagged(records, "error")
    return popups[0]


def still_working(engine):
    assert engine.GetLoopWait() == -1
    limit = engine._watchdog.seconds
    engine.SetWatchdogSeconds(60)   # the check must not depend on the machine's speed
    assert engine.ExecuteCode("print('still here')", "<Command Line>", "single") is None
    engine.SetWatchdogSeconds(limit)
    assert misc(engine) == [["output", "still here\n"]]


# Every way user code might catch the stop, and go on.
RUNAWAYS = {
    "tight loop": "while True: pass\n",
    "recursion under except Exception": (
        "def f(): f()\n"
        "while True:\n"
        "    try:\n"
        "        f()\n"
        "    except Exception:\n"
        "        pass\n"),
    "recursion under except RecursionError": (
        "def f(): f()\n"
        "while True:\n"
        "    try:\n"
        "        f()\n"
        "    except RecursionError:\n"
        "        pass\n"),
    "recursion inside its own handler": (
        "def f():\n"
        "    try:\n"
        "        f()\n"
        "    except BaseException:\n"
        "        f()\n"
        "f()\n"),
    "bare except in a loop": (
        "while True:\n"
        "    try:\n"
        "        while True: pass\n"
        "    except:\n"
        "        pass\n"),
    "finally that loops": (
        "while True:\n"
        "    try:\n"
        "        while True: pass\n"
        "    finally:\n"
        "        while True: pass\n"),
    "the stop kept alive in a list": (
        "kept = []\n"
        "while True:\n"
        "    try:\n"
        "        while True: pass\n"
        "    except BaseException as e:\n"
        "        kept.append(e)\n"),
    "a generator that swallows": (
        "def swallow():\n"
        "    while True:\n"
        "        try:\n"
        "            yield\n"
        "        except BaseException:\n"
        "            pass\n"
        "while True:\n"
        "    try:\n"
        "        for _ in swallow(): pass\n"
        "    except BaseException:\n"
        "        pass\n"),
    "a with block whose __exit__ swallows": (
        "class Swallow:\n"
        "    def __enter__(self): return self\n"
        "    def __exit__(self, *exc): return True\n"
        "while True:\n"
        "    with Swallow():\n"
        "        while True: pass\n"),
    "the library's suppress": (
        "import contextlib\n"
        "while True:\n"
        "    with contextlib.suppress(BaseException):\n"
        "        while True: pass\n"),
    "code given to exec": "exec('while True:\\n    try: pass\\n    except: pass\\n')\n",
    "a __del__ that swallows": (
        "class Stubborn:\n"
        "    def __del__(self):\n"
        "        try:\n"
        "            while True: pass\n"
        "        except BaseException:\n"
        "            pass\n"
        "while True:\n"
        "    try:\n"
        "        Stubborn()\n"
        "    except BaseException:\n"
        "        pass\n"),
}


def run_as_script(engine, source):
    engine.ExecuteCode(source, "<Script Text>", "exec")
    return 0


def run_as_lines(engine, source):
    """Lines of a longer text, as the animation tree's are run; lines count from the first."""
    text = "print('before')\nprint('also before')\n" + source + "print('after')\n"
    last = len(source.splitlines()) + 1
    engine.ExecuteLines(text, 2, last, "<treeview>", "exec")
    return 0


def run_as_response(engine, source):
    """The body of a function that responds to a key."""
    body = "".join("    " + line + "\n" for line in source.splitlines())
    engine.ExecuteCode("def respond(ev):\n" + body
                       + "Camera._Window.addresponse(KeyDown, respond)\n", "<Script Text>", "exec")
    assert misc(engine) == []
    engine.KeyEvent("KeyDown", "A", 65)
    return 1    # the body starts on the second line


GATEWAYS = {"ExecuteCode": run_as_script, "ExecuteLines": run_as_lines,
            "a response to a key": run_as_response}


@pytest.mark.parametrize("gateway", GATEWAYS.values(), ids=GATEWAYS.keys())
@pytest.mark.parametrize("source", RUNAWAYS.values(), ids=RUNAWAYS.keys())
def test_runaway_code_is_stopped_however_it_catches_the_stop(interp, source, gateway):
    offset = gateway(interp, source)
    line = int(stopped_report(interp)[2])
    assert offset < line <= offset + len(source.splitlines())
    still_working(interp)


def test_the_stop_tells_the_line_that_was_running(interp):
    interp.ExecuteCode("x = 1\n\nwhile True: pass\n", "<Script Text>", "exec")
    assert stopped_report(interp)[2] == "3"


def test_the_stop_comes_in_the_user_s_line_never_inside_the_engine(interp, monkeypatch):
    told = []
    real = reports.user_traceback
    monkeypatch.setattr(reports, "user_traceback",
                        lambda exc, tags: told.append(exc) or real(exc, tags))
    # The loop spends most of its time in the engine's command.
    interp.ExecuteCode("while True:\n    Camera.Move(Forward, 1, Duration=0)\n",
                       "<Script Text>", "exec")
    assert stopped_report(interp)[2] == "2"
    frames = [frame.filename for frame in traceback.extract_tb(told[0].__traceback__)]
    past_the_line = frames[frames.index("<Script Text>") + 1:]
    # Only the pure-Python stop's own tracer may stand below the user's line.
    assert all(name.endswith("stopper.py") for name in past_the_line), frames
    interp.Loop()
    assert tagged(misc(interp), "popuperrordialog") == []
    still_working(interp)


def test_a_front_end_statement_calling_runaway_code_gets_the_failure_text(interp):
    interp.ExecuteCode("def spin():\n    while True: pass\n", "<Script Text>", "exec")
    result = interp.ExecuteCode("spin()", "<Tool>", "exec")
    assert "took too long" in result
    still_working(interp)


def test_objects_whose___del___runs_away_are_stopped_when_the_world_goes(interp):
    interp.ExecuteCode("class Stuck:\n    def __del__(self):\n        while True: pass\n"
                       "stuck = Stuck()\n", "<Script Text>", "exec")
    assert interp.LoadWorld(os.path.join(os.environ["VESSA47_HOME"], "Worlds", "Default")) is None
    assert stopped_report(interp)[1] == TOOK_TOO_LONG
    still_working(interp)
    interp.ExecuteCode("class Stuck:\n    def __del__(self):\n        while True: pass\n"
                       "stuck = Stuck()\n", "<Script Text>", "exec")
    assert interp.Close() is None


def test_many_stopped_runs_in_a_row_leave_the_engine_working(interp):
    for n in range(10):
        interp.ExecuteCode("total = %d\nwhile True:\n    try: pass\n    except: pass\n" % n,
                           "<Command Line>", "exec")
    assert len(tagged(misc(interp), "popuperrordialog")) == 10
    assert interp.ExecuteCode("print(sum(range(total + 1)))", "<Command Line>", "single") is None
    assert misc(interp) == [["output", "45\n"]]


# -- the limit, measured on the engine's clock --------------------------------

COUNTING = "ticks = 0\nwhile ticks < {stop}:\n    ticks += 1\n    tick()\nprint('done')\n"
TICK = 0.01


def counted_run(limit, stop_after_ticks):
    """Runs a loop that moves a manual clock on by TICK each time round."""
    clock = ManualClock()
    engine = Interpreter(clock=clock)
    engine.SetWatchdogSeconds(limit)
    engine.scene.namespace["tick"] = lambda: clock.advance(TICK)
    engine.ExecuteCode(COUNTING.format(stop=stop_after_ticks), "<Script Text>", "exec")
    records, ticks = misc(engine), engine.scene.namespace["ticks"]
    engine.Close()
    return records, ticks


@pytest.mark.parametrize("limit", [0.5, 2.0])
def test_the_limit_stops_code_neither_before_nor_well_after_it(limit):
    records, ticks = counted_run(limit, stop_after_ticks=10 ** 9)
    assert tagged(records, "popuperrordialog")[0][1].startswith("Your code took too long")
    assert limit - TICK / 2 <= ticks * TICK <= limit + 3 * TICK


@pytest.mark.parametrize("limit", [0.5, 2.0])
def test_code_that_ends_just_before_the_limit_is_left_alone(limit):
    records, ticks = counted_run(limit, stop_after_ticks=round(limit / TICK) - 2)
    assert records == [["output", "done\n"]]


def test_each_call_has_the_whole_limit():
    clock = ManualClock()
    engine = Interpreter(clock=clock)
    engine.SetWatchdogSeconds(1.0)
    engine.scene.namespace["tick"] = lambda: clock.advance(TICK)
    for _ in range(3):
        engine.ExecuteCode(COUNTING.format(stop=90), "<Script Text>", "exec")
    assert misc(engine) == [["output", "done\n" * 3]]
    engine.Close()


# -- memory -------------------------------------------------------------------

@pytest.fixture
def budgeted():
    """An engine whose time limit never comes first."""
    engine = Interpreter()
    engine.SetWatchdogSeconds(60)
    yield engine
    engine.Close()


def test_a_huge_request_is_refused_with_the_line(budgeted):
    interp = budgeted
    interp.ExecuteCode("small = 'x' * 10\nhuge = 'x' * 10 ** 10\n", "<Script Text>", "exec")
    assert stopped_report(interp, TOO_MUCH_MEMORY)[2] == "2"
    still_working(interp)


def test_memory_taken_a_little_at_a_time_is_stopped(budgeted):
    interp = budgeted
    interp.SetMemoryBudgetMegabytes(64)
    interp.ExecuteCode("chunks = []\nwhile True:\n    chunks.append(bytearray(1 << 20))\n",
                       "<Script Text>", "exec")
    assert stopped_report(interp, TOO_MUCH_MEMORY)[2] == "3"
    still_working(interp)


@pytest.fixture
def catching(backend_kind):
    """An engine for code that catches the refusal. The compiled budget stops
    such code itself, so its time limit must never come first, however slow
    the machine; the pure-Python budget leaves it to the time limit."""
    engine = Interpreter()
    engine.SetWatchdogSeconds(60 if backend_kind == "compiled" else LIMIT)
    yield engine
    engine.Close()


def test_code_that_catches_the_refusal_is_still_stopped(catching, backend_kind):
    interp = catching
    interp.SetMemoryBudgetMegabytes(64)
    interp.ExecuteCode("chunks = []\nwhile True:\n    try:\n"
                       "        chunks.append(bytearray(1 << 20))\n"
                       "    except MemoryError:\n        pass\n", "<Script Text>", "exec")
    # The pure-Python budget can't tell the engine of a refusal: the time
    # limit stops it.
    stopped_report(interp, TOO_MUCH_MEMORY if backend_kind == "compiled" else TOOK_TOO_LONG)
    still_working(interp)


def test_code_that_fills_the_budget_to_the_brim_is_still_stopped(catching, backend_kind):
    interp = catching
    # Small blocks fill the budget up to the last few hundred bytes: stopping
    # the run must not need more than that.
    interp.SetMemoryBudgetMegabytes(16)
    interp.ExecuteCode("kept = []\nwhile True:\n    try:\n        kept.append(bytearray(600))\n"
                       "    except MemoryError:\n        pass\n", "<Script Text>", "exec")
    stopped_report(interp, TOO_MUCH_MEMORY if backend_kind == "compiled" else TOOK_TOO_LONG)
    still_working(interp)


def test_the_budget_is_a_setting_and_counts_only_what_a_run_holds(budgeted):
    interp = budgeted
    interp.SetMemoryBudgetMegabytes(16)
    # 200 MB in all, never more than 8 MB at once
    interp.ExecuteCode("for _ in range(50):\n    chunk = bytearray(4 << 20)\n",
                       "<Script Text>", "exec")
    assert misc(interp) == []
    # Far past the budget: the pure-Python budget caps the growth of the address
    # space, and memory the C allocator already holds may serve a few MB more.
    interp.ExecuteCode("chunk = bytearray(256 << 20)\n", "<Script Text>", "exec")
    stopped_report(interp, TOO_MUCH_MEMORY)
    interp.SetMemoryBudgetMegabytes(0)     # no budget
    interp.ExecuteCode("chunk = bytearray(32 << 20)\n", "<Script Text>", "exec")
    assert misc(interp) == []
