#pragma once

#include "peers/PeerInputs.h"

#include <Korvane/Geometry.h>
#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Bench {

/// The demo mesh in a file, which the system has in memory; removed at the end.
class DemoFile {
public:
    DemoFile(uint resolution, const char* format)
        : m_format(*TessaryMesh::findFormat(format)),
          m_mesh(TessaryMesh::makeDemoMesh(resolution)),
          m_path((std::filesystem::temp_directory_path() / "tessary_peers").string() +
                 (m_format.name == "obj" ? ".obj" : ".ply"))
    {
        write();
    }
    ~DemoFile() { std::filesystem::remove(m_path); }
    DemoFile(const DemoFile&) = delete;
    DemoFile& operator=(const DemoFile&) = delete;

    void write() const
    {
        TessaryMesh::OutputFile output(m_path, true);
        output.skipSync();  // as the peers do not
        TessaryMesh::writeMesh(*m_mesh, m_format, output);
        output.commit();
    }

    const Korvane::Object& mesh() const { return *m_mesh; }
    const std::string& path() const { return m_path; }

    Work work() const
    {
        return {Korvane::Geometry::getElementCount(*m_mesh, Korvane::Geometry::sFaceComp),
                "polygon", std::filesystem::file_size(m_path), "the file is in memory"};
    }

private:
    const TessaryMesh::Format& m_format;
    Pelon::MutablePtr<Korvane::Object> m_mesh;
    std::string m_path;
};

/// readMesh, which validates, beside a peer's reader, the number of whose faces is told after its last run:
/// others part points at seams, so those are more.
inline void compareReads(Row& row, const DemoFile& file, const Other& other,
                         const std::size_t& othersFaces)
{
    namespace Geometry = Korvane::Geometry;
    Pelon::MutablePtr<Korvane::Object> mesh;
    const Contender kernel{
        [&] { mesh = TessaryMesh::readMesh(file.path()).mesh; }, nullptr, [&] { mesh = nullptr; },
        [&] {
            const auto corners = Geometry::dataArray<uint>(*mesh, Geometry::sFaceVertex);
            return hashOf(
                *Geometry::dataArray<Korvane::Math::float3>(*mesh, Geometry::sPointPosition),
                hashOf(*corners));
        }};
    row.compare(file.work(), kernel, other);
    const std::size_t faces = Geometry::getElementCount(file.mesh(), Geometry::sFaceComp);
    row.expectNear("number of faces", static_cast<double>(faces), static_cast<double>(othersFaces));
}

/// Adds a row for each size: `fill` gets the demo mesh in a file of the format.
inline void addFileRows(const char* kernel, const char* input, const char* format, const char* peer,
                        const std::function<void(Row&, const DemoFile&)>& fill)
{
    for (const uint resolution : {128u, 512u})
        addRow({kernel, std::string("demo mesh, ") + input, resolution * resolution, 0, peer},
               [=](Row& row) { fill(row, DemoFile(resolution, format)); });
}

}  // namespace Bench
