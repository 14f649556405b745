#pragma once

#include "Conversion.h"

#include <TessaryMesh/Operations.h>

#include <string>

/// Concave faces, as the verbs that split faces tell of them and treat them.
namespace Cli {

/// --concave: "fan", which `way` is without it, or "split".
void addConcave(CLI::App& verb, std::string& way);

TessaryMesh::Concave concaveOf(const std::string& way);

/// What the mesh of a conversion has of faces that fans do not fit, for the report. Unless they are split, a
/// warning says which; one says in either case which faces cross themselves.
Json tellConcave(Conversion& conversion, TessaryMesh::Concave concave, Session& session);

/// ", 2 concave faces split" for a summary; nothing where none were.
std::string concaveText(const Json& facts);

}  // namespace Cli
