"""What is wrong with a mesh, or unusual about it."""

from __future__ import annotations

from typing import Any, Iterator, NamedTuple, Optional

__all__ = ["Place", "Problem", "Report"]

# What helps in Python, where the libraries speak of no function in particular.
_ADVICE = {
    "same-direction": "turn one of the faces round or give it points of its own; quads(), adjacency() "
                      "and edges() take such a mesh with split_edges=True",
    "concave-face": "split them with concave=\"split\"",
    "diagonal-direction": "split these faces another way before adjacency() or quads(), or give them split_edges=True",
}


class Place(NamedTuple):
    """One occurrence: in words, and as the index of a "point", "corner" or "face" ("" for none)."""

    text: str
    element: str
    index: int  # type: ignore[assignment]  # hides a method of tuples


class Problem(NamedTuple):
    """A kind of problem, with how often it occurs and the first few places.

    `severity` is "error" or "warning"; `code` is for programs: "index-out-of-range".
    """

    severity: str
    code: str
    message: str
    count: int  # type: ignore[assignment]  # hides a method of tuples
    places: tuple[Place, ...]
    advice: str

    def line(self) -> str:
        """Message, count, first place and advice on one line."""
        times = "once" if self.count == 1 else f"{self.count} times"
        first = f" ({times}), first at {self.places[0].text}" if self.places else ""
        return f"{self.message}{first}; {self.advice}"

    def __str__(self) -> str:
        places = "".join(f"\n    {place.text}" for place in self.places)
        more = "\n    ..." if 0 < len(self.places) < self.count else ""
        return (f"{self.severity}: {self.count} {self.message} [{self.code}]{places}{more}\n"
                f"    what to do: {self.advice}")


class Report:
    """All problems of a mesh, one entry a kind. True where the mesh has no errors.

    >>> import tessary as ts
    >>> report = ts.validate(ts.demo_mesh(64))
    >>> report.valid, len(report)
    (True, 0)
    """

    __slots__ = ("problems",)

    def __init__(self, problems: tuple[Problem, ...]):
        self.problems = problems

    @property
    def valid(self) -> bool:
        """Whether there are no errors; there may be warnings."""
        return not self.errors

    @property
    def errors(self) -> tuple[Problem, ...]:
        return tuple(problem for problem in self.problems if problem.severity == "error")

    @property
    def warnings(self) -> tuple[Problem, ...]:
        return tuple(problem for problem in self.problems if problem.severity == "warning")

    def find(self, code: str) -> Optional[Problem]:
        """The problem of that kind, or None."""
        return next((problem for problem in self.problems if problem.code == code), None)

    def __iter__(self) -> Iterator[Problem]:
        return iter(self.problems)

    def __len__(self) -> int:
        return len(self.problems)

    def __bool__(self) -> bool:
        return self.valid

    def __str__(self) -> str:
        return "\n".join((["valid"] if self.valid else []) + [str(problem) for problem in self.problems])

    def __repr__(self) -> str:
        kinds = ", ".join(f"{problem.count} {problem.code}" for problem in self.problems)
        return f"<Report {'valid' if self.valid else 'invalid'}{'; ' + kinds if kinds else ''}>"

    def __reduce__(self) -> Any:
        return Report, (self.problems,)


def make_report(problems: list[Any]) -> Report:
    """A report of what the extension module tells."""
    return Report(tuple(
        Problem(severity, code, message, count, tuple(Place(*place) for place in places),
                _ADVICE.get(code, advice))
        for severity, code, message, count, places, advice in problems))
