#pragma once

#include "base/Host.h"
#include "files/gltf/GltfAccessor.h"
#include "files/gltf/GltfTransform.h"

#include <map>
#include <string>
#include <vector>

namespace TessaryMesh {

/// Puts the triangles of a scene together, node by node.
class GltfScene {
public:
    GltfScene(const tinygltf::Model& model, const std::string& path,
              std::vector<std::string>& warnings)
        : m_model(model), m_path(path), m_warnings(warnings)
    {}

    MutablePtr<Object> mesh();

private:
    using Attributes = std::map<std::string, int>;

    /// Primitives of a node that have the same accessors share their points.
    struct Vertices {
        Attributes attributes;
        std::size_t first;
    };

    /// Where the values of an attribute come from: accessor `accessor` for the points from `first` on.
    struct Source {
        int accessor;
        std::size_t first;
        GltfTransform transform;
    };

    void visitNodes();
    void addMesh(int index, const GltfTransform& transform, const std::string& object);
    std::size_t addVertices(const Attributes& attributes, const GltfTransform& transform,
                            std::vector<Vertices>& known);
    void addFaces(const tinygltf::Primitive& primitive, std::size_t first, std::size_t points,
                  const GltfTransform& transform);
    void addTriangles(const Array<uint>& corners, int mode, bool isMirrored);
    void addFaceNames(const tinygltf::Primitive& primitive, const std::string& object);
    void limit(std::size_t more);

    void addAttribute(Object& mesh, const std::string& semantic,
                      const std::vector<Source>& sources);
    template <class T>
    void addValues(Object& mesh, const std::string& name, const std::string& semantic,
                   const std::vector<Source>& sources);
    template <class T>
    void addIntegers(Object& mesh, const std::string& name, const std::vector<Source>& sources);
    void addNames(Object& mesh);
    void warn(std::size_t count, const char* one, const char* many);
    void warnOfTheRest();

    const tinygltf::Model& m_model;
    const std::string& m_path;
    std::vector<std::string>& m_warnings;
    Array<float3> m_points;
    Array<uint> m_offset{0}, m_vertex;
    Array<String> m_materials, m_objects;
    std::map<std::string, std::vector<Source>> m_sources;  // by semantic
    std::size_t m_moved = 0, m_lines = 0, m_targets = 0;
    bool m_hasMaterials = false, m_hasObjects = false;
};

}  // namespace TessaryMesh
