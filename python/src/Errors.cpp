#include "Errors.h"

#include <new>
#include <string>

namespace TessaryPython {
namespace {

namespace py = pybind11;
using TessaryMesh::ArrayError;
using TessaryMesh::FileError;
using TessaryMesh::Problem;

const char* nameOf(ArrayError::Code code)
{
    using Code = ArrayError::Code;
    switch (code) {
        case Code::Missing:
            return "missing";
        case Code::Type:
            return "type";
        case Code::Length:
            return "length";
        case Code::Value:
            return "value";
        case Code::TooLarge:
            return "too-large";
        default:
            return "reserved";
    }
}

const char* nameOf(Problem::Element element)
{
    constexpr const char* kNames[] = {"", "point", "corner", "face"};
    return kNames[static_cast<int>(element)];
}

// File names and texts from files are bytes that need not be UTF-8.
py::str textOf(const std::string& text)
{
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape"));
}

template <class T>
py::object orNone(const std::optional<T>& value)
{
    return value ? py::object(py::int_(*value)) : py::object(py::none());
}

// The package says how the parts of a library's error become one of its own.
template <class... Parts>
void raise(const char* maker, Parts&&... parts)
{
    const py::object error = py::module_::import("tessary._errors").attr(maker)(parts...);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
}

void raise(const FileError& error)
{
    const FileError::Place& place = error.place();
    raise("file_error", textOf(error.what()), nameOf(error.code()), textOf(error.file()),
          orNone(place.line), orNone(place.byte), textOf(place.element), orNone(place.row));
}

void translate(std::exception_ptr thrown)
try {
    std::rethrow_exception(std::move(thrown));
} catch (const FileError& error) {
    raise(error);
} catch (const TessaryMesh::InvalidMesh& error) {
    raise("invalid_mesh", textOf(error.name()), problemsOf(error.report().problems));
} catch (const TessaryMesh::ArgumentError& error) {
    raise("argument_error", textOf(error.what()), textOf(error.argument()));
} catch (const ArrayError& error) {
    raise("array_error", textOf(error.what()), nameOf(error.code()), textOf(error.array()),
          orNone(error.element()), textOf(error.value()));
} catch (const TessaryMesh::OutOfMemory& error) {
    raise("out_of_memory", textOf(error.what()), error.bytes());
} catch (const TessaryMesh::Error& error) {
    raise("error", textOf(error.what()));
}

}  // namespace

void registerErrors()
{
    py::register_exception_translator(translate);
}

py::list problemsOf(const std::vector<Problem>& problems)
{
    py::list list;
    for (const Problem& problem : problems) {
        py::list places;
        for (const Problem::Place& place : problem.places)
            places.append(py::make_tuple(textOf(place.text), nameOf(place.element), place.index));
        list.append(py::make_tuple(
            problem.severity == Problem::Severity::Error ? "error" : "warning", problem.code,
            textOf(problem.message), problem.count, places, textOf(problem.advice)));
    }
    return list;
}

void throwCancelled(py::error_already_set& error)
{
    if (!error.matches(PyExc_KeyboardInterrupt))
        throw error;
    const py::object cancelled = py::module_::import("tessary._errors").attr("Cancelled");
    py::raise_from(error, cancelled.ptr(), "interrupted");
    throw py::error_already_set();
}

}  // namespace TessaryPython
