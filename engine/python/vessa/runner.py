"""Runs Python text in the world's namespace and reports what went wrong.

Failures of the front end's own statements come back as the call's result;
failures of the user's code go out as difference records.
"""

import re
import textwrap
import warnings

from . import compat, explain, records, reports

USER_SOURCES = frozenset({"<Script Text>", "<treeview>", "<Command Line>", "<On The Fly>"})


def is_user_code(code):
    return code.co_filename in USER_SOURCES


def split_lines(text):
    """Lines as the front end's text boxes count them: CR LF, CR or LF ends one."""
    return re.split(r"\r\n|\r|\n", text)


def _has_code(text):
    return any(line.strip() and not line.lstrip().startswith("#")
               for line in split_lines(text))


class CodeRunner:
    def __init__(self, namespace, queue, capture, watchdog):
        self.namespace = namespace
        self._queue = queue
        self._capture = capture
        self._watchdog = watchdog
        self._engine_globals = reports.engine_globals()
        self._last_compiled = {}    # tag: ((text, mode, warning filters), its code)

    def execute(self, text, tag, mode):
        """Result: None on success, or the failure text for the front end's own
        sources. "single" runs like an interactive prompt: values are printed."""
        if mode == "single":
            if not _has_code(text):
                return None     # an empty prompt line does nothing
            text = text if text.endswith("\n") else text + "\n"   # ends a compound statement
        reports.remember_source(tag, text)
        with self._capture:
            try:
                code = self._compile(text, tag, mode)
            except SyntaxError as exc:
                return self._failed(exc, tag, reports.syntax_detail(exc, tag))
            except (ValueError, RecursionError, MemoryError) as exc:
                # an unknown mode, a NUL character, or a text too deeply nested or too
                # big for the compiler (a sum of 50,000 terms)
                return self._failed(exc, tag, reports.NO_LINE)
            try:
                with self._watchdog:
                    exec(code, self.namespace)
            except BaseException as exc:
                return self._failed(exc, tag, reports.line_detail(exc, (tag,)))
        return None

    def compiles(self, text, tag):
        """Whether text is Python that can run ("exec"); a mistake in it is
        reported to the user as on a run."""
        reports.remember_source(tag, text)
        with self._capture:
            try:
                self._compile(text, tag, "exec")
            except SyntaxError as exc:
                self._failed(exc, tag, reports.syntax_detail(exc, tag))
                return False
            except ValueError as exc:
                self._failed(exc, tag, reports.NO_LINE)
                return False
        return True

    def _compile(self, text, tag, mode):
        """The code of text. A world is run again and again as it stands: the
        code of the last text of each source tag is kept, unless compiling it
        warned of something, which is told at every run."""
        key = (text, mode, list(warnings.filters))
        last = self._last_compiled.get(tag)
        if last is not None and last[0] == key:
            return last[1]
        with warnings.catch_warnings(record=True) as told:
            code = self._compile_anew(text, tag, mode)
        for warning in told:
            warnings.showwarning(warning.message, warning.category, warning.filename,
                                 warning.lineno, warning.file, warning.line)
        if told:
            self._last_compiled.pop(tag, None)
        else:
            self._last_compiled[tag] = (key, code)
        return code

    @staticmethod
    def _compile_anew(text, tag, mode):
        try:
            return compile(text, tag, mode, dont_inherit=True)
        except SyntaxError:
            if tag in USER_SOURCES:
                raise
            # the front end's own statements may still be in Python 2 form
            try:
                return compile(compat.modernize(text), tag, mode, dont_inherit=True)
            except SyntaxError:
                pass
            raise

    def execute_lines(self, text, first, last, tag, mode):
        """Runs lines first to last (zero-based, both included) of text, as if
        they were the whole text: reported lines count from the first one.
        Lines taken from inside a block lose the indentation they share."""
        first, last = max(int(first), 0), int(last)
        if last < first:
            return None
        excerpt = textwrap.dedent("\n".join(split_lines(text)[first:last + 1]) + "\n")
        return self.execute(excerpt, tag, mode)

    def call(self, function, *args):
        """Calls user code from the engine (a response, a scheduled call);
        a failure is reported to the user. Returns True when it succeeded."""
        with self._capture:
            try:
                with self._watchdog:
                    function(*args)
            except BaseException as exc:
                self._report_to_user(exc, reports.line_detail(exc, USER_SOURCES))
                return False
        return True

    def where(self):
        """Where in the user's code the engine is now (a reports.Place); None
        outside it."""
        return reports.current_place(USER_SOURCES, self._engine_globals)

    def tell(self, exc, where):
        """A failure found after the user's code ran (an animation step that
        could not begin), told with the place that made it."""
        if where is None:
            self._report_to_user(exc, reports.NO_LINE)
        else:
            self._report_to_user(exc, where.line, reports.made_at(where))

    def _failed(self, exc, tag, detail):
        if tag not in USER_SOURCES:
            return reports.full_traceback(exc)
        self._report_to_user(exc, detail)
        return None

    def _report_to_user(self, exc, detail, place=""):
        exc = explain.in_world_words(exc, self.namespace, USER_SOURCES)
        self._queue.write("error", place + reports.user_traceback(exc, USER_SOURCES))
        self._queue.add_misc(records.popup_error(reports.novice_message(exc), detail))
