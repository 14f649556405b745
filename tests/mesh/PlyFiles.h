#pragma once

// What tests of PLY files share.

#include <mesh/files/ply/Ply.h>
#include <tests/mesh/MeshFiles.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace PlyFiles {

using MeshFiles::written;

inline constexpr const char* kFormats[] = {"ply-ascii", "ply", "ply-big"};

inline TessaryMesh::MeshRead readPly(const std::string& bytes)
{
    return TessaryMesh::readPly(bytes, "f.ply");
}

/// The message of the error, which tells the place that its fields hold.
inline TessaryMesh::FileError errorOf(const std::string& bytes)
{
    const auto error = MeshFiles::fileErrorOf([&] { readPly(bytes); });
    const auto& place = error.place();
    std::string begin = error.file().empty() ? "no error" : "f.ply: ";
    if (place.line)
        begin += "line " + std::to_string(*place.line) + ": ";
    if (place.byte)
        begin += "byte " + std::to_string(*place.byte) + ": ";
    if (place.row && (place.line || place.byte))
        begin += "row " + std::to_string(*place.row) + " of element \"" + place.element + "\"";
    const std::string text = error.what();
    EXPECT_EQ(text.substr(0, begin.size()), begin);
    for (const char* word : {"line ", "byte ", "row "})
        EXPECT_NE(text.substr(begin.size()).find(word), 0u) << text;
    return error;
}

struct BadFile {
    std::string bytes, message;  // a part of it
    TessaryMesh::FileError::Code code = TessaryMesh::FileError::Code::Malformed;
};

inline void expectErrors(const std::vector<BadFile>& files)
{
    for (const BadFile& bad : files) {
        const auto error = errorOf(bad.bytes);
        EXPECT_TRUE(TestSupport::contains(error.what(), bad.message)) << bad.bytes;
        EXPECT_EQ(error.code(), bad.code) << error.what();
    }
}

}  // namespace PlyFiles
