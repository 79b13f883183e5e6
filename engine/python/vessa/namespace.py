"""The names that the world's Python code finds in the engine's namespace."""

import builtins


class VessaNames:
    """The object called `Vessa` in the world's namespace."""

    def __init__(self, scene):
        self._scene = scene
        self.default_parent_window = 0
        self.respond_to_mouse = 0

    def GetDefaultScene(self):
        return self._scene.root

    def _SetDefaultParentWindowHwnd(self, handle):
        self.default_parent_window = int(handle)

    def _SetRespondToMouse(self, tool):
        self.respond_to_mouse = int(tool)


def play_system_sound(name):
    """Interface sounds ("Error", "Selection", ...): silent until sound output exists."""


def build(scene):
    namespace = {"__name__": "__main__", "__builtins__": builtins}
    namespace["Vessa"] = VessaNames(scene)
    namespace["PlaySystemSound"] = play_system_sound
    namespace["playsystemsound"] = play_system_sound
    for thing in scene.things.values():
        namespace[thing.name] = thing
    namespace["_CurrentlySelectedObject"] = scene.root
    return namespace
