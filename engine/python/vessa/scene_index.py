"""What the scene keeps up to date as objects are made, renamed, destroyed
and brought back, so that finding an object by its name, the cameras, and a
free numbered name cost as little in a world of ten thousand objects as in
one of ten.

Names are compared whatever their capitals, as everywhere in the engine.
"""

import heapq

DIGITS = "0123456789"
FIRST_NUMBER = 2        # a copy of Ground is Ground2
MOST_DIGITS = 15        # a number counting will never reach


class LivingIndex:
    """The living objects: by id, by full name and, for cameras, by kind.
    Objects come out in the order they were made (by id), which is the order
    a world's responses and its first camera follow, however often an object
    has been destroyed and brought back since."""

    def __init__(self):
        self.clear()

    def clear(self):
        self._living = {}           # id -> thing, in order of id unless _shuffled
        self._shuffled = False
        self._by_name = {}          # lower-cased full name -> {id: thing}
        self._cameras = {}          # id -> thing

    def add(self, thing):
        if thing.id in self._living:
            return
        if self._living and thing.id < next(reversed(self._living)):
            self._shuffled = True
        self._living[thing.id] = thing
        self._by_name.setdefault(thing.name.lower(), {})[thing.id] = thing
        if thing.kind == "camera":
            self._cameras[thing.id] = thing

    def remove(self, thing):
        """thing leaves; answers whether it was there."""
        if self._living.pop(thing.id, None) is None:
            return False
        self._forget_name(thing, thing.name)
        self._cameras.pop(thing.id, None)
        return True

    def renamed(self, thing, old_name):
        """thing, living, is now called thing.name instead of old_name."""
        if thing.id not in self._living:
            return
        self._forget_name(thing, old_name)
        self._by_name.setdefault(thing.name.lower(), {})[thing.id] = thing

    def _forget_name(self, thing, name):
        key = name.lower()
        named = self._by_name.get(key, {})
        named.pop(thing.id, None)
        if not named:
            self._by_name.pop(key, None)

    def find(self, name):
        """The living object of that full name; of two (for a moment, as a
        world is put back) the older one."""
        named = self._by_name.get(str(name).lower())
        return named[min(named)] if named else None

    def living(self):
        if self._shuffled:
            self._living = dict(sorted(self._living.items()))
            self._shuffled = False
        return list(self._living.values())

    def cameras(self):
        return [self._cameras[i] for i in sorted(self._cameras)]


class NumberedNames:
    """Where to look for the first free name of a stem and a number
    (Ground2, Ground3, ...): each number is looked at once as the world
    fills, and a number below that whose name is let go is remembered, so
    that the first free name stays the first whatever the world's size."""

    def __init__(self):
        self.clear()

    def clear(self):
        self._next = {}     # stem key -> the lowest number not looked at yet
        self._let_go = {}   # stem key -> heap of numbers below it whose names were let go

    def first_free(self, stem, is_free):
        """stem with the lowest number from 2 whose name is_free(name)."""
        key = stem.lower()
        let_go = self._let_go.get(key)
        while let_go:
            name = "%s%d" % (stem, let_go[0])
            if is_free(name):
                return name
            heapq.heappop(let_go)
        number = self._next.get(key, FIRST_NUMBER)
        while not is_free("%s%d" % (stem, number)):
            number += 1
        self._next[key] = number
        return "%s%d" % (stem, number)

    def let_go(self, name):
        """name is no longer taken."""
        stem = name.rstrip(DIGITS)
        digits = name[len(stem):]
        if not digits or digits[0] == "0" or len(digits) > MOST_DIGITS:
            return
        key, number = stem.lower(), int(digits)
        if FIRST_NUMBER <= number < self._next.get(key, FIRST_NUMBER):
            heapq.heappush(self._let_go.setdefault(key, []), number)
