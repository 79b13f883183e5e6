"""Scene backups: dated beside the program's script backups, never a failure raised."""

import datetime
import os
import re
import shutil

from conftest import describe, write_tone
from vessa import Interpreter
from vessa.backups import stamp

NAME = re.compile(r"^Scene_as_of_(\d{1,2})([A-Z][a-z]{2})(\d{4})_(\d\d)(\d\d)(\d\d)(\.py|_Script\.txt)$")
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()
SCRIPT = "Hop = DoInOrder(\r\n\tCamera.Move(Forward, 1),\r\n).stop()\r\n"


def when_named(name):
    day, month, year, hours, minutes, seconds, _ = NAME.match(name).groups()
    return datetime.datetime(int(year), MONTHS.index(month) + 1, int(day),
                             int(hours), int(minutes), int(seconds))


def test_the_date_is_written_as_the_script_backups_write_it():
    assert stamp(datetime.datetime(2024, 3, 5, 14, 25, 1)) == "5Mar2024_142501"
    assert stamp(datetime.datetime(1999, 12, 31, 9, 0, 0)) == "31Dec1999_090000"


def test_a_backup_holds_the_scene_and_the_script_and_can_be_the_scene_again(interp, tmp_path):
    world = tmp_path / "World"
    world.mkdir()
    write_tone(tmp_path / "Pop.wav")
    interp.AddSound(str(tmp_path / "Pop.wav"))
    interp.SaveScene(str(world))
    interp.ExecuteCode("Camera.Nudge(Up, 2)\nCamera.Copy()", "<Tool>", "exec")
    interp.Loop()
    interp.SetIsDirty(0)
    before = datetime.datetime.now().replace(microsecond=0)
    assert interp.BackupScene(str(world / "Backups"), SCRIPT) is None
    after = datetime.datetime.now()
    assert not interp.getisdirty()
    names = sorted(os.listdir(world / "Backups"))
    assert len(names) == 2 and all(NAME.match(n) for n in names)
    assert before <= when_named(names[0]) == when_named(names[1]) <= after
    scene_file, script_file = sorted(names, key=lambda n: n.endswith(".txt"))
    assert (world / "Backups" / script_file).read_bytes() == SCRIPT.encode()
    shutil.copy(world / "Backups" / scene_file, world / "World_Scene.py")
    other = Interpreter()
    assert other.LoadWorld(str(world)) is None
    assert describe(other) == describe(interp)
    assert other.ExecuteCode("Pop.GetName()", "<Tool>", "exec") is None
    other.Close()


def test_a_backup_that_cannot_be_written_is_answered_not_raised(interp, tmp_path):
    (tmp_path / "World").write_text("a file where the world's folder should be")
    failure = interp.BackupScene(str(tmp_path / "World" / "Backups"), SCRIPT)
    assert failure and "Backups" in failure
    assert interp.BackupScene("\0", SCRIPT)
