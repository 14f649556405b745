"""One operation over thousands of files, on this machine or a cluster: needs the package dask.

Meshes themselves travel between Dask's workers too, as arguments and results of tasks of your own: their arrays are
pickled as buffers beside the message, without a copy.
"""

from __future__ import annotations

import contextlib
import functools
import glob
import hashlib
import json
import os
import time
import types
from importlib import import_module
from typing import Any, Callable, Iterable, Optional, Union

import numpy as np

try:
    _dask: Any = import_module("dask")
    _tokenize: Any = import_module("dask.base").tokenize
    _ProgressBar: Any = import_module("dask.diagnostics").ProgressBar
except ImportError as error:
    raise ImportError("tessary.dask needs the package dask (Debian: python3-dask, and python3-distributed for "
                      "clusters)") from error

from . import operations
from ._errors import ArgumentError, Error
from ._tessary import __version__
from .geometry import Geometry, Mesh
from .report import Report

__all__ = ["Records", "map_files"]

_MOST_NUMBERS = 64  # of an array in a record
_Operation = Union[str, Callable[[Mesh], Any]]


class Records(list[dict[str, Any]]):
    """What became of each file, a dictionary each, in the order of the files.

    file, output     paths as they were given; output is "" without one
    status           "done", "skipped" (it was done before) or "failed"
    seconds          of work
    points, faces    of the mesh that was read, or None
    warnings         one line for each thing that was left out
    value            what the operation returned, if it was no mesh, as plain numbers, texts, lists, dictionaries
    error, message   of a failure: the type, and one line for people
    """

    @property
    def failures(self) -> Records:
        return Records(record for record in self if record["status"] == "failed")

    def counts(self) -> dict[str, int]:
        """How many were done, skipped, failed."""
        return {status: sum(record["status"] == status for record in self)
                for status in ("done", "skipped", "failed")}

    def to_dataframe(self, npartitions: int = 1) -> Any:
        """The same as a dask.dataframe; needs pandas."""
        try:
            pandas: Any = import_module("pandas")
            dataframe: Any = import_module("dask.dataframe")
        except ImportError as error:
            raise Error("a dataframe needs the package pandas, which is not installed") from error
        return dataframe.from_pandas(pandas.DataFrame(list(self)), npartitions=npartitions)

    def __repr__(self) -> str:
        counts = ", ".join(f"{count} {status}" for status, count in self.counts().items())
        return f"<Records of {len(self)} files: {counts}>"


def map_files(pattern: Union[str, os.PathLike[str], Iterable[Any]], operation: _Operation,
              output: Optional[str] = None, client: Any = None, *, overwrite: bool = False,
              progress: bool = True) -> Records:
    """Reads each file, runs an operation on the mesh, and writes what it makes.

    Parameters
    ----------
    pattern : str or paths
        "frames/**/*.ply", or a list of paths. Files are taken in the order of their names.
    operation : callable or str
        Is given a Mesh; functools.partial(tessary.sample, distance="2%") fits, and so does "triangulate". A mesh or
        point cloud that it returns is written in the format of the output's ending, arrays by name (a dictionary or a
        named tuple) to ".npz", anything else to ".json", and small values into the record too.
    output : str, optional
        A path with the place of the file's name: "out/{stem}.ply"; {name} is the name with its ending, {index} its
        number. Folders are made.
    client : dask.distributed.Client, optional
        Whose workers see the same files under the same paths. Without one, the threads of this process do the work.
    overwrite : bool
        Whether everything is done anew, and files of others are replaced.
    progress : bool
        Whether Dask's bar is shown.

    Returns Records. A file that fails stops no other. Ctrl-C stops all, and what is finished stays.

    Called again, what is finished is skipped: where file, operation with its arguments, version and output have the
    content that they had, as noted in a folder .tessary beside the output. An operation's own code counts, but not
    what it calls. A worker that dies loses nothing: others do its files.

    >>> import tempfile, tessary as ts
    >>> from tessary.dask import map_files
    >>> folder = tempfile.mkdtemp()
    >>> warnings = ts.demo_mesh(8).save(folder + "/a.ply")
    >>> map_files(folder + "/*.ply", "triangulate", folder + "/out/{stem}.obj", progress=False)
    <Records of 1 files: 1 done, 0 skipped, 0 failed>
    >>> map_files(folder + "/*.ply", "triangulate", folder + "/out/{stem}.obj", progress=False)
    <Records of 1 files: 0 done, 1 skipped, 0 failed>
    """
    files = _files(pattern)
    outputs = _outputs(files, output)
    work = _Work(_callable(operation), _key(operation), overwrite, os.getcwd())
    if client is None:
        return Records(_run_here(work, files, outputs, progress))
    return Records(_run_on(client, work, files, outputs, progress))


def _files(pattern: Any) -> list[str]:
    if isinstance(pattern, (str, os.PathLike)):
        files = sorted(glob.glob(os.fspath(pattern), recursive=True))
        return [file for file in files if os.path.isfile(file)]
    return [os.fspath(path) for path in pattern]


def _outputs(files: list[str], output: Optional[str]) -> list[str]:
    if output is None:
        return [""] * len(files)
    made: dict[str, str] = {}
    for index, file in enumerate(files):
        name = os.path.basename(file)
        try:
            path = os.fspath(output).format(stem=os.path.splitext(name)[0], name=name, index=index)
        except (KeyError, IndexError, ValueError) as error:
            raise ArgumentError(f"output: {{stem}}, {{name}} and {{index}} can be filled in, not {error}",
                                "output") from None
        if path in made:
            raise ArgumentError(f"output: {made[path]} and {file} would both become {path}; name them apart with "
                                "{stem}, {name} or {index}", "output")
        made[path] = file
    return list(made)


def _callable(operation: _Operation) -> Callable[[Mesh], Any]:
    if isinstance(operation, str):
        found = getattr(operations, operation, None)
        if operation not in operations.__all__ or not isinstance(found, types.FunctionType):
            raise ArgumentError(f"operation: there is no {operation!r}", "operation")
        return found
    if not callable(operation):
        raise ArgumentError(f"operation: a function of a mesh is wanted, not {operation!r:.60}", "operation")
    return operation


def _run_here(work: _Work, files: list[str], outputs: list[str], progress: bool) -> list[dict[str, Any]]:
    tasks = [_dask.delayed(work, pure=False)(file, output) for file, output in zip(files, outputs)]
    with _ProgressBar() if progress else contextlib.nullcontext():
        return list(_dask.compute(*tasks, scheduler="threads"))


def _run_on(client: Any, work: _Work, files: list[str], outputs: list[str], progress: bool) -> list[dict[str, Any]]:
    distributed: Any = import_module("distributed")
    futures = client.map(work, files, outputs, pure=False)
    try:
        if progress:
            distributed.progress(futures, notebook=False)
        distributed.wait(futures)
    except BaseException:
        client.cancel(futures)
        raise
    # A file that brings down one worker after the other fails by itself.
    return [future.result() if future.status == "finished" else _failed(_record(file, output), future.exception())
            for future, file, output in zip(futures, files, outputs)]


def _record(file: str, output: str) -> dict[str, Any]:
    return {"file": file, "output": output, "status": "started", "seconds": 0.0, "points": None, "faces": None,
            "warnings": [], "value": None, "error": "", "message": ""}


def _failed(record: dict[str, Any], error: BaseException) -> dict[str, Any]:
    message = " ".join(str(error).split()) or repr(error)
    return {**record, "status": "failed", "error": type(error).__name__, "message": message}


class _Work:
    """What is done with each file, by whichever worker."""

    def __init__(self, operation: Callable[[Mesh], Any], key: str, overwrite: bool, folder: str):
        self._operation, self._key, self._overwrite, self._folder = operation, key, overwrite, folder

    def __call__(self, file: str, output: str) -> dict[str, Any]:
        record, begin = _record(file, output), time.perf_counter()
        note = _Note(self._path(output)) if output else None
        try:
            self._do(record, note)
        except Exception as error:
            record = _failed(record, error)
        record["seconds"] = round(time.perf_counter() - begin, 6)
        if note and record["status"] != "skipped":
            note.write(record)
        return record

    def _path(self, path: str) -> str:
        return os.path.join(self._folder, path)

    def _do(self, record: dict[str, Any], note: Optional[_Note]) -> None:
        source = self._path(record["file"])
        if note and note.begin({"source": _digest(source), "operation": self._key}, record, self._overwrite):
            return
        mesh = operations.read(source, threads=1)
        record["points"], record["faces"], record["warnings"] = mesh.point_count, mesh.face_count, list(mesh.warnings)
        result = self._operation(mesh)
        if isinstance(result, Geometry):
            record["warnings"] += result.warnings
        else:
            record["value"] = _plain(result)
        if note:
            record["warnings"] += _save(result, note.output)
            note.digests["output"] = _digest(note.output)
        record["status"] = "done"


class _Note:
    """What is known about an output, in a file beside it."""

    def __init__(self, output: str):
        self.output = output
        self.digests: dict[str, str] = {}
        folder, name = os.path.split(output)
        self._path = os.path.join(folder, ".tessary", name + ".json")
        self._is_ours = False

    def begin(self, digests: dict[str, str], record: dict[str, Any], overwrite: bool) -> bool:
        """Whether the output is finished, and the record tells so. Else it may be written from now on."""
        self.digests = digests
        known = self._read()
        if not overwrite and self._is_finished(known):
            record.update(known["record"], status="skipped", file=record["file"], output=record["output"])
            return True
        # An output that is there before anything is known about it belongs to somebody else.
        self._is_ours = overwrite or bool(known.get("ours")) or not os.path.exists(self.output)
        if not self._is_ours:
            raise FileExistsError(f"{self.output} is there already; replace it with overwrite=True")
        self.write(record)
        return False

    def write(self, record: dict[str, Any]) -> None:
        os.makedirs(os.path.dirname(self._path), exist_ok=True)
        known = {"ours": self._is_ours, "digests": self.digests, "record": record}
        _replace(self._path, lambda path: _write_json(path, known))

    def _read(self) -> dict[str, Any]:
        try:
            with open(self._path, encoding="utf-8") as file:
                known = json.load(file)
        except (OSError, ValueError):
            return {}
        return known if isinstance(known, dict) else {}

    def _is_finished(self, known: dict[str, Any]) -> bool:
        digests = known.get("digests", {})
        return (known.get("record", {}).get("status") == "done" and "output" in digests
                and all(digests.get(name) == digest for name, digest in self.digests.items())
                and os.path.isfile(self.output) and _digest(self.output) == digests["output"])


def _replace(path: str, write: Callable[[str], Any]) -> None:
    """A file that appears when it is complete."""
    unfinished = f"{path}.{os.getpid()}.unfinished"
    try:
        write(unfinished)
        os.replace(unfinished, path)
    finally:
        if os.path.exists(unfinished):
            os.unlink(unfinished)


def _write_json(path: str, value: Any) -> None:
    with open(path, "w", encoding="utf-8") as file:
        json.dump(value, file, indent=1, allow_nan=True)
        file.write("\n")


def _write_arrays(path: str, arrays: dict[str, Any]) -> None:
    with open(path, "wb") as file:
        np.savez(file, **arrays)


def _save(result: Any, path: str) -> list[str]:
    if isinstance(result, Geometry):
        return list(result.save(path, overwrite=True, threads=1))
    if path.endswith(".json"):
        _replace(path, lambda unfinished: _write_json(unfinished, _plain(result, most=1 << 62)))
    elif path.endswith(".npz"):
        fields = result._asdict() if hasattr(result, "_asdict") else result
        if not isinstance(fields, dict):
            raise ArgumentError(f"output: {path} holds arrays by name, and the operation returned "
                                f"{type(result).__name__}", "output")
        _replace(path, lambda unfinished: _write_arrays(unfinished, fields))
    else:
        raise ArgumentError(f"output: {type(result).__name__} can be written to .json, or .npz for arrays by name; "
                            f"{path} is neither", "output")
    return []


def _plain(value: Any, most: int = _MOST_NUMBERS) -> Any:
    """Values as JSON has them; of an array of more than `most` numbers, what it is."""
    if isinstance(value, Report):
        return {"valid": value.valid, "problems": {problem.code: problem.count for problem in value}}
    if isinstance(value, np.ndarray):
        return value.tolist() if value.size <= most else f"{value.dtype} {value.shape}"
    if isinstance(value, np.generic):
        return value.item()
    if hasattr(value, "_asdict"):
        value = value._asdict()
    if isinstance(value, dict):
        return {str(name): _plain(entry, most) for name, entry in value.items()}
    if isinstance(value, (list, tuple)):
        return [_plain(entry, most) for entry in value]
    return value if value is None or isinstance(value, (bool, int, float, str)) else repr(value)


def _digest(path: str) -> str:
    digest = hashlib.blake2b(digest_size=16)
    with open(path, "rb") as file:
        while block := file.read(1 << 20):
            digest.update(block)
    return digest.hexdigest()


def _key(operation: _Operation) -> str:
    """Tells operations apart by name, code and arguments. What has no lasting name is new each time."""
    return str(_tokenize(__version__, _description(operation)))


def _description(value: Any) -> Any:
    if isinstance(value, functools.partial):
        return ["partial", _description(value.func), [*map(_description, value.args)],
                {name: _description(entry) for name, entry in sorted(value.keywords.items())}]
    if isinstance(value, types.FunctionType):
        cells = [cell.cell_contents for cell in value.__closure__ or ()]
        return [value.__module__, value.__qualname__, _code(value.__code__),
                [*map(_description, [*cells, value.__defaults__, value.__kwdefaults__])]]
    return value


def _code(code: types.CodeType) -> list[Any]:
    constants = [_code(entry) if isinstance(entry, types.CodeType)
                 else sorted(map(repr, entry)) if isinstance(entry, frozenset) else repr(entry)
                 for entry in code.co_consts]
    return [code.co_code.hex(), list(code.co_names), constants]
