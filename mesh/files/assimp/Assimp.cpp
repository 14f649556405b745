#include "files/assimp/Assimp.h"

#include "base/MessageText.h"
#include "files/Deflate.h"
#include "files/FileErrors.h"
#include "files/ForeignFormats.h"

#include <assimp/material.h>
#include <assimp/scene.h>
#include <assimp/Importer.hpp>

#include <algorithm>
#include <cctype>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using Code = FileError::Code;
using Korvane::Math::float4;

constexpr int kDeepestNode = 1000;

// That of the name, if it is one of theirs; else what the content is.
std::string endingOf(const std::string& path, const FileSigns& signs)
{
    const std::string name(withoutGz(path));
    const std::size_t dot = name.rfind('.');
    std::string ending = dot == std::string::npos ? "" : name.substr(dot + 1);
    if (ending.empty() || !readsWithAssimp(ending))
        return std::string(foreignEnding(signs));
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ending;
}

float3 vectorOf(const aiVector3D& v)
{
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

/// Values of all points: where a mesh of the scene has none they are zero.
template <class T>
struct PointValues {
    Array<T> values;
    bool isUsed = false;

    void add(std::size_t first, const T& value)
    {
        values.resize(first);
        values.push_back(value);
        isUsed = true;
    }

    void addTo(Object& mesh, const std::string& name)
    {
        if (!isUsed)
            return;
        values.resize(getElementCount(mesh, sPointComp));
        addDataGeoProperty<T>(mesh, name, sPointComp, makeMutable<Array<T>>(std::move(values)));
    }
};

class SceneMesh {
public:
    SceneMesh(const aiScene& scene, const std::string& path) : m_scene(scene), m_path(path) {}

    MeshRead read()
    {
        if (m_scene.mRootNode)
            visit(*m_scene.mRootNode, aiMatrix4x4(), 0);
        MeshRead read{
            makeMesh(std::move(m_points), std::move(m_offset), std::move(m_vertex)), nullptr, {}};
        m_normals.addTo(*read.mesh, "normal");
        m_colours.addTo(*read.mesh, "color");
        for (std::size_t k = 0; k < AI_MAX_NUMBER_OF_TEXTURECOORDS; ++k)
            m_texcoords[k].addTo(*read.mesh, k == 0 ? "texcoord" : "texcoord_" + std::to_string(k));
        addDataGeoProperty<String>(*read.mesh, "material", sFaceComp,
                                   makeMutable<Array<String>>(std::move(m_materials)));
        addDataGeoProperty<String>(*read.mesh, "object", sFaceComp,
                                   makeMutable<Array<String>>(std::move(m_objects)));
        read.warnings.push_back(
            "read by libassimp, which may merge, split or reorder points; write OBJ, PLY or glTF "
            "with the program that made the file to be sure");
        if (m_lines > 0)
            read.warnings.push_back(std::to_string(m_lines) + " points and lines are left out");
        return read;
    }

private:
    void visit(const aiNode& node, const aiMatrix4x4& above, int depth)
    {
        throwIfCancelled();
        if (depth > kDeepestNode)
            failToRead(Code::Malformed, m_path, "nodes hang on each other more than 1000 deep");
        const aiMatrix4x4 transform = above * node.mTransformation;
        for (unsigned i = 0; i < node.mNumMeshes; ++i)
            if (node.mMeshes[i] < m_scene.mNumMeshes)
                addMesh(*m_scene.mMeshes[node.mMeshes[i]], transform, node.mName.C_Str());
        for (unsigned i = 0; i < node.mNumChildren; ++i)
            if (node.mChildren[i])  // which some of its readers leave empty
                visit(*node.mChildren[i], transform, depth + 1);
    }

    void addMesh(const aiMesh& mesh, const aiMatrix4x4& transform, const char* object)
    {
        const std::size_t first = m_points.size();
        if (first + mesh.mNumVertices >= kNone)
            failToRead(Code::TooLarge, m_path,
                       "has more points than 32-bit indices can name; split the mesh");
        aiMatrix3x3 turn(transform);
        turn.Inverse().Transpose();
        for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
            m_points.push_back(vectorOf(transform * mesh.mVertices[i]));
            if (mesh.HasNormals())
                m_normals.add(first + i, vectorOf((turn * mesh.mNormals[i]).NormalizeSafe()));
            if (mesh.HasVertexColors(0)) {
                const aiColor4D& c = mesh.mColors[0][i];
                m_colours.add(first + i, {c.r, c.g, c.b, c.a});
            }
            for (unsigned k = 0; k < AI_MAX_NUMBER_OF_TEXTURECOORDS; ++k)
                if (mesh.HasTextureCoords(k))
                    m_texcoords[k].add(first + i,
                                       {mesh.mTextureCoords[k][i].x, mesh.mTextureCoords[k][i].y});
        }
        addFaces(mesh, first, object);
    }

    void addFaces(const aiMesh& mesh, std::size_t first, const char* object)
    {
        String material;
        aiString name;
        if (mesh.mMaterialIndex < m_scene.mNumMaterials &&
            m_scene.mMaterials[mesh.mMaterialIndex]->Get(AI_MATKEY_NAME, name) == AI_SUCCESS)
            material = String(name.C_Str());
        for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
            const aiFace& face = mesh.mFaces[f];
            if (face.mNumIndices < 3) {
                ++m_lines;
                continue;
            }
            for (unsigned k = 0; k < face.mNumIndices; ++k)
                if (face.mIndices[k] >= mesh.mNumVertices)
                    failToRead(Code::Malformed, m_path,
                               "a face names point " + std::to_string(face.mIndices[k]) + " of " +
                                   std::to_string(mesh.mNumVertices) + "; write the file again");
            for (unsigned k = 0; k < face.mNumIndices; ++k)
                m_vertex.push_back(static_cast<uint>(first + face.mIndices[k]));
            if (m_vertex.size() >= kNone)
                failToRead(Code::TooLarge, m_path,
                           "has more corners than 32-bit indices can name; split the mesh");
            m_offset.push_back(static_cast<uint>(m_vertex.size()));
            m_materials.push_back(material);
            m_objects.push_back(String(object));
        }
    }

    const aiScene& m_scene;
    const std::string& m_path;
    Array<float3> m_points;
    Array<uint> m_offset{0}, m_vertex;
    PointValues<float3> m_normals;
    PointValues<float4> m_colours;
    PointValues<float2> m_texcoords[AI_MAX_NUMBER_OF_TEXTURECOORDS];
    Array<String> m_materials, m_objects;
    std::uint64_t m_lines = 0;
};

}  // namespace

bool readsWithAssimp(std::string_view ending)
{
    return Assimp::Importer().IsExtensionSupported("." + std::string(ending));
}

MeshRead readAssimp(const Input& input, const std::string& path)
{
    InputBuffer buffer;
    const std::string_view bytes = input.part(0, input.size(), buffer);
    Assimp::Importer importer;
    const FileSigns signs{bytes.substr(0, Input::kHead), bytes.size(), path};
    const aiScene* const scene =
        importer.ReadFileFromMemory(bytes.data(), bytes.size(), 0, endingOf(path, signs).c_str());
    if (!scene) {
        const std::string error = importer.GetErrorString();
        failToRead(Code::Malformed, path,
                   "libassimp cannot read it: " + error.substr(0, error.find('\n')));
    }
    return SceneMesh(*scene, path).read();
}

}  // namespace TessaryMesh
