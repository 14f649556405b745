#pragma once

#include "files/Input.h"
#include <TessaryMesh/Files.h>

#include <string>
#include <string_view>
#include <vector>

namespace TessaryMesh {

/// What can be done with files of a format; null for what cannot.
struct FormatFunctions {
    /// Whether this is the format of the content, by its first bytes. Null for a format without a mark of its own.
    bool (*recognises)(std::string_view bytes) = nullptr;

    /// Reads a mesh. `path` stands for the file in messages. A reader of several variants says in
    /// MeshRead::format which one it was.
    MeshRead (*read)(const Input& input, const std::string& path) = nullptr;

    /// Write an object that has points; a mesh has passed validateMesh(). Return warnings.
    std::vector<std::string> (*writeMesh)(const Korvane::Object& mesh,
                                          OutputFile& output) = nullptr;
    std::vector<std::string> (*writeCloud)(const Korvane::Object& cloud,
                                           OutputFile& output) = nullptr;

    void (*writeArrays)(const NamedArrays& arrays, OutputFile& output) = nullptr;
};

struct FormatRow {
    Format format;
    FormatFunctions functions;
};

/// The row of one of formats(). Throws ArgumentError for another one.
const FormatRow& rowOf(const Format& format);

/// The row whose format the content is of: that of the format without a mark where no other one fits.
const FormatRow& rowOfContent(std::string_view firstBytes);

}  // namespace TessaryMesh
