#pragma once

#include "ElementTypes.h"

#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>

#include <pybind11/numpy.h>

#include <cstdint>
#include <memory>
#include <string>

/// Arrays of NumPy and of the host, each in the other's place without a copy.
///
/// What comes in has been converted by the package before: here an array either has the elements that are
/// asked for, contiguous and aligned, or it is refused.
namespace TessaryPython {

namespace py = pybind11;
using Pelon::uint;
template <class T>
using ArrayPtr = Pelon::Ptr<Pelon::Array<T>>;

/// Keeps `object` alive; whoever lets go last needs not hold the interpreter's lock.
std::shared_ptr<const void> ownerOf(py::object object);

/// Whether somebody can write into the memory of the array, through it or what it is a view of.
bool isChangeable(py::array array);

/// Throws TypeError: `name` is no contiguous and aligned array of these elements.
[[noreturn]] void throwNotOfType(const char* name, const py::array& array,
                                 const std::vector<py::ssize_t>& shape, const py::dtype& type);

template <class T>
bool hasElements(const py::array& array)
{
    if (!py::isinstance<py::array_t<ScalarOf<T>, py::array::c_style>>(array) ||
        reinterpret_cast<std::uintptr_t>(array.data()) % alignof(T) != 0)
        return false;
    const auto shape = shapeOf<T>(array.ndim() > 0 ? array.shape(0) : 0);
    return std::equal(shape.begin(), shape.end(), array.shape(), array.shape() + array.ndim());
}

/// The elements of a NumPy array where they are; `name` is for the message of a caller's mistake.
template <class T>
ArrayPtr<T> borrow(const py::array& array, const char* name)
{
    if (!hasElements<T>(array))
        throwNotOfType(name, array, shapeOf<T>(0), py::dtype::of<ScalarOf<T>>());
    return Pelon::Array<T>::borrow(static_cast<const T*>(array.data()),
                                   static_cast<std::size_t>(array.shape(0)), ownerOf(array));
}

/// The same memory as a NumPy array that keeps it alive. It can only be read unless it `isOurs` alone.
/// With `width` numbers to a row.
template <class T>
py::array toNumpy(const ArrayPtr<T>& array, std::size_t width = 1, bool isOurs = false)
{
    auto* const kept = new ArrayPtr<T>(array);
    const py::capsule base(kept, [](void* held) { delete static_cast<ArrayPtr<T>*>(held); });
    auto shape = shapeOf<T>(array->size() / width);
    if (width != 1)
        shape.push_back(static_cast<py::ssize_t>(width));
    py::array_t<ScalarOf<T>> result(std::move(shape),
                                    reinterpret_cast<const ScalarOf<T>*>(array->data()), base);
    if (!isOurs)
        py::detail::array_proxy(result.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return std::move(result);
}

/// Moves an array out as a NumPy array that may be written.
template <class T>
py::array moveToNumpy(Pelon::Array<T>&& array, std::size_t width = 1)
{
    return toNumpy<T>(Pelon::makeMutable<Pelon::Array<T>>(std::move(array)), width, true);
}

/// Text of the host as text of Python and back; bytes that are no UTF-8 survive the way there and back.
py::str toPython(const Pelon::String& text);
Pelon::String toHost(const py::str& text);

/// A list of texts, repeated ones as one object.
py::list toPython(const Pelon::Array<Pelon::String>& texts);
ArrayPtr<Pelon::String> toHost(const py::list& texts);

}  // namespace TessaryPython
