#pragma once

#include "files/FileErrors.h"
#include "files/ply/PlyFormat.h"

#include <cstdint>
#include <string>

/// Errors of PLY files: "roof.ply: line 9: ..." or "roof.ply: byte 136: ..." where the place has one.
namespace TessaryMesh::Ply {

[[noreturn]] void fail(const std::string& path, const FileError::Place& place,
                       const std::string& what, FileError::Code code = FileError::Code::Malformed);

/// The same in a row of an element, which `what` is said of.
[[noreturn]] void failInRow(const std::string& path, FileError::Place place, const Element& element,
                            std::uint64_t row, const std::string& what,
                            FileError::Code code = FileError::Code::Malformed);

}  // namespace TessaryMesh::Ply
