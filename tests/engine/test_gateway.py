"""The gateway's method table and what start-up sends."""

import os

from conftest import misc, tagged

GATEWAY_METHODS = """
CheckForDirectX Initialize ScreenWidth ScreenHeight ReadRegistryHomeDir
ReadRegistryDesktopDir SetHomeDirectory GetHomeDirectory InitializeSound GetVersionText
IsThereADefaultCamera PreserveDefaultCameraPOV GetSiteSpecific DestroyImageNavigator Close
Loop flushout PollForMiscDifferences PollForTreeDifferences ExecuteCode ExecuteLines
getisdirty SetIsDirty OnTheFlyButton LoadWorld SaveScene BackupScene ImportVESFile
SaveForPlugin SetCameraPosInOpeningScene addobject AddSound AddText isvalidname
SetCurrentObject PrepareObjectMenu replaceobject loadteddyobject imagenavigator
setimagenavigatorparent setimagenavigatorsize SetImageNavigatorCollisionDetectionOn
SetImageNavigatorCollisionDetectionOff StartInspector StopInspector setrenderwindowfocus
GetFPS CheckForHardwareAcceleration SetAcceleration AddRecentFile GetRecentFiles
ReorderRecentFiles DeleteRecentFile GetLoopWait SetWatchdogSeconds UseManualClock AdvanceClock
SaveThumbnail StartSceneCopy NextSceneCopyPart
""".split()


def test_every_gateway_method_exists_with_its_exact_name(interp):
    missing = [name for name in GATEWAY_METHODS if not callable(getattr(interp, name, None))]
    assert missing == []


def test_start_up_sequence_as_the_front_end_sends_it(interp, tmp_path):
    assert interp.CheckForDirectX() == ""
    assert interp.Initialize() is None
    assert interp.ScreenWidth() > 0 and interp.ScreenHeight() > 0
    assert interp.ReadRegistryHomeDir().endswith("/")
    home = str(tmp_path) + "/"
    assert interp.SetHomeDirectory(home) is None
    assert interp.GetHomeDirectory() == home
    assert "does not exist" in interp.SetHomeDirectory(home + "no such folder")
    assert interp.GetHomeDirectory() == home
    assert interp.ExecuteCode("import __builtin__", "<Init>", "exec") is None
    assert interp.GetVersionText()
    assert interp.ExecuteCode("Vessa._SetDefaultParentWindowHwnd(123)", "<Init>", "exec") is None
    assert interp.IsThereADefaultCamera()
    assert interp.ExecuteCode("_CurrentlySelectedObject = Vessa.GetDefaultScene()",
                              "<Tool>", "exec") is None
    assert interp.ExecuteCode("PlaySystemSound ('Error')", "<Tool>", "exec") is None
    assert interp.ExecuteCode("playsystemsound('Selection')", "<Tool>", "exec") is None
    assert interp.SetIsDirty(0) is None and not interp.getisdirty()
    assert interp.SetIsDirty(1) is None and interp.getisdirty()
    assert misc(interp) == []


def test_builtin_alias_reaches_the_builtins(interp):
    assert interp.ExecuteCode("import __builtin__\nassert __builtin__.len('ab') == 2",
                              "<Init>", "exec") is None


def test_home_dir_comes_from_the_environment_when_set(interp, monkeypatch, tmp_path):
    monkeypatch.setenv("VESSA47_HOME", str(tmp_path))
    assert interp.ReadRegistryHomeDir() == str(tmp_path) + "/"
    monkeypatch.delenv("VESSA47_HOME")
    assert interp.ReadRegistryHomeDir().endswith("/home/")


def test_desktop_dir_follows_the_xdg_user_dirs_file(interp, monkeypatch, tmp_path):
    monkeypatch.delenv("XDG_DESKTOP_DIR", raising=False)
    monkeypatch.setenv("HOME", str(tmp_path))
    monkeypatch.setenv("XDG_CONFIG_HOME", str(tmp_path / "cfg"))
    assert interp.ReadRegistryDesktopDir() == os.path.join(str(tmp_path), "Desktop")
    (tmp_path / "cfg").mkdir()
    (tmp_path / "cfg" / "user-dirs.dirs").write_text('XDG_DESKTOP_DIR="$HOME/Bureau"\n')
    assert interp.ReadRegistryDesktopDir() == str(tmp_path) + "/Bureau"


def test_first_tree_poll_names_the_special_ids_then_scene_and_camera(interp):
    records = interp.PollForTreeDifferences()
    assert [r[2] for r in records[:2]] == ["none", "junkyard"]
    none_id = records[0][1]
    # The scene has no parent to tell, so it stays open at the top of the tree.
    scene = records[2:4]
    assert [r[0] for r in scene] == ["objectconstruct", "objectnamechange"]
    assert scene[0][2] == "scene" and scene[1][3] == "Scene"
    camera = records[4:7]
    assert camera[1][2] == none_id
    assert camera[0][2] == "camera" and camera[1][3] == scene[0][1] and camera[2][3] == "Camera"
    assert all(isinstance(r[1], str) for r in records)
    assert interp.PollForTreeDifferences() == []


def test_recent_files_keep_order_and_move_a_reopened_world_to_the_top(interp):
    interp.AddRecentFile("RecentFile1", "/w/A")
    interp.AddRecentFile("RecentFile2", "/w/B")
    interp.AddRecentFile("RecentFile3", "/w/a")     # the same world, other case
    assert interp.GetRecentFiles() == [["RecentFile1", "/w/A"], ["RecentFile2", "/w/B"]]
    assert interp.ReorderRecentFiles("/w/B") == [["RecentFile1", "/w/B"], ["RecentFile2", "/w/A"]]
    assert interp.DeleteRecentFile("/W/B") == [["RecentFile1", "/w/A"]]
    for n in range(12):
        interp.ReorderRecentFiles("/w/%d" % n)
    assert len(interp.GetRecentFiles()) == 9


# The world's language, the front end's statements, Python: in any capitals.
TAKEN_NAMES = """
Vessa DoInOrder DoTogether Forward forward FORWARD Red Wait PlaySound print Print undo
PreserveHandbasket __builtins__ _x Move turn Gently ObjectOnly LeftMouseDown class match
len c ev AnyWhere TVDef_KeyDown_Hop camera Scene
""".split()


def test_isvalidname_accepts_only_names_that_break_nothing(interp):
    assert interp.isvalidname("Bunny2") and interp.isvalidname("Hopper")
    assert not interp.isvalidname("2Bunny")
    assert not interp.isvalidname("my bunny")
    refused = [name for name in TAKEN_NAMES if interp.isvalidname(name)]
    assert refused == []


def test_a_refused_rename_leaves_the_worlds_words_working(interp):
    interp.ExecuteCode("Camera.rename('Forward')", "<Script Text>", "exec")
    interp.ExecuteCode("Camera.rename('PreserveHandbasket')", "<Script Text>", "exec")
    assert len(tagged(misc(interp), "popuperrordialog")) == 2
    assert interp.ExecuteCode("PreserveHandbasket()\nCamera.Move(Forward, 1)", "<Tool>", "exec") is None


def test_object_menu_of_a_name_no_object_has_is_a_menu_with_nothing_to_act_on(interp):
    menu = interp.PrepareObjectMenu("NoSuch")
    assert len(menu) == 9 == len(interp.PrepareObjectMenu("Camera"))
    assert menu[:2] == [False, "NoSuch"]    # no camera to point at it
    assert menu[4:6] == [False, False]      # no model rows, not first class


def test_methods_whose_work_is_still_to_come_say_so_instead_of_succeeding(interp):
    for name in ["PreserveDefaultCameraPOV"]:
        answer = getattr(interp, name)("a", "b")
        assert name in answer and "not available" in answer, name


def test_calls_after_close_are_harmless(interp):
    interp.Close()
    assert interp.ExecuteCode("x = 1", "<Tool>", "exec") is None
    assert interp.Loop() is None
    assert interp.Close() is None


def test_an_unpacked_archive_is_taken_only_when_it_holds_a_world_and_nothing_of_it_runs(interp, tmp_path):
    world = tmp_path / "TempWorld"
    world.mkdir()
    answer = interp.ImportVESFile("friend.ves", str(world))
    assert "friend.ves holds no world" in answer
    (tmp_path / "Saved").mkdir()
    assert interp.SaveScene(str(tmp_path / "Saved")) is None
    assert interp.ImportVESFile("mine.ves", str(tmp_path / "Saved")) is None
    # Code in place of a scene is refused by the reader, never run.
    (world / "World_Scene.py").write_text("open(%r, 'w').write('ran')\n" % str(tmp_path / "ran"))
    assert "holds no world" in interp.ImportVESFile("bad.ves", str(world))
    assert not (tmp_path / "ran").exists()
