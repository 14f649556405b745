#pragma once

#include <TessaryMesh/Errors.h>

#include <pybind11/pybind11.h>

/// What the libraries throw as exceptions of the package.
namespace TessaryPython {

void registerErrors();

/// Problems as the package's constructors take them: tuples of severity, code, message, count, places
/// and advice.
pybind11::list problemsOf(const std::vector<TessaryMesh::Problem>& problems);

/// Throws `error` on; KeyboardInterrupt as the cause of the package's Cancelled.
[[noreturn]] void throwCancelled(pybind11::error_already_set& error);

}  // namespace TessaryPython
