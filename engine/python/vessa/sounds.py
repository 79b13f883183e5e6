"""The scene's sounds, and the sounds of the program's own interface.

A sound of the scene is a name in the world's namespace (`Pop`), listed in
the front end's sound tree by the records it sends: a new one as construct,
name, sceneaddsound; removed as sceneremovesound; renamed as
soundnamechange. Commands that take a sound file's name (PlaySound) take a
sound as well. The backend plays them; without a sound device that is
silent. A sound that can't be played is reported in the output, and nothing
else changes.
"""

import os

from . import models, records
from .mistakes import Mistake, checked

# The interface's sounds: <home>/Sounds/<name>.wav; missing files are silent.
SYSTEM_SOUNDS = ("Error", "Undo", "Copy", "RadioButton", "TreeCollapse", "TreeExpand",
                 "TreeDrop", "Selection", "DoLine")


@checked
class Sound:
    def __init__(self, shelf, sound_id, name, path):
        self._shelf, self.id, self.name, self.path = shelf, sound_id, name, path
        self.in_scene = True

    def __repr__(self):
        return self.name

    def GetName(self):
        return self.name

    def Rename(self, new_name):
        self._shelf.rename(self, str(new_name))

    rename = Rename

    def Play(self, Volume=1):
        self._shelf.play(self, Volume)


def _lies_in(path, folder):
    return os.path.dirname(os.path.abspath(path)) == os.path.abspath(folder)


def names_a_sound(value):
    """A sound of the scene, or a text naming one or a sound file."""
    return isinstance(value, (str, Sound))


class SoundShelf:
    def __init__(self, scene, queue, home):
        """home() answers the program's home folder, ending in a separator."""
        self._scene, self._queue, self._home = scene, queue, home
        self._sounds = []

    def in_scene(self):
        return [sound for sound in self._sounds if sound.in_scene]

    def find(self, name):
        wanted = str(name).lower()
        for sound in self.in_scene():
            if sound.name.lower() == wanted:
                return sound
        return None

    def names(self):
        """The namespace entries of the scene's sounds."""
        return {sound.name: sound for sound in self.in_scene()}

    # -- joining and leaving the scene ------------------------------------

    def add(self, path):
        """A new sound of the scene from a file; None, or why it can't be."""
        path = os.path.abspath(str(path))
        failure = self._scene.backend.load_sound(path)
        if failure:
            return failure
        name = models.valid_name(os.path.splitext(os.path.basename(path))[0], "Sound")
        if not self._scene.is_free_name(name):
            name = self._scene.unique_name(name)
        self._enter(name, path)
        self._scene.changed()
        return None

    def _enter(self, name, path):
        sound = Sound(self, self._scene.new_id(), name, path)
        self._sounds.append(sound)
        self._queue.add_tree(records.object_construct(sound.id, "sound"))
        self._queue.add_tree(records.sound_name_change(sound.id, "", name))
        self._queue.add_tree(records.scene_add_sound(self._scene.root.id, sound.id))
        self._scene.namespace[name] = sound
        self._scene.remember(lambda: self.remove(sound))

    def remove(self, given):
        sound = given if isinstance(given, Sound) else self.find(given)
        if sound is None or not sound.in_scene:
            raise Mistake("no_sound", name=str(given),
                          among=lambda: [known.name for known in self.in_scene()])
        self._take_out(sound)
        self._scene.remember(lambda: self._put_back(sound))
        self._scene.changed()

    def _take_out(self, sound):
        sound.in_scene = False
        self._unbind(sound)
        self._scene.name_let_go(sound.name)
        self._queue.add_tree(records.scene_remove_sound(self._scene.root.id, sound.id))

    def _put_back(self, sound):
        sound.in_scene = True
        self._scene.namespace[sound.name] = sound
        # the name record makes the sound the one that sceneaddsound moves
        self._queue.add_tree(records.sound_name_change(sound.id, sound.name, sound.name))
        self._queue.add_tree(records.scene_add_sound(self._scene.root.id, sound.id))

    def _unbind(self, sound):
        if self._scene.namespace.get(sound.name) is sound:
            del self._scene.namespace[sound.name]

    def rename(self, sound, new_name):
        why = self._scene.name_refusal(new_name, sound)
        if why is not None:
            raise Mistake("bad_sound_name", sound=sound.name, name=new_name, why=why)
        old = sound.name
        self._set_name(sound, new_name)
        self._scene.remember(lambda: self.rename(sound, old))
        self._scene.changed()

    def _set_name(self, sound, new_name):
        old = sound.name
        self._unbind(sound)
        sound.name = new_name
        self._scene.name_let_go(old)
        if sound.in_scene:
            self._scene.namespace[new_name] = sound
        self._queue.add_tree(records.sound_name_change(sound.id, old, new_name))

    # -- worlds: loading, saving, the handbasket --------------------------

    def forget_all(self):
        """A world is about to be loaded: the old one's sounds go without a
        record, as the front end empties its sound trees before a load."""
        for sound in self.in_scene():
            self._unbind(sound)
        self._sounds = []

    def load(self, rows, folder):
        """The sounds [(name, file)] of the world in folder. A file that
        can't be played is reported; its sound stays, so that the world's
        script still finds the name."""
        for name, file_name in rows:
            path = os.path.join(os.path.abspath(folder), file_name)
            failure = self._scene.backend.load_sound(path)
            if failure:
                self._queue.write("output", failure + "\n")
            self._enter(name, path)

    def keep_in_folder(self, folder, scratch=None):
        """Copies the files of the scene's sounds that live outside folder
        into it (whole or not at all, by way of scratch as models.copy_into
        does), and makes the sounds use the copies. Answers [(name, file
        name in folder)] for the scene file."""
        for sound in self.in_scene():
            if not _lies_in(sound.path, folder):
                sound.path = models.copy_into(sound.path, folder, scratch)
        return self.rows(folder)

    def rows(self, folder):
        """(name, file) of each sound of the scene for the scene file of
        folder: a file there by its name, any other by its whole path."""
        return [(sound.name, os.path.basename(sound.path) if _lies_in(sound.path, folder)
                 else os.path.abspath(sound.path)) for sound in self.in_scene()]

    def snapshot(self):
        return [(sound, sound.name, sound.in_scene) for sound in self._sounds]

    def put_back(self, saved):
        """The sounds as snapshot() found them, each change told by its record."""
        kept = {sound: (name, in_scene) for sound, name, in_scene in saved}
        for sound in self.in_scene():
            if not kept.get(sound, ("", False))[1]:
                self._take_out(sound)
        for sound, (name, in_scene) in kept.items():
            if sound.name != name:
                self._set_name(sound, name)
            if in_scene and not sound.in_scene:
                self._put_back(sound)
        # names that a run swapped between sounds: each is bound to its own again
        self._scene.namespace.update(self.names())
        self._sounds = list(kept)

    # -- playing ----------------------------------------------------------

    def play(self, sound, volume=1):
        """Plays a sound of the scene, by itself or its name, or a sound file.
        One that can't be played is reported, and the world goes on."""
        if not isinstance(sound, Sound):
            sound = self.find(sound) or str(sound)
        path = sound.path if isinstance(sound, Sound) else sound
        failure = self._scene.backend.play_sound(path, float(volume))
        if failure:
            self._queue.write("output", failure + "\n")

    def play_system(self, name):
        path = os.path.join(self._home(), "Sounds", "%s.wav" % name)
        if os.path.isfile(path):
            self._scene.backend.play_sound(path, 1.0)
