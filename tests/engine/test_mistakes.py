"""What a novice is told: every message of the table, in the world's words,
with the near name suggested; hand-written Python keeps Python's message."""

import re

import pytest

from conftest import misc, tagged, write_tone
from vessa.mistakes import MESSAGES

# (the table's entries the message is made of, the line, what the user reads)
TOLD = [
    (("no_object", "did_you_mean"), "Bunyy.Move(Forward, 1)",
     "There is no object called Bunyy. Did you mean Bunny?"),
    (("no_object", "capitals"), "bunny.move(forward, 1)",
     "There is no object called bunny. Did you mean Bunny? Capital letters count."),
    (("no_part_or_command", "capitals"), "Bunny.move(forward, 1)",
     "Bunny has no part or command called move. Did you mean Move? Capital letters count."),
    (("no_part_or_command",), "Bunny.Haed.Turn(Left, 1)",
     "Bunny has no part or command called Haed. Did you mean Head?"),
    (("no_command",), "Wiat(1)", "There is no command called Wiat. Did you mean Wait?"),
    (("no_sound",), "Bunny.RemoveSound('Popp')", "There is no sound called Popp. Did you mean Pop?"),
    (("no_animation_command",), "Bunny.Move(Forward, 1).Strat()",
     "An animation has no command called Strat. Did you mean Start?"),
    (("no_command_of",), "x = Pop.Plya()", "Pop has no command called Plya. Did you mean Play?"),
    (("no_command_of",), "Vessa.GetDefaultScen()",
     "Vessa has no command called GetDefaultScen. Did you mean GetDefaultScene?"),
    (("not_a_word",), "Bunny.Move(Forwards, 1)", "Forwards is not a direction. Did you mean Forward?"),
    (("not_a_word",), "Bunny.Move('Forwards', 1)", "Forwards is not a direction. Did you mean Forward?"),
    (("not_a_word",), "Bunny.SetColor(Purpel)", "Purpel is not a color. Did you mean Purple?"),
    (("not_a_word",), "Bunny.Turn(Left, half)", "half is not a number."),
    (("not_a_word", "choices"), "Bunny.Move(Forward, 1, Style=Quickly)",
     "Quickly is not a style. It can be Gently, Abruptly, BeginGently, BeginAbruptly, "
     "EndAbruptly or EndGently."),
    (("not_a_word", "choices"), "Bunny.Roll('Sideways', 1)",
     "Sideways is not a direction. It can be Left or Right."),
    (("not_a_word",), "Bunny.Move(Forward, 1, Style='Gentle')",
     "Gentle is not a style. Did you mean Gently?"),
    (("unknown_name",), "DoInOrder(Xyzzy)", "Vessa does not know the name Xyzzy."),
    (("no_option",), "Bunny.Move(Forward, 1, Duraton=2)",
     "Move has no option Duraton. Did you mean Duration?"),
    (("too_many_values",), "Bunny.Move(Forward, 1, 2)", "Move takes 2 values, not 3."),
    (("missing_values",), "Bunny.rename()", "Rename needs one value more."),
    (("given_twice",), "Bunny.Move(Forward, 1, direction=Back)", "Move was given direction twice."),
    (("needs",), "Bunny.Move(Red, 1)",
     "Bunny.Move needs a direction, such as Forward, and a distance, such as 1."),
    (("duration",), "Bunny.Turn(Left, 1, Duration=-1)",
     "Bunny.Turn: Duration must be a number of seconds, such as 1."),
    (("volume",), "Bunny.PlaySound(Pop, Volume=-1)",
     "Bunny.PlaySound: Volume must be a number, such as 0.5."),
    (("look_style",), "Bunny.SetFillingStyle(Lit)", "Bunny: the style must be Solid, Lines or Points."),
    (("own_parent",), "Bunny.BecomeChildOf(Bunny)", "Bunny can't become a child of Bunny."),
    (("response_event",), "Bunny.addresponse(Forward, Bunny.Hide())",
     "addresponse needs an event, such as LeftMouseDown or KeyDown, and then what to do."),
    (("response_what",), "Bunny.addresponse(LeftMouseDown, 3)",
     "addresponse needs an animation or a function to run."),
    (("bad_name", "why_letters"), "Bunny.rename('my bunny')",
     "Bunny can't be called my bunny: a name has letters, digits and _ only, "
     "and starts with a letter."),
    (("bad_name", "why_reserved"), "Bunny.rename('PreserveHandbasket')",
     "Bunny can't be called PreserveHandbasket: PreserveHandbasket is a word that Vessa "
     "or Python uses already."),
    (("bad_name", "why_taken"), "Bunny.rename('Camera')",
     "Bunny can't be called Camera: Camera has that name already."),
    (("bad_name", "why_taken_case"), "Bunny.rename('pop')",
     "Bunny can't be called pop: Pop has that name already, and capital letters don't make it new."),
    (("bad_sound_name", "why_reserved"), "Pop.rename('wait')",
     "The sound Pop can't be called wait: wait is a word that Vessa or Python uses already."),
    (("destroyed",), "Gone.Turn(Left, 1/4)",
     "Ghost has been destroyed, so it can't Turn any more."),
    (("not_allowed",), "import socket",
     "This world's code may not use socket: it uses the network. "
     "Only a world you trust may do that."),
    (("cant_read",), "Bunny.Move(Forward, 1", "Vessa can't read this line: '(' was never closed."),
    (("cant_do",), "Bunny.Move(Forward, [1][2])", "Vessa can't do this line: list index out of range."),
]

# What Python calls its types and the engine its classes: none of it for a novice.
PYTHON_WORDS = re.compile(r"\w+(Error|Exception)\b|\b(Commands|Primitive|Thing|Word|Sound)\b")


@pytest.fixture
def world(tmp_path, clocked):
    engine = clocked
    scene = engine.scene
    with engine.undo.quiet():
        bunny = scene.create("model", "Bunny", scene.root)
        scene.create("model", "Head", bunny, False)
        ghost = scene.create("model", "Ghost", scene.root)
        scene.destroy(ghost, "objectandparts")
    engine.scene.namespace["Gone"] = ghost      # a name still held after the object went
    write_tone(tmp_path / "Pop.wav")
    assert engine.AddSound(str(tmp_path / "Pop.wav")) is None
    misc(engine)
    return engine


def told(engine, code, tag="<Script Text>"):
    assert engine.ExecuteCode(code, tag, "exec") is None
    records = misc(engine)
    popups = tagged(records, "popuperrordialog")
    assert len(popups) == 1, records
    return popups[0], "".join(r[1] for r in tagged(records, "error"))


def test_every_message_of_the_table_is_told():
    assert {key for keys, _, _ in TOLD for key in keys} == set(MESSAGES)


@pytest.mark.parametrize("keys, line, message", TOLD, ids=[line for _, line, _ in TOLD])
def test_a_mistake_is_told_in_the_worlds_words(world, keys, line, message):
    popup, error = told(world, "x = 1\n" + line + "\n")
    assert popup[1] == message
    assert popup[2] == "2" or popup[2][1][1] == 2     # the line, also of a syntax error
    assert error.endswith(message + "\n")
    assert not PYTHON_WORDS.search(error + popup[1])


def test_a_line_of_a_generated_block_is_told_with_its_line(world):
    popup, _ = told(world, "Hop = DoInOrder(\r\n\tBunny.Turn(Left, 1),\r\n\tBunyy.Move(Forward, 1),\r\n"
                           ").stop()\r\n", "<treeview>")
    assert popup[1:] == ["There is no object called Bunyy. Did you mean Bunny?", "3"]


def test_a_name_spelt_like_a_known_one_is_told_whatever_it_names(world):
    # no command around the name: what it is near says what it should have been
    popup, _ = told(world, "Bunny.Move(Forward, 1, AsSeenBy=Camera, Duration=Bunyy)")
    assert popup[1] == "Bunyy is not a number."
    popup, _ = told(world, "DoInOrder(Bunny.Move(Forwrd, 1))")
    assert popup[1] == "Forwrd is not a direction. Did you mean Forward?"


def test_hand_written_python_keeps_pythons_message_with_the_near_name(world):
    popup, _ = told(world, "x = Bunyy\n")
    assert popup[1] == "NameError: name 'Bunyy' is not defined. Did you mean Bunny?"
    popup, _ = told(world, "x = lenn('ab')\n")
    assert popup[1] == "NameError: name 'lenn' is not defined. Did you mean len?"
    popup, _ = told(world, "x = nothing_like_it\n")
    assert popup[1] == "NameError: name 'nothing_like_it' is not defined"
    popup, _ = told(world, "x = 1 / 0\n")
    assert popup[1] == "ZeroDivisionError: division by zero"

