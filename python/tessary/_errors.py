"""What the package raises. Each error has the fields by which a program decides what to do."""

from __future__ import annotations

import re
from typing import Any, Optional

from .report import Report, make_report

__all__ = ["ArgumentError", "ArrayError", "Cancelled", "Error", "FileError", "InvalidMesh", "OutOfMemory"]


class Error(Exception):
    """What every error of this package is, but for `Cancelled`."""


class FileError(Error, OSError):
    """A file that cannot be read or written.

    Attributes
    ----------
    code : str
        "not-found", "is-folder", "unreadable", "empty", "malformed", "unsupported", "too-large", "exists",
        "no-folder", "unwritable" or "over-limit".
    file : str
    line, byte, row : int or None
        Where in the file: a line counts from 1, a byte and the row of an `element` from 0.
    element : str
        "vertex", "face": what the row belongs to; empty for none.
    """

    def __init__(self, message: str = "", code: str = "", file: str = "", line: Optional[int] = None,
                 byte: Optional[int] = None, element: str = "", row: Optional[int] = None):
        super().__init__(message)
        self.code, self.file = code, file
        self.line, self.byte, self.element, self.row = line, byte, element, row

    def __str__(self) -> str:
        return str(self.args[0]) if self.args else ""


class InvalidMesh(Error, ValueError):
    """A mesh that cannot be worked on; `report` says what is wrong with it, and `name` which file it is."""

    def __init__(self, message: str = "", report: Optional[Report] = None, name: str = ""):
        super().__init__(message)
        self.report = report if report is not None else Report(())
        self.name = name


class ArgumentError(Error, ValueError):
    """An argument that has no meaning, or none for this mesh; `argument` is its name."""

    def __init__(self, message: str = "", argument: str = ""):
        super().__init__(message)
        self.argument = argument


class ArrayError(Error, ValueError):
    """An array that cannot be used.

    Attributes
    ----------
    argument : str
        The argument, or the property, that the array was given for.
    code : str
        "missing", "type", "length", "value", "too-large" or "reserved".
    element : int or None
        The first of its numbers that is to blame, counted from 0 through all of them.
    value : str
        That number.
    """

    def __init__(self, message: str = "", argument: str = "", code: str = "",
                 element: Optional[int] = None, value: str = ""):
        super().__init__(message)
        self.argument, self.code, self.element, self.value = argument, code, element, value


class OutOfMemory(Error, MemoryError):
    """More memory than this process can have; `bytes` would be needed, as far as that is known, else 0."""

    def __init__(self, message: str = "", bytes: float = 0):
        super().__init__(message)
        self.bytes = bytes


class Cancelled(KeyboardInterrupt):
    """Ctrl-C ended a call. It is no `Error`, so that what handles errors does not swallow it."""


def argument_name(name: str) -> str:
    """The Python name of a library's parameter: "creaseProperty" is crease_property."""
    return re.sub(r"(?<=[a-z])[A-Z]", lambda letter: "_" + letter[0].lower(), name)


# Makers of errors, called by the extension module with what the libraries say.

def file_error(message: str, *fields: Any) -> FileError:
    code = fields[0]
    advice = " or replace it with overwrite=True" if code == "exists" else ""
    return FileError(message + advice, *fields)


def invalid_mesh(name: str, problems: list[Any]) -> InvalidMesh:
    report = make_report(problems)
    first = next((problem for problem in report.problems if problem.severity == "error"), None)
    line = first.line() if first else "the mesh has errors"
    return InvalidMesh(f"{name}: {line}" if name else line, report, name)


def argument_error(message: str, argument: str) -> ArgumentError:
    argument = argument_name(argument)
    return ArgumentError(f"{argument}: {message}", argument)


def array_error(message: str, code: str, array: str, element: Optional[int], value: str) -> ArrayError:
    prefix = "" if array in message.split(":")[0] else f"{array}: "
    return ArrayError(prefix + message, array, code, element, value)


def out_of_memory(message: str, needed: float) -> OutOfMemory:
    return OutOfMemory(message, needed)


def error(message: str) -> Error:
    return Error(message)
