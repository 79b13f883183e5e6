"""Running code: the result convention, error reports, output records."""

import pytest

from conftest import misc, tagged

USER_TAGS = ["<Script Text>", "<treeview>", "<Command Line>"]


@pytest.mark.parametrize("tag", ["<Init>", "<Tool>"])
def test_front_end_failures_come_back_as_the_result(interp, tag):
    result = interp.ExecuteCode("x = 1\nundefined_name\n", tag, "exec")
    assert "NameError" in result and "undefined_name" in result
    assert misc(interp) == []


@pytest.mark.parametrize("tag", USER_TAGS)
def test_user_failures_become_records_and_the_call_succeeds(interp, tag):
    assert interp.ExecuteCode("x = 1\n\nprint(Bunyy)\n", tag, "exec") is None
    records = misc(interp)
    assert [r[0] for r in records] == ["error", "popuperrordialog"]
    assert "Bunyy" in records[0][1]
    assert records[1] == ["popuperrordialog", "NameError: name 'Bunyy' is not defined", "3"]


@pytest.mark.parametrize("tag", USER_TAGS)
def test_a_text_too_deep_for_the_compiler_is_told_as_a_mistake(interp, tag):
    # 50,000 terms: the compiler runs out of recursion, not into a syntax error
    assert interp.ExecuteCode("1" + "+1" * 50000, tag, "single") is None
    records = misc(interp)
    assert [r[0] for r in records] == ["error", "popuperrordialog"]
    assert interp.ExecuteCode("1 + 1", tag, "single") is None
    assert misc(interp) == [["output", "2\n"]]


def test_successful_runs_answer_none_and_share_one_namespace(interp):
    assert interp.ExecuteCode("bunny_count = 41", "<Tool>", "exec") is None
    assert interp.ExecuteCode("bunny_count += 1", "<Script Text>", "exec") is None
    assert interp.ExecuteCode("bunny_count", "<Command Line>", "single") is None
    assert misc(interp) == [["output", "42\n"]]


def test_a_text_run_again_runs_again_and_tells_its_warnings_each_time(interp, recwarn):
    interp.ExecuteCode("runs = 0", "<Tool>", "exec")
    text = "runs += 1\nsame = (1 is 1)\nif runs == 2:\n    1/0\n"
    for _ in range(2):
        interp.ExecuteLines(text, 0, 3, "<Script Text>", "exec")
        interp.ExecuteCode("print(runs)", "<Tool>", "exec")   # another text in between
    records = misc(interp)
    # (pytest takes the warnings that would go to the output)
    warned = [w for w in recwarn if w.category is SyntaxWarning]
    assert [(w.filename, w.lineno) for w in warned] == [("<Script Text>", 2)] * 2
    assert tagged(records, "popuperrordialog") == [
        ["popuperrordialog", "ZeroDivisionError: division by zero", "4"]]
    assert [r[1] for r in tagged(records, "output")] == ["1\n", "2\n"]
    # a changed text is the one that runs
    interp.ExecuteLines(text.replace("runs += 1", "runs += 10"), 0, 3, "<Script Text>", "exec")
    interp.ExecuteCode("print(runs)", "<Tool>", "exec")
    assert tagged(misc(interp), "output") == [["output", "12\n"]]


def test_error_in_a_function_reports_the_users_innermost_line(interp):
    code = "def hop():\n    return 1/0\n\nhop()\n"
    interp.ExecuteCode(code, "<Script Text>", "exec")
    popup = tagged(misc(interp), "popuperrordialog")[0]
    assert popup[1:] == ["ZeroDivisionError: division by zero", "2"]


def test_error_inside_the_engine_points_at_the_users_line(interp):
    # the failure is raised in library code, the user's line is the one shown
    interp.ExecuteCode("import json\n\njson.loads('{')\n", "<Script Text>", "exec")
    records = misc(interp)
    popup = tagged(records, "popuperrordialog")[0]
    assert popup[2] == "3" and popup[1].startswith("JSONDecodeError")
    assert "json/" not in tagged(records, "error")[0][1]


def test_error_without_a_line_of_user_code_reports_minus_one(interp):
    assert interp.ExecuteCode("x = 1", "<Script Text>", "no such mode") is None
    popup = tagged(misc(interp), "popuperrordialog")[0]
    assert popup[2] == "-1"


def test_syntax_error_has_the_message_and_file_line_offset_text_shape(interp):
    interp.ExecuteCode("x = 1\nif x\n    pass\n", "<Script Text>", "exec")
    records = misc(interp)
    popup = tagged(records, "popuperrordialog")[0]
    message, detail = popup[1], popup[2]
    assert message.startswith("SyntaxError: ")
    assert len(detail) == 2 and len(detail[1]) == 4
    filename, line, offset, text = detail[1]
    assert (filename, line, text) == ("<Script Text>", 2, "if x")
    assert isinstance(offset, int)
    assert "SyntaxError" in tagged(records, "error")[0][1]


def test_execute_lines_runs_only_the_range_and_counts_lines_from_its_start(interp):
    text = "a = 1\r\nb = 2\r\nc = d\r\ne = 5\n"
    assert interp.ExecuteLines(text, 1, 2, "<Script Text>", "exec") is None
    assert tagged(misc(interp), "popuperrordialog")[0][2] == "2"
    assert interp.ExecuteCode("print('a' in globals(), b, 'e' in globals())",
                              "<Tool>", "exec") is None
    assert misc(interp) == [["output", "False 2 False\n"]]


def test_execute_lines_syntax_error_line_is_relative_too(interp):
    text = "ok = 1\nok = 2\nok = (\n"
    interp.ExecuteLines(text, 1, 2, "<Script Text>", "exec")
    detail = tagged(misc(interp), "popuperrordialog")[0][2]
    assert detail[1][1] == 2


def test_execute_lines_single_mode_prints_the_caret_line_value(interp):
    text = "x = 6\nx * 7\nprint('not me')\n"
    interp.ExecuteLines(text, 0, 0, "<Script Text>", "exec")
    interp.ExecuteLines(text, 1, 1, "<Script Text>", "single")
    assert misc(interp) == [["output", "42\n"]]


def test_an_empty_range_or_prompt_runs_nothing(interp):
    assert interp.ExecuteLines("boom(\n", 0, -1, "<treeview>", "exec") is None
    assert interp.ExecuteCode("   # just a note", "<Command Line>", "single") is None
    assert misc(interp) == []


def test_single_mode_prints_expression_values_but_not_none(interp):
    interp.ExecuteCode("3 + 4", "<Command Line>", "single")
    interp.ExecuteCode("None", "<Command Line>", "single")
    interp.ExecuteCode("for i in range(2): i", "<Command Line>", "single")
    assert misc(interp) == [["output", "7\n0\n1\n"]]


def test_a_typed_command_runs_without_echoing_the_animation_it_gives_back(interp):
    interp.ExecuteCode("Camera.Move(Forward, 1)", "<Command Line>", "single")
    interp.ExecuteCode("DoInOrder(Camera.Turn(Left, 1), Camera.Hide())", "<Command Line>", "single")
    interp.ExecuteCode("Camera.GetName()", "<Command Line>", "single")
    assert misc(interp) == [["output", "'Camera'\n"]]
    assert interp.GetLoopWait() == 0        # both will run


def test_exec_mode_does_not_print_expression_values(interp):
    interp.ExecuteCode("3 + 4", "<Script Text>", "exec")
    assert misc(interp) == []


def test_output_waits_for_flushout_and_keeps_its_order_with_errors(interp):
    interp.ExecuteCode("import sys\nprint('one')\nsys.stderr.write('two\\n')\nprint('three')\n",
                       "<Script Text>", "exec")
    assert interp.PollForMiscDifferences() == []
    assert misc(interp) == [["output", "one\n"], ["error", "two\n"], ["output", "three\n"]]
    assert misc(interp) == []


def test_output_before_a_failure_comes_before_its_report(interp):
    interp.ExecuteCode("print('hi')\nboom\n", "<Script Text>", "exec")
    assert [r[0] for r in misc(interp)] == ["output", "error", "popuperrordialog"]


def test_a_megabyte_of_output_arrives_whole_in_bounded_records(interp):
    interp.ExecuteCode("print('x' * (1 << 20), end='')", "<Script Text>", "exec")
    records = misc(interp)
    assert all(r[0] == "output" for r in records)
    assert "".join(r[1] for r in records) == "x" * (1 << 20)
    assert max(len(r[1]) for r in records) < (1 << 20)
    interp.ExecuteCode("print('after')", "<Script Text>", "exec")
    assert misc(interp) == [["output", "after\n"]]


def test_runaway_output_is_capped_with_a_note(interp):
    interp.ExecuteCode("for i in range(600): print('y' * 10000)", "<Script Text>", "exec")
    records = misc(interp)
    shown = sum(len(r[1]) for r in records if r[0] == "output")
    assert shown < 600 * 10001
    assert "not shown" in records[-1][1]


def test_stdout_is_given_back_after_a_run(interp):
    import sys
    before = sys.stdout
    interp.ExecuteCode("print('captured')", "<Script Text>", "exec")
    interp.ExecuteCode("boom", "<Tool>", "exec")
    assert sys.stdout is before


def test_system_exit_in_user_code_is_reported_not_obeyed(interp):
    interp.ExecuteCode("import sys\nsys.exit(3)\n", "<Command Line>", "exec")
    assert tagged(misc(interp), "popuperrordialog")[0][1] == "SystemExit: 3"


def test_lines_run_by_themselves_from_inside_a_block_lose_their_shared_indentation(interp):
    text = "def hop():\n\tprint('one')\n\tprint('two')\n"
    assert interp.ExecuteLines(text, 1, 1, "<Script Text>", "single") is None
    assert interp.ExecuteLines(text, 1, 2, "<Script Text>", "exec") is None
    assert misc(interp) == [["output", "one\none\ntwo\n"]]
    # an error among them is told by its line counted from the first of them
    interp.ExecuteLines("if True:\n    x = 1\n    print(y)\n", 1, 2, "<Script Text>", "exec")
    assert tagged(misc(interp), "popuperrordialog")[0][2] == "2"
