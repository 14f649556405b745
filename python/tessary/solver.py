"""The contact solver."""

from __future__ import annotations

from typing import Any, Optional

from . import _convert, _tessary
from ._convert import F32, Array
from ._errors import ArgumentError
from .geometry import Progress

__all__ = ["Multicollider"]


class Multicollider:
    """Finds one displacement per collider such that the contacts between several colliders hold at once.

    A contact belongs to a collider g and has a direction n. Paired with every other collider o, it holds the two on one
    side of each other: "behind", g moves no further along n than o, or "ahead". Docs: docs/solver.md.

    Add colliders and, after each, its contacts; then `prepare_pairs()`, and `set_side()` and `ignore()` for the pairs
    that differ; then `solve()`. Or set the arrays directly: getting one makes a copy, setting one replaces it.

    >>> import tessary as ts
    >>> solver = ts.Multicollider()
    >>> left = solver.add_collider(1, (1, 0, 0))
    >>> contact = solver.add_contact((1, 0, 0))
    >>> right = solver.add_collider(1, (0, 0, 0))
    >>> solver.prepare_pairs()
    >>> solver.solve(), solver.displacements.tolist()
    (True, [[0.5, 0.0, 0.0], [0.5, 0.0, 0.0]])
    """

    __slots__ = ("_solver",)

    def __init__(self) -> None:
        self._solver = _tessary.Multicollider()

    def add_collider(self, inverse_mass: float, free_displacement: Any = (0, 0, 0)) -> int:
        """Adds a collider that would move by `free_displacement`; inverse mass 0 holds it. Returns its index."""
        return self._solver.add_collider(_convert.number(inverse_mass, "inverse_mass"),
                                         _convert.vector(free_displacement, "free_displacement"))

    def add_contact(self, direction: Any) -> int:
        """Adds a contact to the collider added last; the direction is used as it is. Returns its index."""
        return self._solver.add_contact(_convert.vector(direction, "direction"))

    def prepare_pairs(self, side: str = "behind", relaxation: float = 1.0) -> None:
        """Makes the pairs of the colliders and contacts so far, without pushes, all on one side."""
        self._solver.prepare_pairs(_is_ahead(side), _convert.number(relaxation, "relaxation"))

    def set_side(self, collider: int, contact: int, other: int, side: str) -> None:
        """Puts the pair of a collider's contact and another collider on a side, without a push."""
        self._solver.set_side(*_pair(collider, contact, other), _is_ahead(side))

    def ignore(self, collider: int, contact: int, other: int) -> None:
        """Lets a pair move freely; `prepare_pairs()` undoes it."""
        self._solver.ignore(*_pair(collider, contact, other))

    def withdraw_pushes(self) -> None:
        """Forgets the pushes of earlier solves, so that the next one starts cold."""
        self._solver.withdraw_pushes()

    def solve(self, *, progress: Optional[Progress] = None) -> bool:
        """Solves for `displacements`, and returns whether the sweeps converged; if not, all are the fallback.

        Starts from `free_displacements` and the pushes of the last solve. Raises ArrayError where arrays that were set
        do not fit together. A solve that is interrupted changes nothing.
        """
        return self._solver.solve(progress)

    @property
    def collider_count(self) -> int:
        return self._solver.collider_count

    @property
    def contact_count(self) -> int:
        return self._solver.contact_count

    @property
    def contact_directions(self) -> Array:
        """(contacts, 3) float32"""
        return self._solver.contact_directions

    @contact_directions.setter
    def contact_directions(self, values: Any) -> None:
        self._solver.contact_directions = _convert.reals(values, "contact_directions", (3,))

    @property
    def contact_offsets(self) -> Array:
        """(colliders + 1,) uint32: collider g has the contacts from entry g up to entry g + 1"""
        return self._solver.contact_offsets

    @contact_offsets.setter
    def contact_offsets(self, values: Any) -> None:
        self._solver.contact_offsets = _convert.indices(values, "contact_offsets")

    @property
    def displacements(self) -> Array:
        """(colliders, 3) float32: the result"""
        return self._solver.displacements

    @displacements.setter
    def displacements(self, values: Any) -> None:
        self._solver.displacements = _convert.reals(values, "displacements", (3,))

    @property
    def free_displacements(self) -> Array:
        """(colliders, 3) float32: the displacements without contacts; or none"""
        return self._solver.free_displacements

    @free_displacements.setter
    def free_displacements(self, values: Any) -> None:
        self._solver.free_displacements = _convert.reals(values, "free_displacements", (3,))

    @property
    def inverse_masses(self) -> Array:
        """(colliders,) float32; 0 holds a collider where it is"""
        return self._solver.inverse_masses

    @inverse_masses.setter
    def inverse_masses(self, values: Any) -> None:
        self._solver.inverse_masses = _convert.reals(values, "inverse_masses", (), F32)

    @property
    def pair_scales(self) -> Array:
        """(contacts * (colliders - 1),) float32: violation to multiplier"""
        return self._solver.pair_scales

    @pair_scales.setter
    def pair_scales(self, values: Any) -> None:
        self._solver.pair_scales = _convert.reals(values, "pair_scales", (), F32)

    @property
    def pair_lambdas(self) -> Array:
        """(contacts * (colliders - 1),) float32: multipliers, whose sign chooses the side"""
        return self._solver.pair_lambdas

    @pair_lambdas.setter
    def pair_lambdas(self, values: Any) -> None:
        self._solver.pair_lambdas = _convert.reals(values, "pair_lambdas", (), F32)

    @property
    def fallback_displacement(self) -> tuple[float, float, float]:
        """Of every collider where the sweeps do not converge."""
        x, y, z = self._solver.fallback_displacement
        return x, y, z

    @fallback_displacement.setter
    def fallback_displacement(self, value: Any) -> None:
        self._solver.fallback_displacement = _convert.vector(value, "fallback_displacement")

    @property
    def tolerance(self) -> float:
        """The largest change of a multiplier that is none."""
        return self._solver.tolerance

    @tolerance.setter
    def tolerance(self, value: float) -> None:
        self._solver.tolerance = _convert.number(value, "tolerance")

    @property
    def max_iterations(self) -> int:
        """The most sweeps."""
        return self._solver.max_iterations

    @max_iterations.setter
    def max_iterations(self, value: int) -> None:
        self._solver.max_iterations = _convert.integer(value, "max_iterations", 0, 2**32 - 1)

    def __repr__(self) -> str:
        return f"<Multicollider {self.collider_count} colliders, {self.contact_count} contacts>"


def _is_ahead(side: str) -> bool:
    if side not in ("behind", "ahead"):
        raise ArgumentError(f"side: \"behind\" or \"ahead\" is possible; {side!r} is not", "side")
    return side == "ahead"


def _pair(collider: int, contact: int, other: int) -> tuple[int, int, int]:
    return (_convert.integer(collider, "collider", 0, 2**32 - 1), _convert.integer(contact, "contact", 0, 2**32 - 1),
            _convert.integer(other, "other", 0, 2**32 - 1))
