"""Animations: what a command does over time, blocks that sequence them, and
the animator that runs them by the clock.

A command called on its own is pending: it starts at the next Loop() step,
at the time it was made. Handing it to DoInOrder or DoTogether takes it off
the pending list, so it runs only as part of the block. Values never jump:
each step of a sequence begins where the one before it ended, at that exact
time, however coarse the steps of Loop() are.

A mistake that shows only when a step begins or ends (an object to see by
that is gone, a parent that would become its own child) is told through the
animator, and that step is passed over: the rest of the world goes on.

What an animation changes belongs to the undo step of the action that made
or started it (undo_step), however much later it runs.
"""

STOPPED, RUNNING, DONE = "stopped", "running", "done"


class Animation:
    where = None        # (source tag, line) of the world's code that made it, once made

    def __init__(self, animator):
        self._animator = animator
        self.state = STOPPED
        self.undo_step = None

    def stop(self):
        """Stops the animation where it is (and keeps it from starting)."""
        self._animator.forget(self)
        if self.state == RUNNING:
            self._halt()
        self.state = STOPPED
        return self

    def Start(self):
        """Starts the animation now, from the beginning."""
        self._animator.start(self)
        return self

    def Copy(self):
        """A stopped animation that does the same again."""
        return self._copy()

    start, copy = Start, Copy

    def _copy(self):
        raise NotImplementedError

    def begin(self, when, on_done):
        raise NotImplementedError

    def _halt(self):
        raise NotImplementedError


class Primitive(Animation):
    """One command on one object. prepare() answers the changes to make,
    [(node id, channel, delta), ...], computed when the command begins;
    finish() does what happens at the end (hide, destroy, reparent)."""

    _tweens = frozenset()   # its running tweens' ids, once begun

    def __init__(self, animator, label, duration, style, prepare, finish=None):
        super().__init__(animator)
        self.label = label
        self.duration = max(float(duration), 0.0)
        self.style = style
        self._prepare, self._finish = prepare, finish
        self._on_done = None
        self._end = 0.0

    def __repr__(self):
        return "<%s>" % self.label

    def _copy(self):
        twin = Primitive(self._animator, self.label, self.duration, self.style,
                         self._prepare, self._finish)
        twin.where = self.where
        return twin

    def begin(self, when, on_done):
        self.state, self._on_done, self._end = RUNNING, on_done, when + self.duration
        try:
            with self._animator.changing(self):
                changes = self._prepare() if self._prepare else []
        except Exception as exc:
            self._animator.failed(self, exc)
            self.state, self._end = DONE, when
            on_done(self, when)
            return
        self._tweens = set(self._animator.add_tweens(self, changes, when, self.duration, self.style))

    def tween_done(self, tween_id):
        self._tweens.discard(tween_id)
        if self._tweens or self.state != RUNNING:
            return
        self.state = DONE
        if self._finish:
            try:
                with self._animator.changing(self):
                    self._finish()
            except Exception as exc:
                self._animator.failed(self, exc)
        self._on_done(self, self._end)

    def _halt(self):
        self._animator.cancel(self._tweens)
        self._tweens = set()


class Block(Animation):
    """Its children are the animations it is given. A hand-written statement
    written among them has run by the time the block is made, as Python
    runs it; what it gives back (None, mostly) is passed over."""

    def __init__(self, animator, children):
        super().__init__(animator)
        self.children = [child for child in children if isinstance(child, Animation)]
        for child in self.children:
            animator.forget(child)
        self._on_done = None

    def __repr__(self):
        return "%s(%s)" % (type(self).__name__, ", ".join(map(repr, self.children)))

    def _copy(self):
        twin = type(self)(self._animator, [c.Copy() for c in self.children])
        twin.where = self.where
        return twin

    def _halt(self):
        for child in self.children:
            if child.state == RUNNING:
                child.stop()

    def _begin_child(self, child, when):
        child.undo_step = self.undo_step
        child.begin(when, self._child_done)


class DoInOrder(Block):
    """Its animations one after the other: as long as all of them together."""

    def begin(self, when, on_done):
        self.state, self._on_done, self._next = RUNNING, on_done, 0
        self._child_done(None, when)

    def _child_done(self, child, when):
        if self.state != RUNNING:
            return
        if self._next == len(self.children):
            self.state = DONE
            self._on_done(self, when)
            return
        child = self.children[self._next]
        self._next += 1
        self._begin_child(child, when)


class DoTogether(Block):
    """Its animations all at once: as long as the longest of them."""

    def begin(self, when, on_done):
        self.state, self._on_done = RUNNING, on_done
        self._open, self._end = len(self.children), when
        if not self.children:
            self._child_done(None, when)
        for child in self.children:
            self._begin_child(child, when)

    def _child_done(self, child, when):
        if self.state != RUNNING:
            return
        self._open -= 1
        self._end = max(self._end, when)
        if self._open <= 0:
            self.state = DONE
            self._on_done(self, self._end)


class Animator:
    def __init__(self, backend, clock, undo, on_activity):
        """undo: the engine's UndoStack. on_activity(bool) is told when
        animations start running and when the last one has ended."""
        self.backend = backend
        self.clock = clock
        self._undo = undo
        self._on_activity = on_activity
        self.where = lambda: None                   # where in the world's code it runs now
        self.on_mistake = lambda exc, where: None   # hears of a step that failed
        self._owners = {}       # tween id -> Primitive
        self._pending = {}      # Animation -> time it was made
        self._running = set()
        self._active = False

    def now(self):
        return self.clock.now()

    def made(self, animation):
        animation.where = self.where()
        animation.undo_step = self._undo.current()
        self._pending[animation] = self.now()

    def failed(self, animation, exc):
        self.on_mistake(exc, animation.where)

    def block(self, kind, children):
        """A DoInOrder or DoTogether made by the world: it starts on its own."""
        block = kind(self, children)
        self.made(block)
        return block

    def forget(self, animation):
        self._pending.pop(animation, None)
        self._running.discard(animation)

    def start(self, animation):
        """Starts animation now, as a part of the action going on."""
        animation.undo_step = self._undo.current()
        self._launch(animation, self.now())

    def _launch(self, animation, when):
        self.forget(animation)
        if animation.state == RUNNING:
            animation.stop()
        self._running.add(animation)
        animation.begin(when, self._ended)

    def changing(self, animation):
        """Where what animation changes is undone: with its action."""
        return self._undo.joining(animation.undo_step)

    def _ended(self, animation, when):
        self._running.discard(animation)

    def busy(self):
        return bool(self._pending or self._running)

    def stop_all(self):
        self._pending.clear()
        for animation in list(self._running):
            animation.stop()
        self._running.clear()
        self._tell_activity()

    def add_tweens(self, owner, changes, start, duration, style):
        changes = changes or [(None, None, None)]   # a timer marks the end
        ids = [self.backend.add_tween(node, channel, delta, start, duration, style)
               for node, channel, delta in changes]
        for tween_id in ids:
            self._owners[tween_id] = owner
        return ids

    def cancel(self, tween_ids):
        for tween_id in tween_ids:
            self._owners.pop(tween_id, None)
            self.backend.cancel(tween_id)

    def step(self):
        now = self.now()
        pending, self._pending = self._pending, {}
        for animation, made_at in pending.items():
            self._launch(animation, made_at)
        finished = self.backend.step(now)
        while finished:
            for tween_id in finished:
                owner = self._owners.pop(tween_id, None)
                if owner is not None:
                    owner.tween_done(tween_id)
            finished = self.backend.step(now)   # steps begun inside this one
        self._tell_activity()

    def _tell_activity(self):
        active = self.busy()
        if active != self._active:
            self._active = active
            self._on_activity(active)
