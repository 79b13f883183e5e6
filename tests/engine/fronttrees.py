"""The front end's object and sound trees as the difference records build
them, strictly: a record about a node that isn't there fails, as it does in
the front end, where the rest of the batch is then lost."""


class TreeFailure(Exception):
    pass


class FrontTrees:
    def __init__(self):
        self.objects = {}           # key -> [parent key or None, name]
        self.junk = {}
        self.sounds = {}            # key -> name, the scene's sounds
        self.sound_junk = {}        # key -> name, sounds out of the scene
        self.none_key = None

    def forget_world(self):
        """What the front end does before it loads a world."""
        self.objects.clear()
        self.sounds.clear()
        self.sound_junk.clear()

    def names(self):
        return sorted(name for _, name in self.objects.values())

    def sound_names(self):
        return sorted(self.sounds.values())

    def take(self, batch):
        self._current = None
        self._sound_failure_taken = False
        index = 0
        while index < len(batch):
            index += self._record(batch, index)

    def _node(self, tree, key):
        if key not in tree:
            raise TreeFailure("no node %s" % key)
        return tree[key]

    def _record(self, batch, index):
        record = batch[index]
        tag, item = record[0].lower(), record[1]
        if tag != "soundnamechange":
            current, self._current = self._current, None    # any other record moves it
        if tag == "objectconstruct":
            return self._construct(batch, index)
        if tag == "objectparentchange":
            self._node(self.objects, "k" + item)[0] = (
                None if record[3] == self.none_key else self._known("k" + record[3]))
        elif tag == "objectnamechange":
            self._node(self.objects, "k" + item)[1] = record[3]
        elif tag == "objectdestruct":
            self.junk["k" + item] = self.objects.pop("k" + item, None) or self._fail(item)
        elif tag == "objectresurrect":
            self.objects["k" + item] = self.junk.pop("k" + item, None) or self._fail(item)
        elif tag == "soundnamechange":
            self._sound_name(record)
        elif tag == "sceneaddsound":
            key = current or self._fail("current node")
            self.sounds[key] = self.sound_junk.pop(key, None) or self._fail(key)
        elif tag == "sceneremovesound":
            key = "s" + record[2]
            self.sound_junk[key] = self.sounds.pop(key, None) or self._fail(key)
        return 1

    def _known(self, key):
        self._node(self.objects, key)
        return key

    def _fail(self, what):
        raise TreeFailure("no node %s" % what)

    def _construct(self, batch, index):
        key, kind = "k" + batch[index][1], batch[index][2].lower()
        if kind == "sound":
            self.sound_junk["s" + batch[index][1]] = "Placeholder"
            self._current = "s" + batch[index][1]
            return 1
        if kind == "none":
            self.none_key = batch[index][1]
        if kind in ("none", "junkyard"):
            return 1
        if key in self.objects:
            raise TreeFailure("key %s is not unique" % key)
        following = batch[index + 1:index + 3]
        if (len(following) == 2 and following[0][0] == "objectparentchange"
                and following[1][0] == "objectnamechange" and following[0][3] != self.none_key):
            self.objects[key] = [self._known("k" + following[0][3]), following[1][3]]
            return 3
        self.objects[key] = [None, "Placeholder"]
        return 1

    def _sound_name(self, record):
        key = "s" + record[1]
        if key in self.sound_junk:
            self.sound_junk[key] = record[3]
            self._current = key
            return
        # a sound of the scene: the front end gets here by its error
        # handler, which it takes once in a batch
        if self._sound_failure_taken:
            raise TreeFailure("a second rename of a scene sound in one batch")
        self._sound_failure_taken = True
        self._node(self.sounds, key)
        self.sounds[key] = record[3]
