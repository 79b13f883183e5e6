"""The engine over its pure-Python backend, for a program that is started many times:
it starts quickly and draws nothing (its saves have no picture)."""

from vessa import Interpreter
from vessa.backend import PythonBackend


class QuickEngine(Interpreter):
    def __init__(self):
        super().__init__(backend=PythonBackend())
