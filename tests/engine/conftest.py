import pytest

from vessa import Interpreter


@pytest.fixture
def interp():
    engine = Interpreter()
    yield engine
    engine.Close()


def misc(engine):
    """What the front end's main loop sees: flush, then the misc poll."""
    engine.flushout()
    return engine.PollForMiscDifferences()


def tagged(records, tag):
    return [r for r in records if r[0] == tag]
