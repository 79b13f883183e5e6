"""The scene's sounds, and the sounds of the program's own interface.

A sound of the scene is a name in the world's namespace (`Pop`), listed in
the front end's sound tree by the records it sends: a new one as construct,
name, sceneaddsound; removed as sceneremovesound; renamed as
soundnamechange. A sound is also the text of its file, so commands that
take a file name (PlaySound) take a sound as well. The backend plays them;
without a sound device that is silent. A sound that can't be played is
reported in the output, and nothing else changes.
"""

import os

from . import records
from .mistakes import Mistake
from .models import valid_name

# The interface's sounds: <home>/Sounds/<name>.wav; missing files are silent.
SYSTEM_SOUNDS = ("Error", "Undo", "Copy", "RadioButton", "TreeCollapse", "TreeExpand",
                 "TreeDrop", "Selection", "DoLine")


class Sound(str):
    def __new__(cls, shelf, sound_id, name, path):
        sound = super().__new__(cls, path)
        sound._shelf, sound.id, sound.name, sound.path = shelf, sound_id, name, path
        sound.in_scene = True
        return sound

    def __repr__(self):
        return self.name

    def GetName(self):
        return self.name

    def Rename(self, new_name):
        self._shelf.rename(self, str(new_name))

    rename = Rename

    def Play(self, Volume=1):
        self._shelf.play(self, Volume)


class SoundShelf:
    def __init__(self, scene, queue, home):
        """home() answers the program's home folder, ending in a separator."""
        self._scene, self._queue, self._home = scene, queue, home
        self._sounds = []

    def find(self, name):
        wanted = str(name).lower()
        for sound in self._sounds:
            if sound.in_scene and sound.name.lower() == wanted:
                return sound
        return None

    def add(self, path):
        """A new sound of the scene from a file; None, or why it can't be."""
        path = os.path.abspath(str(path))
        failure = self._scene.backend.load_sound(path)
        if failure:
            return failure
        name = valid_name(os.path.splitext(os.path.basename(path))[0], "Sound")
        if not self._scene.is_free_name(name):
            name = self._scene.unique_name(name)
        sound = Sound(self, self._scene.new_id(), name, path)
        self._sounds.append(sound)
        self._queue.add_tree(records.object_construct(sound.id, "sound"))
        self._queue.add_tree(records.sound_name_change(sound.id, "", name))
        self._queue.add_tree(records.scene_add_sound(self._scene.root.id, sound.id))
        self._scene.namespace[name] = sound
        self._scene.remember(lambda: self.remove(sound))
        self._scene.changed()
        return None

    def remove(self, sound):
        sound = sound if isinstance(sound, Sound) else self.find(sound)
        if sound is None or not sound.in_scene:
            raise Mistake("There is no sound called %s" % (sound,))
        sound.in_scene = False
        self._scene.namespace.pop(sound.name, None)
        self._queue.add_tree(records.scene_remove_sound(self._scene.root.id, sound.id))
        self._scene.remember(lambda: self._put_back(sound))
        self._scene.changed()

    def _put_back(self, sound):
        sound.in_scene = True
        self._scene.namespace[sound.name] = sound
        # the name record makes the sound the one that sceneaddsound moves
        self._queue.add_tree(records.sound_name_change(sound.id, sound.name, sound.name))
        self._queue.add_tree(records.scene_add_sound(self._scene.root.id, sound.id))

    def rename(self, sound, new_name):
        if not self._scene.is_free_name(new_name):
            raise Mistake("The sound %s can't be called %s: a name has letters, digits and _ "
                          "only, starts with a letter and is not used by anything else"
                          % (sound.name, new_name))
        old = sound.name
        self._scene.namespace.pop(old, None)
        sound.name = new_name
        self._scene.namespace[new_name] = sound
        self._queue.add_tree(records.sound_name_change(sound.id, old, new_name))
        self._scene.remember(lambda: self.rename(sound, old))
        self._scene.changed()

    def clear(self):
        """A new world: the sounds of the old one leave the scene."""
        for sound in [s for s in self._sounds if s.in_scene]:
            sound.in_scene = False
            self._scene.namespace.pop(sound.name, None)
            self._queue.add_tree(records.scene_remove_sound(self._scene.root.id, sound.id))

    def play(self, sound, volume=1):
        """Plays a sound of the scene, by itself or its name, or a sound file.
        One that can't be played is reported, and the world goes on."""
        if not isinstance(sound, Sound):
            sound = self.find(sound) or str(sound)
        failure = self._scene.backend.play_sound(str(sound), float(volume))
        if failure:
            self._queue.write("output", failure + "\n")

    def play_system(self, name):
        path = os.path.join(self._home(), "Sounds", "%s.wav" % name)
        if os.path.isfile(path):
            self._scene.backend.play_sound(path, 1.0)

    def is_sound_name(self, name):
        return self.find(name) is not None
