#pragma once

#include <TessaryMesh/Errors.h>

#include <cstdint>
#include <string>

/// Where the errors of files get their fields and their words: the name of the file, then what was
/// found. A path of "-" is a standard stream.
namespace TessaryMesh {

FileError::Place atLine(std::uint64_t line);
FileError::Place atByte(std::uint64_t byte);

[[noreturn]] void failToRead(FileError::Code code, const std::string& path, const std::string& what,
                             const FileError::Place& place = {});

[[noreturn]] void failToWrite(FileError::Code code, const std::string& path,
                              const std::string& what);

}  // namespace TessaryMesh
