"""Values of the points, corners and faces of meshes."""

from __future__ import annotations

from collections.abc import Iterator, MutableMapping
from typing import TYPE_CHECKING, Any, Optional, Union

import numpy as np

from . import _convert, _tessary
from ._convert import Array
from ._errors import ArgumentError

if TYPE_CHECKING:
    from .geometry import Geometry

__all__ = ["NONE", "Properties", "Property"]

#: The index that names nothing: no neighbour, no value.
NONE = 0xFFFFFFFF

_MODES = ("constant", "linear", "none")
_COMPONENTS = ("point", "corner", "face")


class Property:
    """Values of the points, corners or faces of a mesh.

    Parameters
    ----------
    values : array or list of str
        One for each element, or as many as `indices` name. bool, text, 8- to 64-bit integers, float32, float64,
        rows of 2 to 4 numbers, matrices of 2x2, 2x3, 3x3 and 4x4.
    component : "point", "corner" or "face"
        Empty: the one that has as many elements, when the property is stored.
    indices : uint32 array, optional
        The value of element i is values[indices[i]], or none where the index is `tessary.NONE`.
    interpolation : "linear", "constant" or "none"
        Whether operations blend the values, or pick.
    default : optional
        Stands where there is no value; 0 or "" without.

    >>> import tessary as ts
    >>> mesh = ts.demo_mesh(8)
    >>> mesh.properties["texcoord"]
    <Property texcoord: float32 (297, 2) for 962 corners through indices>
    """

    __slots__ = ("values", "indices", "component", "interpolation", "default", "_name")

    def __init__(self, values: Any, component: str = "", indices: Any = None,
                 interpolation: str = "linear", default: Any = None):
        self.values = values if isinstance(values, np.ndarray) else np.asarray(values)
        self.component = component
        self.indices: Optional[Array] = None if indices is None else _convert.indices(indices, "indices")
        self.interpolation = interpolation
        self.default = default
        self._name = ""

    def per_element(self) -> Array:
        """A value for each element, whether or not there are indices: shape (elements, ...)."""
        if self.indices is None:
            return self.values
        default = np.zeros(self.values.shape[1:], self.values.dtype) if self.default is None else self.default
        padded = np.concatenate([self.values, np.asarray(default, self.values.dtype)[np.newaxis]])
        return np.take(padded, np.minimum(self.indices, len(self.values)), axis=0)

    def __array__(self, dtype: Any = None) -> Array:
        return np.asarray(self.per_element(), dtype)

    def __len__(self) -> int:
        return len(self.values if self.indices is None else self.indices)

    def __repr__(self) -> str:
        name = f"{self._name}: " if self._name else ""
        kind = "text" if self.values.dtype.kind == "U" else str(self.values.dtype)
        through = "" if self.indices is None else " through indices"
        mode = "" if self.interpolation == "linear" else f", interpolation {self.interpolation}"
        return f"<Property {name}{kind} {self.values.shape} for {len(self)} {self.component}s{through}{mode}>"


def _texts(values: list[str]) -> Array:
    # Fixed-width text drops what looks like its padding.
    keeps = not any(text.endswith("\0") for text in values)
    return np.array(values, dtype=np.str_ if keeps and values else object)


class Properties(MutableMapping[str, Property]):
    """The properties of a mesh by name: get, set, delete, iterate.

    Arrays that are set are used in place where their type and order allow it, and kept alive; to change one
    meanwhile is to change the mesh. Arrays that are got can only be read.

    >>> import numpy as np
    >>> import tessary as ts
    >>> mesh = ts.demo_mesh(8)
    >>> mesh.properties["height"] = mesh.points[:, 2]
    >>> mesh.properties["height"]
    <Property height: float32 (256,) for 256 points>
    >>> sorted(mesh.properties)
    ['color', 'face_id', 'height', 'material', 'normal', 'texcoord']
    """

    __slots__ = ("_owner",)

    def __init__(self, owner: Geometry):
        self._owner = owner

    def __getitem__(self, name: str) -> Property:
        found = _tessary.get_property(self._owner._data, name)
        if found is None:
            raise KeyError(name)
        values, indices, component, mode, default = found
        result = Property(_texts(values) if isinstance(values, list) else values, component, indices,
                          _MODES[mode], default)
        result._name = name
        return result

    def __setitem__(self, name: str, value: Any) -> None:
        given = value if isinstance(value, Property) else Property(value)
        values = _convert.attribute(given.values, name)
        count = len(values) if given.indices is None else len(given.indices)
        component = given.component or self._component_of(name, count)
        if component not in _COMPONENTS:
            raise ArgumentError(f"component: one of {_COMPONENTS} is possible; {component!r} is not", "component")
        if given.interpolation not in _MODES:
            raise ArgumentError(f"interpolation: one of {_MODES} is possible; {given.interpolation!r} is not",
                                "interpolation")
        self._owner._data = _tessary.with_property(
            self._owner._data, name, component, values, given.indices, _MODES.index(given.interpolation),
            _default(given.default, values))

    def __delitem__(self, name: str) -> None:
        if name not in self:
            raise KeyError(name)
        self._owner._data = _tessary.without_property(self._owner._data, name)

    def __iter__(self) -> Iterator[str]:
        return (facts[0] for facts in _tessary.property_facts(self._owner._data))

    def __len__(self) -> int:
        return len(_tessary.property_facts(self._owner._data))

    def __repr__(self) -> str:
        return "{" + ", ".join(f"{name!r}: {self[name]!r}" for name in self) + "}"

    def _component_of(self, name: str, count: int) -> str:
        data = self._owner._data
        counts = dict(zip(_COMPONENTS, (data.point_count, data.corner_count, data.face_count)))
        fitting = [component for component, elements in counts.items() if elements == count]
        if len(fitting) == 1:
            return fitting[0]
        known = ", ".join(f"{elements} {component}s" for component, elements in counts.items())
        raise ArgumentError(f"{name}: {count} values do not tell which elements they are for, of {known}; give a "
                            "tessary.Property with its component", name)


def _default(value: Any, values: Union[Array, list[str]]) -> Any:
    if value is None:
        return None
    if isinstance(values, list):
        return str(value)
    return np.ascontiguousarray(np.broadcast_to(np.asarray(value, values.dtype), values.shape[1:])[np.newaxis])
