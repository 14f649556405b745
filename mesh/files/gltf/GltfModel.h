#pragma once

#include "files/Input.h"
#include <TessaryMesh/Files.h>

// Neither pictures nor files of its own accord; JSON where the library alone needs it.
#define TINYGLTF_NO_STB_IMAGE
#define TINYGLTF_NO_STB_IMAGE_WRITE
#define TINYGLTF_NO_EXTERNAL_IMAGE
#define TINYGLTF_NO_FS
#include <tiny_gltf.h>

#include <string>

namespace TessaryMesh {

/// Parses a file. Throws FileError where it is none, or breaks rules that the library checks.
tinygltf::Model parseGltf(const Input& input, const std::string& path);

/// Writes the model as one file. Throws FileError where the system refuses.
void putGltf(tinygltf::Model& model, bool isBinary, OutputFile& output);

}  // namespace TessaryMesh
