"""The names that the world's Python code finds in the engine's namespace."""

import builtins
import itertools
import keyword

from . import mistakes, policy, vocabulary
from .animation import DoInOrder, DoTogether
from .commands import COMMAND_NAMES


class UndoNames:
    """`Vessa.Undo`: Push(None, '[') ... Push(None, ']') groups steps."""

    name = "Vessa.Undo"

    def __init__(self, stack):
        self._stack = stack

    def Push(self, step, bracket=None):
        self._stack.push(step, bracket)


class VessaNames:
    """The object called `Vessa` in the world's namespace."""

    name = "Vessa"

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


# The names every world starts with, besides its words, objects and sounds:
# each made for one engine.
LANGUAGE = {
    "Vessa": VessaNames,
    "DoInOrder": lambda e: lambda *animations: e.animator.block(DoInOrder, animations),
    "DoTogether": lambda e: lambda *animations: e.animator.block(DoTogether, animations),
    "Wait": lambda e: e.scene.root.Wait,
    "PlaySound": lambda e: e.scene.root.PlaySound,
    "PlaySystemSound": lambda e: e.sounds.play_system,
    "playsystemsound": lambda e: e.sounds.play_system,
    "Playsound": lambda e: e.sounds.play,
    "undo": lambda e: e.undo.undo,
    "PreserveHandbasket": lambda e: e.handbasket.preserve,
    "RestoreHandbasket": lambda e: e.handbasket.restore,
    "MakeThisTheOpeningScene": lambda e: e.handbasket.preserve,
    "getdefaultcamera": lambda e: e.default_camera,
    "_CurrentlySelectedObject": lambda e: e.scene.root,
}

# Names the front end's own statements use: the camera in the object menu's
# statements, the event a response is given, the word it turns into the
# camera's window.
FRONT_END_NAMES = ("c", "ev", "AnyWhere")
# Private names, and the functions the generator writes for key responses.
RESERVED_PREFIXES = ("_", "tvdef_")

# An object or sound named like one of these would hide it from the world's
# code, or it from the world; capitals don't tell names apart.
RESERVED = frozenset(vocabulary.key(name) for name in itertools.chain(
    LANGUAGE, vocabulary.WORDS, COMMAND_NAMES, FRONT_END_NAMES,
    keyword.kwlist, keyword.softkwlist, dir(builtins)))


def is_reserved(name):
    return vocabulary.key(name) in RESERVED or vocabulary.key(name).startswith(RESERVED_PREFIXES)


def refusal(name):
    """Why name can't name an object or a sound, whatever the world holds;
    None when it can."""
    if not (isinstance(name, str) and name.isidentifier()):
        return mistakes.text("why_letters")
    if is_reserved(name):
        return mistakes.text("why_reserved", name=name)
    return None


def part_refusal(name):
    """Why name can't name a part, which the world reaches through its
    object (Bunny.Head); None when it can."""
    if not (isinstance(name, str) and name.isidentifier()):
        return mistakes.text("why_letters")
    if keyword.iskeyword(name) or name.startswith("_"):
        return mistakes.text("why_reserved", name=name)
    return None


def build(engine):
    """engine offers scene, animator, undo, handbasket and sounds."""
    names = {"__name__": "__main__", "__builtins__": policy.user_builtins()}
    names.update(vocabulary.WORDS)
    names.update((name, make(engine)) for name, make in LANGUAGE.items())
    for thing in engine.scene.living():
        if thing.first_class:
            names[thing.name] = thing
    names.update(engine.sounds.names())
    return names
