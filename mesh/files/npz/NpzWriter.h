#pragma once

#include "base/Host.h"
#include "base/Scalars.h"
#include "files/ArrayShape.h"
#include "files/npz/NpyHeader.h"
#include "files/npz/Texts.h"
#include "files/npz/ZipWriter.h"

#include <string>

namespace TessaryMesh {

/// Writes arrays under names as one .npz file. Arrays go out as they are added; finish() writes the
/// archive's list of contents. Throws as ZipWriter does.
class NpzWriter {
public:
    NpzWriter(OutputFile& output, ZipWriter::Packing packing) : m_zip(output, packing) {}

    /// Numbers or bool in C order.
    template <class T>
    void add(const std::string& name, const Shape& shape, const Array<T>& values)
    {
        m_zip.add(name + ".npy", npyHeader(npyType<typename Scalars<T>::Type>(), shape),
                  values.data(), sizeof(T) * values.size());
    }

    /// Texts as rows of characters.
    void add(const std::string& name, const Shape& shape, const Array<String>& texts)
    {
        const std::size_t width = longestOf(texts);
        const auto rows = paddedTexts(texts, width);
        const std::string type =
            npyType<std::uint32_t>().substr(0, 1) + "U" + std::to_string(width);
        m_zip.add(name + ".npy", npyHeader(type, shape), rows.data(),
                  sizeof(char32_t) * rows.size());
    }

    void finish() { m_zip.finish(); }

private:
    ZipWriter m_zip;
};

}  // namespace TessaryMesh
