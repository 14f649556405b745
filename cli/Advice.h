#pragma once

#include <TessaryMesh/Errors.h>

#include <string>

/// What the program adds to the words of the library: the options and verbs that help.
namespace Cli {

/// "1 corner that names no point", "2 corners that name no point"
std::string countedMessage(const TessaryMesh::Problem& problem);

/// What to do about a problem that `verb` met.
std::string adviceOn(const TessaryMesh::Problem& problem, const std::string& verb);

/// The lines that tell why a verb failed.
std::string lineOf(const TessaryMesh::InvalidMesh& error, const std::string& verb);
std::string lineOf(const TessaryMesh::FileError& error);

}  // namespace Cli
