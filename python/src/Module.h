#pragma once

#include <pybind11/pybind11.h>

/// The parts of the module, each in a file of its own.
namespace TessaryPython {

void defineGeometry(pybind11::module_& module);
void defineProperties(pybind11::module_& module);
void defineState(pybind11::module_& module);
void defineFiles(pybind11::module_& module);
void defineChecks(pybind11::module_& module);
void definePages(pybind11::module_& module);
void defineOperations(pybind11::module_& module);
void definePlainArrays(pybind11::module_& module);
void definePrimitives(pybind11::module_& module);
void defineCutMesh(pybind11::module_& module);
void defineSolver(pybind11::module_& module);

}  // namespace TessaryPython
