"""How long things take: a Wait as long as it is told, blocks inside blocks
as long as their parts say, however finely or coarsely Loop() is stepped."""

import pytest

from conftest import at


@pytest.fixture
def world(clocked):
    return clocked


def start(engine, code):
    """Runs code at time 0."""
    assert engine.ExecuteCode(code, "<Tool>", "exec") is None
    at(engine, 0.0)


def where(engine):
    return engine.scene.find("Camera").GetPosition()


@pytest.mark.parametrize("seconds", [0.25, 2.5])
@pytest.mark.parametrize("waiting", ["Wait(%s)", "Camera.Wait(%s)"])
def test_a_wait_lasts_as_long_as_it_is_told(world, waiting, seconds):
    start(world, "DoInOrder(%s, Camera.Move(Up, 1, Duration=0))" % (waiting % seconds))
    at(world, seconds - 0.01)
    assert where(world) == pytest.approx([0, 0, 0])
    at(world, seconds)
    assert where(world) == pytest.approx([0, 1, 0])


NESTED = ("DoInOrder(\n"
          "    DoTogether(\n"
          "        Camera.Move(Up, 1, Duration=3),\n"
          "        DoInOrder(Wait(0.5), Wait(0.5)),\n"     # the last part is not the longest
          "    ),\n"
          "    Camera.Move(Forward, 1, Duration=1, Style=abruptly),\n"
          ")")


def test_a_together_block_inside_a_sequence_lasts_as_long_as_its_longest_part(world):
    start(world, NESTED)
    for now in (0.5, 1.0, 2.0, 2.9):
        at(world, now)
        assert where(world)[2] == 0.0, now      # still rising, not yet forward
    at(world, 3.5)
    assert where(world) == pytest.approx([0, 1, 0.5])
    at(world, 4.0)
    assert where(world) == pytest.approx([0, 1, 1])
    assert world.GetLoopWait() == -1


def test_one_coarse_step_over_nested_blocks_keeps_their_timing(world):
    start(world, NESTED)
    at(world, 3.5)      # every part of the together block ends within this one step
    assert where(world) == pytest.approx([0, 1, 0.5])

