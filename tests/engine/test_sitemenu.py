"""The Site Specific menu's rows, read from the home folder's SiteSpecific folder."""

import os

from vessa import sitemenu


def test_no_folder_no_rows(interp, tmp_path):
    assert interp.SetHomeDirectory(str(tmp_path) + "/") is None
    assert interp.GetSiteSpecific() == []


def test_each_python_file_is_a_row_in_order_of_its_name(interp, tmp_path):
    site = tmp_path / "SiteSpecific"
    site.mkdir()
    (site / "b_Print_hello.py").write_text("print('hello')\n")
    (site / "A_Connect_to_the_lab.py").write_text("Connect()\n")
    (site / "notes.txt").write_text("not a command")
    (site / "Deeper").mkdir()
    (site / "Deeper" / "Inside.py").write_text("x = 1")
    (site / "Latin1.py").write_bytes(b"print('\xe9')")
    (site / "Huge.py").write_text("#" * (sitemenu.MAX_BYTES + 1))
    os.symlink(tmp_path / "elsewhere.py", site / "Linked.py")
    (tmp_path / "elsewhere.py").write_text("print('elsewhere')")
    assert interp.SetHomeDirectory(str(tmp_path) + "/") is None
    assert interp.GetSiteSpecific() == [
        ["A Connect to the lab", "Connect()\n"],
        ["b Print hello", "print('hello')\n"],
    ]


def test_rows_stop_at_the_most_a_menu_takes(tmp_path):
    site = tmp_path / "SiteSpecific"
    site.mkdir()
    for n in range(sitemenu.MAX_ROWS + 5):
        (site / ("Item%03d.py" % n)).write_text("pass")
    assert len(sitemenu.rows(str(tmp_path))) == sitemenu.MAX_ROWS
