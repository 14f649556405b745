#pragma once

// What tests of PLY files share.

#include <tests/mesh/MeshFiles.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace PlyFiles {

using MeshFiles::written;

inline constexpr TessaryMesh::MeshFormat kFormats[] = {TessaryMesh::MeshFormat::PlyAscii,
                                                       TessaryMesh::MeshFormat::PlyBinary,
                                                       TessaryMesh::MeshFormat::PlyBinaryBigEndian};

inline TessaryMesh::MeshRead readPly(const std::string& bytes)
{
    return TessaryMesh::readPly(bytes, "f.ply");
}

inline std::string errorOf(const std::string& bytes)
{
    return TestSupport::messageOf<TessaryMesh::FileError>([&] { readPly(bytes); });
}

struct BadFile {
    std::string bytes;
    std::string message;  // a part of it
};

inline void expectErrors(const std::vector<BadFile>& files)
{
    for (const BadFile& bad : files)
        EXPECT_TRUE(TestSupport::contains(errorOf(bad.bytes), bad.message)) << bad.bytes;
}

}  // namespace PlyFiles
