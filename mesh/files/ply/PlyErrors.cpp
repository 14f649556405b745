#include "files/ply/PlyErrors.h"

#include "base/MessageText.h"

namespace TessaryMesh::Ply {

void fail(const std::string& path, const FileError::Place& place, const std::string& what,
          FileError::Code code)
{
    const std::string where = place.line   ? "line " + std::to_string(*place.line) + ": "
                              : place.byte ? "byte " + std::to_string(*place.byte) + ": "
                                           : "";
    failToRead(code, path, where + what, place);
}

void failInRow(const std::string& path, FileError::Place place, const Element& element,
               std::uint64_t row, const std::string& what, FileError::Code code)
{
    place.element = element.name;
    place.row = row;
    fail(path, place,
         "row " + std::to_string(row) + " of element " + quoted(element.name) + ", which has " +
             std::to_string(element.count) + " by the header: " + what,
         code);
}

}  // namespace TessaryMesh::Ply
