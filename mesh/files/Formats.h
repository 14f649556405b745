#pragma once

#include "files/Input.h"
#include <TessaryMesh/Files.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace TessaryMesh {

/// What tells the format of a file.
struct FileSigns {
    FileSigns(std::string_view content)  // NOLINT(google-explicit-constructor)
        : bytes(content), size(content.size())
    {}
    FileSigns(const std::string& content)  // NOLINT(google-explicit-constructor)
        : FileSigns(std::string_view(content))
    {}
    FileSigns(const char* content)  // NOLINT(google-explicit-constructor)
        : FileSigns(std::string_view(content))
    {}
    FileSigns(std::string_view firstBytes, std::uint64_t fileSize, std::string_view fileName)
        : bytes(firstBytes), size(fileSize), name(fileName)
    {}

    std::string_view bytes;  ///< the first few thousand, or all there are
    std::uint64_t size;      ///< of the whole file
    std::string_view name;   ///< the last resort: content goes before it
};

/// What can be done with files of a format; null for what cannot.
struct FormatFunctions {
    /// Whether this is the format of the file. Null for a format without a mark of its own.
    bool (*recognises)(const FileSigns& file) = nullptr;

    /// Reads a mesh. `path` stands for the file in messages. A reader of several variants says in
    /// MeshRead::format which one it was.
    MeshRead (*read)(const Input& input, const std::string& path) = nullptr;

    /// Write an object that has points; a mesh has passed validateMesh(). Return warnings.
    std::vector<std::string> (*writeMesh)(const Korvane::Object& mesh,
                                          OutputFile& output) = nullptr;
    std::vector<std::string> (*writeCloud)(const Korvane::Object& cloud,
                                           OutputFile& output) = nullptr;

    void (*writeArrays)(const NamedArrays& arrays, OutputFile& output) = nullptr;

    /// Throws FileError where the first bytes are of no such file, so that a wrong one of any size is
    /// told at once. Null where read() sees to that.
    void (*refuseHead)(std::string_view head, const std::string& path) = nullptr;
};

struct FormatRow {
    Format format;
    FormatFunctions functions;
};

/// The row of one of formats(). Throws ArgumentError for another one.
const FormatRow& rowOf(const Format& format);

/// The row whose format the file is of: that of the format without a mark where no other one fits.
const FormatRow& rowOfContent(const FileSigns& file);

}  // namespace TessaryMesh
