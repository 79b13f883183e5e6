"""The engine as the front end sees it: one object whose methods it calls by name.

Results cross the gateway as variants: None, bool, int, float, str and nested
lists. A call that can fail answers None on success and the failure text
otherwise; user code never fails a call: its errors go out as records.
"""

import json
import math
import os
import tempfile

from . import backend as backends
from . import geometry as g
from . import backups, compat, events, models, namespace, places, policy, records, reports
from . import onthefly, scenefile, sitemenu, sounds, webpage
from .animation import Animator
from .capture import Capture
from .clock import ManualClock, WallClock
from .handbasket import Handbasket
from .recent import RecentFiles
from .records import DifferenceQueue
from .runner import CodeRunner
from .scene import Scene
from .undo import UndoStack
from .viewinput import ViewInput
from .watchdog import Watchdog

VERSION = "0.1.0"

# Methods of the gateway whose work is still to come: each answers that it is
# not available, never a success for work it did not do.
NOT_YET = (
    "PreserveDefaultCameraPOV",
)

THUMBNAIL = "world_thumbnail.bmp"
STATE_CHANNELS = backends.CHANNELS
PICTURE_SIDES = (1, 4096)       # pixels a side of a picture drawn on request
NEW_OBJECT_PLACE = (0.0, 0.0, 0.0)     # the middle of the world, on the ground


class Interpreter:
    def __init__(self, clock=None, backend=None):
        """clock and backend are for tests; the backend is otherwise the
        compiled one when it can be imported (backend.create())."""
        compat.install()
        clock = clock or WallClock()
        self._queue = DifferenceQueue()
        self._watchdog = Watchdog(clock, after_run=policy.restore_builtins)
        self._recent = RecentFiles()
        self._copy = None       # the autosave's copy of the scene, while it is told
        self._home = places.home_dir()
        self._dirty = False
        policy.install()
        policy.configure(trusted=False, world=None, home=self._home, temp=tempfile.gettempdir())
        self.undo = UndoStack(lambda empty: self._queue.add_misc(records.undo_empty_change(empty)))
        self.animator = Animator(
            policy.AnnouncedFiles(backend or backends.create()), clock, self.undo,
            lambda active: self._queue.add_misc(records.active_changed(active)))
        self.scene = Scene(self._queue, self.animator.backend, self.animator, self._mark_dirty)
        self.scene.remember = lambda step: self.undo.push(step)
        self.sounds = sounds.SoundShelf(self.scene, self._queue, lambda: self._home)
        self.scene.sounds = self.sounds
        self.handbasket = Handbasket(self.scene, self.animator, self.undo)
        with self.undo.quiet():
            self.scene.create("camera", "Camera", self.scene.root)
        self.scene.namespace = namespace.build(self)
        self._runner = CodeRunner(self.scene.namespace, self._queue,
                                  Capture(self._queue), self._watchdog)
        self.animator.where, self.animator.on_mistake = self._runner.where, self._runner.tell
        self._on_the_fly = onthefly.OnTheFlyButtons(self._runner)
        self.view_input = ViewInput(self.scene, self._queue, self.default_camera,
                                    self._mouse_tool, self._mouse_event, self.KeyEvent)

    def _mark_dirty(self):
        self._dirty = True

    def default_camera(self):
        cameras = self.scene.cameras()
        return cameras[0] if cameras else None

    # -- start-up and shut-down ---------------------------------------------

    @property
    def backend(self):
        return self.animator.backend

    def CheckForDirectX(self):
        """"" when the camera view can be drawn (an OpenGL context can be
        made, or there is no window system to draw in), otherwise why not."""
        return self.backend.check_drawing()

    def Initialize(self):
        return None

    def ScreenWidth(self):
        return self.backend.screen_size()[0]

    def ScreenHeight(self):
        return self.backend.screen_size()[1]

    def ReadRegistryHomeDir(self):
        return places.home_dir()

    def ReadRegistryDesktopDir(self):
        return places.desktop_dir()

    def SetHomeDirectory(self, directory):
        """A folder that isn't there is refused: worlds, objects and sounds
        would all be missing without a word."""
        if not os.path.isdir(str(directory)):
            return "The home folder %s does not exist." % directory
        self._home = places.with_slash(str(directory))
        policy.configure(home=self._home)
        return None

    def GetHomeDirectory(self):
        return self._home

    def GetVersionText(self):
        return VERSION

    def IsThereADefaultCamera(self):
        return bool(self.scene.cameras())

    def GetSiteSpecific(self):
        """The site's own commands: [caption, statement] rows (see sitemenu)."""
        return sitemenu.rows(self._home)

    def DestroyImageNavigator(self):
        self.backend.close_view()
        return None

    def Close(self):
        # The world's objects go while the watchdog still watches their __del__.
        self._runner.call(self.scene.namespace.clear)
        self._watchdog.close()
        return None

    # -- running and polling ------------------------------------------------

    def Loop(self):
        """Takes the view's mouse and keys, then advances animations. A
        mistake of the world is told by its own record; a fault of the
        engine stops what runs and comes back as the failure text."""
        try:
            self.view_input.step(self.animator.now())
            self.animator.step()
        except Exception as exc:
            self.animator.stop_all()
            return reports.full_traceback(exc)
        return None

    def GetLoopWait(self):
        """Milliseconds until Loop() has something to do: 0 while anything
        runs (or the view has input waiting), -1 when nothing is scheduled.
        Lets the front end sleep."""
        busy = self.animator.busy() or self.view_input.busy() or self.backend.input_waiting()
        return 0 if busy else -1

    def KeyEvent(self, kind, key, rawkey):
        """A key went down or up in the camera window ("KeyDown", "A", 65)."""
        everyone = [t.responses for t in self.scene.living()]
        everyone += [t._Window.responses for t in self.scene.cameras()]
        event = events.Event(str(kind), str(key), int(rawkey))
        with self.undo.action():
            self._respond(everyone, event)

    def MouseEvent(self, kind, objectName):
        """A mouse button went down or up on an object ("" for none)."""
        self._mouse_event(str(kind), self.scene.find(objectName) if objectName else None)

    def _mouse_event(self, kind, thing):
        listeners = [t._Window.responses for t in self.scene.cameras()]
        event = events.Event(kind, thing=thing)
        while thing is not None:
            listeners.append(thing.responses)
            thing = thing.parent
        with self.undo.action():
            self._respond(listeners, event)

    def _mouse_tool(self):
        return getattr(self.scene.namespace.get("Vessa"), "respond_to_mouse", 0)

    def _respond(self, listeners, event):
        for responses in listeners:
            events.respond(responses.get(event.kind), event, self._runner.call)
        return None

    def flushout(self):
        self._queue.flush()
        return None

    def PollForMiscDifferences(self):
        return self._queue.poll_misc()

    def PollForTreeDifferences(self):
        return self._queue.poll_tree()

    def ExecuteCode(self, text, sourceTag, mode):
        """Whatever the text changes, now or by the animations it makes, is one undo step."""
        with self.undo.action():
            return self._runner.execute(str(text), str(sourceTag), str(mode))

    def ExecuteLines(self, text, firstLine, lastLine, sourceTag, mode):
        with self.undo.action():
            return self._runner.execute_lines(str(text), firstLine, lastLine,
                                              str(sourceTag), str(mode))

    def OnTheFlyButton(self, text):
        """A button that runs text (lines of the world's Python) each time it
        is pressed (onthefly.py). None when it is made, or when text has a
        mistake, told to the user as in their code; otherwise why not."""
        return self._on_the_fly.make(text)

    def GetOnTheFlyButtons(self):
        """[number, caption] of each on-the-fly button, in the order made."""
        return self._on_the_fly.rows()

    def PressOnTheFlyButton(self, number):
        """Runs the lines of button number (from 1) in the world as it is, as
        one undo step."""
        with self.undo.action():
            return self._on_the_fly.press(number)

    def UseManualClock(self):
        """From now on the engine's time moves only by AdvanceClock(), so a
        caller that wants simulated time (the command line's check) runs a
        world's seconds as fast as it can. It goes on from the time it
        shows now. The watchdog keeps real time: user code that runs away
        is stopped as before."""
        if not isinstance(self.animator.clock, ManualClock):
            self.animator.clock = ManualClock(self.animator.now())
        return None

    def AdvanceClock(self, seconds):
        """Moves the manual clock on by seconds; the next Loop() runs the
        world to that time."""
        clock = self.animator.clock
        if not isinstance(clock, ManualClock):
            return "AdvanceClock: the engine runs on the wall clock (UseManualClock first)"
        try:
            seconds = float(seconds)
        except (TypeError, ValueError):
            seconds = math.nan
        if not (math.isfinite(seconds) and seconds >= 0):
            return "AdvanceClock: %r is no number of seconds to go on by" % (seconds,)
        clock.advance(seconds)
        return None

    def SetWatchdogSeconds(self, seconds):
        """How long user code may run inside one call before it is stopped."""
        self._watchdog.seconds = float(seconds)
        return None

    def SetMemoryBudgetMegabytes(self, megabytes):
        """How much memory user code may take in one call (MiB; 0: no limit)."""
        self._watchdog.budget_bytes = max(0, int(float(megabytes) * (1 << 20)))
        return None

    def SetWorldTrusted(self, trusted):
        """1 lifts the policy on what the world's code may do (policy.py), 0
        puts it back. Loading a world puts it back."""
        policy.configure(trusted=bool(int(trusted)))
        return None

    def getisdirty(self):
        return self._dirty

    def SetIsDirty(self, value):
        self._dirty = bool(int(value))
        return None

    # -- worlds and objects -------------------------------------------------

    def LoadWorld(self, folder):
        """Replaces the scene with the folder's World_Scene.py. A file that is
        not a scene file changes nothing and is reported as an error; model
        and sound files that can't be read are reported as output, and what
        uses them stays, unseen or silent."""
        folder = str(folder)
        try:
            objects, sounds = scenefile.read(folder)
        except scenefile.SceneFileError as exc:
            self._queue.write("error", str(exc) + "\n")
            return str(exc)
        self.animator.stop_all()
        self.sounds.forget_all()
        with self.undo.quiet():
            scenefile.load(self.scene, objects, folder)
            self.sounds.load(sounds, folder)
        for failure in models.unreadable(self.scene.living(), self.backend):
            self._queue.write("output", failure + "\n")
        self.undo.truncate(0)
        self.handbasket.forget()
        policy.configure(world=folder, trusted=False)
        self.scene.root.responses.restore({})
        self._on_the_fly.forget()
        names = self.scene.namespace
        self._runner.call(names.clear)     # the old world's __del__ are user code
        names.update(namespace.build(self))
        self._dirty = False
        return None

    def ImportVESFile(self, archive, folder):
        """Takes in a world that came as an archive: the front end has unpacked
        it into folder, a fresh one, checking every entry. The world is
        someone else's: its scene is read by the restricted reader and nothing
        of it is run. None when the folder holds a world this engine can load
        (LoadWorld then loads it, untrusted, as every world), else why not."""
        folder = str(folder)
        try:
            scenefile.read(folder)
        except scenefile.SceneFileError as exc:
            return "%s holds no world that can be loaded: %s" % (archive, exc)
        return None

    def SaveScene(self, folder, into=None):
        """Writes World_Scene.py, with the model and sound files the world
        uses copied into the folder, and a picture of the world through its
        camera. With into (a folder on the same disk, such as one inside
        folder), the scene file and the picture are written there instead,
        for the caller to move into folder with the world's other files;
        each model or sound file is copied by way of into and renamed into
        folder, so it is there whole or not at all."""
        folder = str(folder)
        into = str(into) if into else None
        try:
            notes = models.keep_in_folder(self.scene.living(), folder, into)
            scenefile.write(self.scene, folder, self.sounds.keep_in_folder(folder, into), into)
        except OSError as exc:
            return "SaveScene: %s can't be written: %s" % (into or folder, exc.strerror)
        for note in notes:
            self._tell(note)
        policy.configure(world=folder)
        # The world is saved; a picture that can't be written costs it nothing.
        self.backend.save_picture(os.path.join(into or folder, THUMBNAIL))
        return None

    def StartSceneCopy(self, asPreserved):
        """Takes the scene for a copy of the world in a folder of its own
        (the autosave's), quickly and drawing nothing; its text then comes
        from NextSceneCopyPart. asPreserved 1: the world as the handbasket
        keeps it, as a save would write it while the world may be running.
        Answers [[path, name], ...]: each model and sound file the copy's
        scene names, and its name in the copy's folder."""
        preserved = self.handbasket.saved() if int(asPreserved) else None
        self._copy = scenefile.Copy(self.scene, self.sounds, preserved)
        return self._copy.files()

    def NextSceneCopyPart(self, objectCount):
        """The next part of the copy's scene file: the statements of up to
        objectCount objects; "" once all has been given."""
        text = self._copy.part(objectCount) if self._copy else ""
        if not text:
            self._copy = None
        return text
    def GetObjectStates(self):
        """Every living object by name, as JSON text: its position, turn,
        size and colour (each relative to its parent) and whether it is
        shown. What two runs of one world (the desktop's, a web page's) are
        compared by."""
        states = {}
        for thing in self.scene.living():
            state = {c: list(self.backend.get(thing.id, c)) for c in STATE_CHANNELS}
            state["visible"] = bool(self.backend.get_style(thing.id, "visible"))
            states[thing.name] = state
        return json.dumps(states, sort_keys=True)

    def SaveForPlugin(self, folder, page, width, height, position, navigator, player):
        """Writes the web page that plays the saved world in folder: page
        (an .html or .htm file), its view width x height pixels, placed
        "Left", "Center" or "Right", with the camera controls when navigator
        is true; the player's files are in the folder player beside it. The
        shapes of the world's models go beside the page, as its name with
        ".models.json"; the archive <name>.ves is the front end's."""
        try:
            webpage.write(self.scene.living(), self.backend, str(folder), page, width, height,
                          position, navigator, player)
        except webpage.PageError as exc:
            return str(exc)
        except OSError as exc:
            return "SaveForPlugin: %s can't be written: %s" % (page, exc.strerror)
        return None

    def SaveThumbnail(self, folder, width, height):
        """The world through its camera as the folder's picture, width x
        height pixels, drawn offscreen: no view or display is needed."""
        width, height = int(width), int(height)
        low, high = PICTURE_SIDES
        if not (low <= width <= high and low <= height <= high):
            return "SaveThumbnail: a picture is %d to %d pixels a side, not %d x %d" % (
                low, high, width, height)
        return self.backend.save_picture(os.path.join(str(folder), THUMBNAIL), width, height)

    def SetCameraPosInOpeningScene(self):
        """The camera, where a run has taken it, becomes where the world
        starts: the handbasket puts it back here."""
        camera = self.default_camera()
        if camera is None:
            return "SetCameraPosInOpeningScene: the world has no camera"
        self.handbasket.keep_place_of(camera)
        self._mark_dirty()
        return None

    def BackupScene(self, folder, scriptText):
        """A dated copy of the scene and of the script text in folder (the
        world's Backups folder), made if need be. A backup is a safety net:
        a failure is answered, never raised."""
        return backups.back_up(self.scene, self.sounds, str(folder), str(scriptText))

    def _facing_the_camera(self, where):
        """The orientation that turns a new object's front to the camera."""
        camera = self.default_camera()
        toward = g.sub(camera.world_position(), where) if camera else (0.0, 0.0, -1.0)
        flat = (toward[0], 0.0, toward[2])
        return g.look_rotation(flat) if g.length(flat) > 1e-9 else g.IDENTITY

    def addobject(self, path):
        """An object (with its parts) from a model file of a kind that
        GetModelFileKinds lists, named after the file. It stands in the middle
        of the world with its front to the camera, shrunk if it is too big
        to see; the output says so, and which files it names are missing."""
        with self.undo.action():
            return models.add_object(self.scene, path, NEW_OBJECT_PLACE,
                                     self._facing_the_camera(NEW_OBJECT_PLACE), self._tell)

    def GetModelFileKinds(self):
        """The extensions (lower case, without the dot) of the model files
        that addobject reads, for the Add Object dialog's filter."""
        return list(self.backend.model_formats())

    def _tell(self, message):
        self._queue.write("output", message + "\n")

    def loadteddyobject(self, path):
        """The object the sketch tool made; the failure text when it can't
        be added, as addobject answers."""
        return self.addobject(path)

    def replaceobject(self, name, path):
        """The object name drawn anew from the file the paint tool saved."""
        thing = self.scene.find(str(name))
        if thing is None:
            return "replaceobject: there is no object called %s" % (name,)
        return models.replace(thing, path)

    def AddText(self, text):
        """Solid letters standing in the middle of the world, facing the camera."""
        if str(text):
            with self.undo.action():
                models.add_text(self.scene, str(text), NEW_OBJECT_PLACE,
                                self._facing_the_camera(NEW_OBJECT_PLACE))
        return None

    def InitializeSound(self):
        self.backend.start_sound()
        return None

    def AddSound(self, path):
        """A sound of the scene from a .wav file."""
        with self.undo.action():
            return self.sounds.add(path)

    def isvalidname(self, text):
        """The text can name a new object: a Python name that no object or
        sound has, in any capitals, and no name the world's code relies on."""
        return self.scene.is_free_name(str(text))

    def SetCurrentObject(self, name):
        thing = self.scene.find(str(name))
        if thing is not None:
            self.scene.namespace["_CurrentlySelectedObject"] = thing
        return None

    def PrepareObjectMenu(self, name):
        """[camera present, name, kind, id, is a model, first class,
        lit (-1) or unlit (0), filling (0 points, 64 lines, 128 solid), texture (1/0)].
        For a name that no object has, a menu with nothing to act on: no
        camera to point, not a model, kind and id empty."""
        thing = self.scene.find(str(name))
        if thing is None:
            return [False, str(name), "", "", False, False, 0, 128, 0]
        filling = {"points": 0, "lines": 64}.get(thing.filling.lower(), 128)
        return [bool(self.scene.cameras()), thing.name, thing.kind, str(thing.id),
                thing.kind == "model", thing.first_class,
                -1 if thing.lighting.lower() == "lit" else 0, filling, 1 if thing.texture else 0]

    # -- camera window ------------------------------------------------------

    def imagenavigator(self, width, height, hostId):
        """The camera view, width x height pixels, in the front end's window hostId."""
        return self.backend.open_view(int(width), int(height), int(hostId))

    def setimagenavigatorparent(self, hostId):
        return self.backend.move_view(int(hostId))

    def setimagenavigatorsize(self, width, height):
        self.backend.resize_view(int(width), int(height))
        return None

    def SetImageNavigatorCollisionDetectionOn(self):
        """The camera, driven from the view, stops short of objects."""
        self.view_input.collisions = True

    def SetImageNavigatorCollisionDetectionOff(self):
        self.view_input.collisions = False

    def StartInspector(self):
        """A drag in the view turns the camera round what it started on."""
        self.view_input.inspecting = True
        return None

    def StopInspector(self):
        self.view_input.inspecting = False
        return None

    def setrenderwindowfocus(self):
        return self.backend.focus_view()

    def GetFPS(self):
        return self.backend.frames_per_second()

    def CheckForHardwareAcceleration(self):
        return self.backend.hardware_accelerated()

    def SetAcceleration(self, on):
        """1: the high-quality drawing path (shadows, smooth edges); 0: the light one."""
        return self.backend.set_acceleration(bool(int(on)))

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


def _not_available_yet(name):
    def method(self, *args):
        return "%s is not available yet in this version of the engine." % name
    method.__name__ = method.__qualname__ = name
    return method


for _name in NOT_YET:
    setattr(Interpreter, _name, _not_available_yet(_name))
