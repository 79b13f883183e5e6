"""Runaway user code is stopped, reported like any error, and the engine goes on."""

import threading

import pytest

from conftest import misc, tagged
from vessa import Interpreter

LIMIT = 0.3


@pytest.fixture
def interp():
    engine = Interpreter()
    engine.SetWatchdogSeconds(LIMIT)
    yield engine
    engine.Close()


def stopped_report(engine):
    records = misc(engine)
    popups = tagged(records, "popuperrordialog")
    assert len(popups) == 1, records
    assert popups[0][1] == "Your code took too long (more than 0.3 seconds) and was stopped"
    assert tagged(records, "error")
    return popups[0]


RUNAWAYS = {
    "tight loop": "while True: pass\n",
    "loop with a body": "n = 0\nwhile True:\n    n += 1\n",
    "except Exception": "while True:\n    try:\n        pass\n    except Exception:\n        pass\n",
    "bare except, nested": ("while True:\n    try:\n        while True:\n            try:\n"
                            "                x = 1\n            except:\n                pass\n"
                            "    except:\n        pass\n"),
    "except BaseException as e": ("while True:\n    try:\n        while True: pass\n"
                                  "    except BaseException as e:\n        pass\n"),
    "in a function": "def spin():\n    while True:\n        try: pass\n        except: pass\n\nspin()\n",
}


@pytest.mark.parametrize("source", RUNAWAYS.values(), ids=RUNAWAYS.keys())
def test_runaway_code_is_stopped_and_reported(interp, source):
    assert interp.ExecuteCode(source, "<Script Text>", "exec") is None
    popup = stopped_report(interp)
    assert int(popup[2]) >= 1


def test_stop_reports_the_line_that_was_running(interp):
    interp.ExecuteCode("x = 1\n\nwhile True: pass\n", "<Script Text>", "exec")
    assert stopped_report(interp)[2] == "3"


def test_front_end_statement_running_user_code_gets_the_failure_text(interp):
    interp.ExecuteCode("def spin():\n    while True: pass\n", "<Script Text>", "exec")
    result = interp.ExecuteCode("spin()", "<Tool>", "exec")
    assert "took too long" in result


def test_many_stopped_runs_in_a_row_leave_the_engine_working(interp):
    interp.SetWatchdogSeconds(0.05)
    for n in range(10):
        interp.ExecuteCode("total = %d\nwhile True:\n    try: pass\n    except: pass\n" % n,
                           "<Command Line>", "exec")
    assert len(tagged(misc(interp), "popuperrordialog")) == 10
    interp.SetWatchdogSeconds(LIMIT)
    assert interp.ExecuteCode("result = sum(range(total + 1))", "<Script Text>", "exec") is None
    assert interp.ExecuteCode("print(result)", "<Command Line>", "single") is None
    assert misc(interp) == [["output", "45\n"]]


def test_code_under_the_limit_is_not_touched(interp):
    # Well under the limit, so that a busy machine pausing the run does not reach it.
    interp.SetWatchdogSeconds(10 * LIMIT)
    source = "import time\nend = time.monotonic() + 0.2\nwhile time.monotonic() < end: pass\nprint('done')\n"
    assert interp.ExecuteCode(source, "<Script Text>", "exec") is None
    assert misc(interp) == [["output", "done\n"]]


def test_without_threads_the_watchdog_is_off_and_code_still_runs(monkeypatch):
    def no_threads(self):
        raise RuntimeError("can't start new thread")
    monkeypatch.setattr(threading.Thread, "start", no_threads)
    engine = Interpreter()
    assert engine.ExecuteCode("print('fine')", "<Script Text>", "exec") is None
    assert misc(engine) == [["output", "fine\n"]]
    engine.Close()
