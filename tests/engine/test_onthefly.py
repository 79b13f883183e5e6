"""On-the-fly buttons: lines of the world's Python that run each time their
button is pressed, while the world runs."""

import pytest

from conftest import at, misc, tagged
from vessa import onthefly


def where(engine, name="Camera"):
    return engine.scene.find(name).GetPosition()


def test_a_button_runs_its_lines_at_each_press_while_the_world_runs(clocked):
    engine = clocked
    assert engine.ExecuteCode("Camera.Move(Forward, 4, Duration=4)\npresses = 0",
                              "<Script Text>", "exec") is None
    at(engine, 0.0)
    assert engine.OnTheFlyButton("presses += 1\nCamera.Move(Up, 1, Duration=0)\n") is None
    assert engine.GetOnTheFlyButtons() == [[1, "presses += 1"]]
    at(engine, 1.0)
    assert engine.PressOnTheFlyButton(1) is None
    assert engine.PressOnTheFlyButton("1") is None      # as the gateway may hand it
    at(engine, 2.0)
    assert engine.scene.namespace["presses"] == 2
    # both presses lifted the camera; the walk forward went on meanwhile
    assert where(engine) == pytest.approx([0, 2, 2])
    at(engine, 4.0)
    assert where(engine) == pytest.approx([0, 2, 4])
    assert tagged(misc(engine), "popuperrordialog") == []


def test_each_press_is_one_undo_step_and_lines_from_inside_a_block_run(clocked):
    engine = clocked
    engine.OnTheFlyButton("\tCamera.Move(Up, 1, Duration=0),\n\tCamera.Move(Left, 1, Duration=0),")
    engine.PressOnTheFlyButton(1)
    at(engine, 1.0)
    assert where(engine) == pytest.approx([-1, 1, 0])   # left is the world's -x
    assert engine.ExecuteCode("undo()", "<Tool>", "exec") is None
    at(engine, 2.0)
    assert where(engine) == pytest.approx([0, 0, 0])


def test_lines_with_a_mistake_make_no_button_and_the_user_is_told_where(interp):
    assert interp.OnTheFlyButton("x = 1\nif x = 2:\n    pass\n") is None
    assert interp.GetOnTheFlyButtons() == []
    popup = tagged(misc(interp), "popuperrordialog")
    assert len(popup) == 1
    message, (tag, line, _, source) = popup[0][2]
    assert (tag, line, source.strip()) == ("<On The Fly>", 2, "if x = 2:")


def test_a_mistake_when_pressed_is_told_as_the_users_and_the_button_stays(interp):
    interp.OnTheFlyButton("print('hop')\nprint(Bunyy)")
    assert interp.PressOnTheFlyButton(1) is None
    records = misc(interp)
    assert tagged(records, "output") == [["output", "hop\n"]]
    assert tagged(records, "popuperrordialog") == [
        ["popuperrordialog", "NameError: name 'Bunyy' is not defined", "2"]]
    interp.ExecuteCode("Bunyy = 'found'", "<Tool>", "exec")
    interp.PressOnTheFlyButton(1)
    assert "".join(r[1] for r in tagged(misc(interp), "output")) == "hop\nfound\n"


@pytest.mark.parametrize("text", ["", "   \n", "# only a comment\n"])
def test_no_button_is_made_of_no_code(interp, text):
    assert "no lines of code" in interp.OnTheFlyButton(text)
    assert interp.GetOnTheFlyButtons() == []


def test_buttons_are_numbered_and_captioned_by_their_first_line_of_code(interp):
    interp.OnTheFlyButton("# lift\n\nCamera.Move(Up, 1, Duration=0, Style=Abruptly)")
    interp.OnTheFlyButton("a = 1")
    assert interp.GetOnTheFlyButtons() == [[1, "Camera.Move(Up, 1, Du..."], [2, "a = 1"]]
    for wrong in (0, 3, -1, "two", None):
        assert "no on-the-fly button" in interp.PressOnTheFlyButton(wrong)


def test_there_is_a_most_buttons_and_past_it_none_is_made(interp):
    for number in range(onthefly.MOST_BUTTONS):
        assert interp.OnTheFlyButton("n = %d" % number) is None
    assert "no more" in interp.OnTheFlyButton("n = 99")
    assert len(interp.GetOnTheFlyButtons()) == onthefly.MOST_BUTTONS


def test_a_world_loaded_anew_drops_the_buttons(interp, tmp_path):
    interp.OnTheFlyButton("a = 1")
    assert interp.SaveScene(str(tmp_path)) is None
    assert interp.LoadWorld(str(tmp_path)) is None
    assert interp.GetOnTheFlyButtons() == []
    assert "no on-the-fly button" in interp.PressOnTheFlyButton(1)
