#pragma once

#include "base/Host.h"
#include "files/ply/PlyFormat.h"

#include <any>
#include <string>
#include <vector>

namespace TessaryMesh::Ply {

/// Values of a mesh as a row of a PLY element holds them: `scalars` numbers under as many names, or
/// one list.
struct Field {
    std::vector<std::string> names;
    Scalar type;
    const unsigned char* values;  ///< of all rows, one after the other
    unsigned scalars;             ///< per row; of a list, per step of the offsets

    const uint* offsets = nullptr;  ///< of lists: where each row's list begins, and the end
    Scalar countType = Scalar::UInt8;

    bool isList() const { return offsets != nullptr; }
    std::size_t rowBytes() const { return scalars * sizeOf(type); }
};

struct ElementFields {
    std::string name;
    std::size_t count = 0;
    std::vector<Field> fields;
};

/// What a PLY file has to say of a mesh. The fields point into the mesh's arrays, which must live on.
struct MeshFields {
    ElementFields points{"vertex", 0, {}};
    ElementFields faces{"face", 0, {}};
    std::vector<Declaration> declarations;
    std::vector<std::string> warnings;
    std::vector<std::any> owned;  ///< arrays made for the file
};

/// Of a mesh whose faces are without errors, or of a point cloud.
MeshFields fieldsOfMesh(const Object& mesh);

}  // namespace TessaryMesh::Ply
