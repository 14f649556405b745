#include "files/gltf/Gltf.h"

#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/gltf/GltfScene.h"

#include <algorithm>

namespace TessaryMesh {
namespace {

using Code = FileError::Code;
using tinygltf::Model;

constexpr const char* kCompressions[] = {"KHR_draco_mesh_compression", "EXT_meshopt_compression"};

constexpr const char* kUnderstood[] = {"KHR_mesh_quantization", "KHR_texture_transform",
                                       "KHR_lights_punctual",   "KHR_texture_basisu",
                                       "EXT_texture_webp",      "MSFT_texture_dds"};

// What changes how numbers are stored has to be understood; materials are their own affair.
void refuseUnknownExtensions(const Model& model, const std::string& path)
{
    for (const char* const name : kCompressions)
        if (std::count(model.extensionsRequired.begin(), model.extensionsRequired.end(), name) > 0)
            failToRead(Code::Unsupported, path,
                       "is compressed by " + std::string(name) +
                           ", which is not read; export it without compression");
    for (const std::string& name : model.extensionsRequired)
        if (name.rfind("KHR_materials_", 0) != 0 &&
            std::find(std::begin(kUnderstood), std::end(kUnderstood), name) ==
                std::end(kUnderstood))
            failToRead(
                Code::Unsupported, path,
                "needs the extension " + quoted(name) + ", which is not read; export without it");
}

// glTF 1.0 has them by name, and need not say its version.
void refuseOldMeshes(const Input& input, const std::string& path)
{
    InputBuffer buffer;
    if (input.part(0, input.size(), buffer).find("\"meshes\"") != std::string_view::npos)
        failToRead(Code::Unsupported, path,
                   "has meshes that are no list, as in glTF 1.0; convert it to version 2.0");
}

}  // namespace

MeshRead readGltf(const Input& input, const std::string& path)
{
    InputBuffer buffer;
    const bool isBinary = isGlb(input.head(4, buffer));
    const Model model = parseGltf(input, path);
    refuseUnknownExtensions(model, path);
    if (!isBinary && model.meshes.empty())
        refuseOldMeshes(input, path);
    MeshRead read{nullptr, findFormat(isBinary ? "glb" : "gltf"), {}};
    read.mesh = GltfScene(model, path, read.warnings).mesh();
    return read;
}

}  // namespace TessaryMesh
