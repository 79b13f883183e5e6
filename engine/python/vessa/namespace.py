"""The names that the world's Python code finds in the engine's namespace."""

from . import policy, vocabulary
from .animation import DoInOrder, DoTogether


class UndoNames:
    """`Vessa.Undo`: Push(None, '[') ... Push(None, ']') groups steps."""

    def __init__(self, stack):
        self._stack = stack

    def Push(self, step, bracket=None):
        self._stack.push(step, bracket)


class VessaNames:
    """The object called `Vessa` in the world's namespace."""

    def __init__(self, engine):
        self._engine = engine
        self.Undo = UndoNames(engine.undo)
        self.default_parent_window = 0
        self.respond_to_mouse = 0

    def GetDefaultScene(self):
        return self._engine.scene.root

    def _SetDefaultParentWindowHwnd(self, handle):
        self.default_parent_window = int(handle)

    def _SetRespondToMouse(self, tool):
        self.respond_to_mouse = int(tool)


def build(engine):
    """engine offers scene, animator, undo, handbasket and sounds."""
    scene, animator = engine.scene, engine.animator
    names = {"__name__": "__main__", "__builtins__": policy.user_builtins()}
    names.update(vocabulary.WORDS)
    names.update({
        "Vessa": VessaNames(engine),
        "DoInOrder": lambda *animations: animator.block(DoInOrder, animations),
        "DoTogether": lambda *animations: animator.block(DoTogether, animations),
        "Wait": scene.root.Wait,
        "PlaySound": scene.root.PlaySound,
        "PlaySystemSound": engine.sounds.play_system,
        "playsystemsound": engine.sounds.play_system,
        "Playsound": engine.sounds.play,
        "undo": engine.undo.undo,
        "PreserveHandbasket": engine.handbasket.preserve,
        "RestoreHandbasket": engine.handbasket.restore,
        "MakeThisTheOpeningScene": engine.handbasket.preserve,
        "getdefaultcamera": engine.default_camera,
        "_CurrentlySelectedObject": scene.root,
    })
    for thing in scene.living():
        if thing.first_class:
            names[thing.name] = thing
    names.update(engine.sounds.names())
    return names
