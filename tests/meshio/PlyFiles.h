#pragma once

// PLY files in memory: written through a file of a test folder, and put together byte by byte.

#include <meshio/OutputFile.h>
#include <meshio/Ply.h>
#include <tests/meshio/MeshFiles.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace PlyFiles {

/// The bytes that the writer makes of `mesh`; its warnings go to `warnings`.
inline std::string written(const Korvane::Object& mesh, MeshIo::MeshFormat format,
                           std::vector<std::string>* warnings = nullptr)
{
    const MeshFiles::TemporaryFolder folder;
    MeshIo::OutputFile output(folder / "mesh.ply", false);
    std::vector<std::string> lines = MeshIo::writePly(mesh, format, output);
    output.commit();
    if (warnings)
        *warnings = lines;
    return MeshFiles::contentOf(folder / "mesh.ply");
}

/// Bytes of a body: numbers in the order of `bigEndian`.
class Bytes {
public:
    explicit Bytes(bool bigEndian) : m_bigEndian(bigEndian) {}

    template <class T>
    Bytes& add(T value)
    {
        char raw[sizeof(T)];
        std::memcpy(raw, &value, sizeof(T));
        const std::uint16_t one = 1;
        if ((*reinterpret_cast<const char*>(&one) == 1) == m_bigEndian)
            std::reverse(raw, raw + sizeof(T));
        text.append(raw, sizeof(T));
        return *this;
    }

    template <class T, class... Rest>
    Bytes& add(T first, Rest... rest)
    {
        add(first);
        return add(rest...);
    }

    std::string text;

private:
    bool m_bigEndian;
};

/// The message of the FileError that reading ends with; "" where it does not.
inline std::string errorOf(const std::string& bytes)
{
    try {
        MeshIo::readPly(bytes, "f.ply");
    } catch (const MeshIo::FileError& error) {
        return error.what();
    }
    return {};
}

inline bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

}  // namespace PlyFiles
