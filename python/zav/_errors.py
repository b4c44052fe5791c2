# SPDX-License-Identifier: Apache-2.0
"""What the package raises."""

from collections.abc import Sequence
from enum import IntEnum
from typing import NamedTuple

__all__ = ["CaughtAt", "Error", "ErrorCode", "InvalidInput"]


class ErrorCode(IntEnum):
    """The kind of a failure.

    Attributes
    ----------
    Failure
        A step did not work: a file, a network, the runtime.
    InvalidInput
        What the caller gave contradicts itself or a documented range.
    """

    Failure = 1
    InvalidInput = 2


class CaughtAt(NamedTuple):
    """One place in the library's sources that an error passed on its way up.

    Attributes
    ----------
    function
        The signature of the function, as the compiler spells it.
    file
        The path of the source file without its ending.
    line
        The line in that file.
    """

    function: str
    file: str
    line: int


class Error(Exception):
    """A call of the library failed.

    Attributes
    ----------
    code : ErrorCode
        The kind of the failure.
    message : str
        English; empty where code and trail alone tell the failure.
    trail : tuple of CaughtAt
        The places that the error passed in the library, the innermost first; empty for errors that Python found.
    """

    def __init__(self, message: str, trail: Sequence[CaughtAt] = (), code: ErrorCode = ErrorCode.Failure) -> None:
        super().__init__(message, tuple(trail), code)
        self.code = code
        self.message = message
        self.trail = tuple(trail)

    def __str__(self) -> str:
        if self.message:
            return self.message
        places = ", ".join(f"{place.file}:{place.line}" for place in self.trail)
        return f"{self.code.name} at {places}" if places else self.code.name


class InvalidInput(Error, ValueError):
    """What the caller gave contradicts itself or a documented range. Also a `ValueError`."""

    def __init__(self, message: str, trail: Sequence[CaughtAt] = (), code: ErrorCode = ErrorCode.InvalidInput) -> None:
        super().__init__(message, trail, code)


def from_core(code: int, message: str, trail: Sequence[tuple[str, str, int]]) -> Error:
    """Make the exception for an error of the library; the extension module calls this."""
    places = [CaughtAt(*place) for place in trail]
    kind = InvalidInput if code == ErrorCode.InvalidInput else Error
    return kind(message, places)
