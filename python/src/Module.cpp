#include "Module.h"

#include "Errors.h"

PYBIND11_MODULE(_tessary, module)
{
    using namespace TessaryPython;
    module.doc() = "The libraries beneath the package tessary. Programs use the package.";
    module.attr("__version__") = TESSARY_VERSION;
    registerErrors();
    defineGeometry(module);
    defineProperties(module);
    defineState(module);
    defineFiles(module);
    defineChecks(module);
    definePages(module);
    defineOperations(module);
    definePlainArrays(module);
    definePrimitives(module);
    defineCutMesh(module);
    defineSolver(module);
}
