#pragma once

#include "base/Host.h"
#include "files/ply/PlyFormat.h"

#include <cstddef>
#include <functional>
#include <string>

namespace TessaryMesh::Ply {

/// The array that a property of a mesh to be fills, and how it gets into the mesh.
struct Storage {
    unsigned char* bytes = nullptr;
    Form form{};
    std::size_t count = 0;  ///< elements
    std::function<void(Object&, const String& name, const String& target)> addTo;
};

/// For elements of the type of that name.
Storage makeStorage(const std::string& type, std::size_t count);

/// Reads as a bool only what is 0 or 1.
void normaliseBools(Storage& storage);

/// The real numbers, as elements of `type`, of which 8-bit ones count 255ths.
Storage coloursOf(const Storage& eightBit, const std::string& type);

/// How many of the 8-bit numbers are not the nearest ones to the exact values; all where these are of
/// another form.
std::size_t differencesOf(const Storage& eightBit, const Storage& exact);

}  // namespace TessaryMesh::Ply
