"""The engine as the front end sees it: one object whose methods it calls by name.

Results cross the gateway as variants: None, bool, int, float, str and nested
lists. A call that can fail answers None on success and the failure text
otherwise; user code never fails a call: its errors go out as records.
"""

import keyword

from . import compat, namespace, places
from .capture import Capture
from .clock import Scheduler, WallClock
from .recent import RecentFiles
from .records import DifferenceQueue
from .runner import CodeRunner, is_user_code
from .scene import Scene
from .watchdog import Watchdog

VERSION = "0.1.0"
SCREEN_SIZE = (1920, 1080)

# Methods of the gateway that answer success and do nothing yet: they belong
# to the scene file, drawing, sound and tool stages still to come.
NOT_YET = (
    "InitializeSound", "PreserveDefaultCameraPOV", "OnTheFlyButton",
    "LoadWorld", "SaveScene", "BackupScene", "ImportVESFile", "SaveForPlugin",
    "SetCameraPosInOpeningScene", "addobject", "AddSound", "AddText",
    "SetCurrentObject", "replaceobject", "loadteddyobject",
    "imagenavigator", "setimagenavigatorparent", "setimagenavigatorsize",
    "SetImageNavigatorCollisionDetectionOn", "SetImageNavigatorCollisionDetectionOff",
    "StartInspector", "StopInspector", "setrenderwindowfocus", "SetAcceleration",
)


class Interpreter:
    def __init__(self, clock=None):
        compat.install()
        self._queue = DifferenceQueue()
        self._watchdog = Watchdog(is_user_code)
        self._scheduler = Scheduler(clock or WallClock())
        self._recent = RecentFiles()
        self._home = places.home_dir()
        self._dirty = False
        self._scene = Scene(self._queue)
        self._scene.create("camera", "Camera", self._scene.root)
        self._runner = CodeRunner(namespace.build(self._scene), self._queue,
                                  Capture(self._queue), self._watchdog)

    # -- start-up and shut-down ---------------------------------------------

    def CheckForDirectX(self):
        return None     # drawing needs only OpenGL, which the front end checks

    def Initialize(self):
        return None

    def ScreenWidth(self):
        return SCREEN_SIZE[0]

    def ScreenHeight(self):
        return SCREEN_SIZE[1]

    def ReadRegistryHomeDir(self):
        return places.home_dir()

    def ReadRegistryDesktopDir(self):
        return places.desktop_dir()

    def SetHomeDirectory(self, directory):
        self._home = places.with_slash(str(directory))
        return None

    def GetHomeDirectory(self):
        return self._home

    def GetVersionText(self):
        return VERSION

    def IsThereADefaultCamera(self):
        return bool(self._scene.cameras())

    def GetSiteSpecific(self):
        return []

    def DestroyImageNavigator(self):
        return None

    def Close(self):
        self._watchdog.close()
        return None

    # -- running and polling ------------------------------------------------

    def Loop(self):
        self._scheduler.run_due()
        return None

    def GetLoopWait(self):
        """Milliseconds until Loop() has something to do: 0 while anything
        runs, -1 when nothing is scheduled. Lets the front end sleep."""
        seconds = self._scheduler.seconds_to_next()
        return -1 if seconds is None else int(seconds * 1000)

    def flushout(self):
        self._queue.flush()
        return None

    def PollForMiscDifferences(self):
        return self._queue.poll_misc()

    def PollForTreeDifferences(self):
        return self._queue.poll_tree()

    def ExecuteCode(self, text, sourceTag, mode):
        return self._runner.execute(str(text), str(sourceTag), str(mode))

    def ExecuteLines(self, text, firstLine, lastLine, sourceTag, mode):
        return self._runner.execute_lines(str(text), firstLine, lastLine,
                                          str(sourceTag), str(mode))

    def SetWatchdogSeconds(self, seconds):
        """How long user code may run inside one call before it is stopped."""
        self._watchdog.seconds = float(seconds)
        return None

    def getisdirty(self):
        return self._dirty

    def SetIsDirty(self, value):
        self._dirty = bool(int(value))
        return None

    # -- worlds and objects -------------------------------------------------

    def isvalidname(self, text):
        text = str(text)
        return text.isidentifier() and not keyword.iskeyword(text)

    def PrepareObjectMenu(self, name):
        return []

    # -- camera window ------------------------------------------------------

    def GetFPS(self):
        return 0

    def CheckForHardwareAcceleration(self):
        return True

    # -- recent files -------------------------------------------------------

    def AddRecentFile(self, name, path):
        self._recent.add(str(name), str(path))
        return None

    def GetRecentFiles(self):
        return self._recent.rows()

    def ReorderRecentFiles(self, path):
        self._recent.reorder(str(path))
        return self._recent.rows()

    def DeleteRecentFile(self, path):
        self._recent.delete(str(path))
        return self._recent.rows()


def _does_nothing_yet(name):
    def method(self, *args):
        return None
    method.__name__ = method.__qualname__ = name
    return method


for _name in NOT_YET:
    setattr(Interpreter, _name, _does_nothing_yet(_name))
