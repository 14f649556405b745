#include "files/FileErrors.h"

#include "base/MessageText.h"

namespace TessaryMesh {

FileError::Place atLine(std::uint64_t line)
{
    FileError::Place place;
    place.line = line;
    return place;
}

FileError::Place atByte(std::uint64_t byte)
{
    FileError::Place place;
    place.byte = byte;
    return place;
}

void failToRead(FileError::Code code, const std::string& path, const std::string& what,
                const FileError::Place& place)
{
    throw FileError(code, path, place, inputName(path) + ": " + what);
}

void failToWrite(FileError::Code code, const std::string& path, const std::string& what)
{
    throw FileError(code, path, outputName(path) + ": " + what);
}

}  // namespace TessaryMesh
