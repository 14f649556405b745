#pragma once

#include "files/TextBuffer.h"
#include <TessaryMesh/Files.h>

namespace TessaryMesh {

/// Gathers text and hands it to a file in large pieces, the last one with flush(). Between pieces it
/// throws Cancelled.
class TextWriter {
public:
    explicit TextWriter(OutputFile& output) : m_output(output) {}

    template <class T>
    TextWriter& operator<<(const T& value)
    {
        m_text << value;
        if (m_text.view().size() > kPiece)
            flush();
        return *this;
    }

    void flush()
    {
        throwIfCancelled();
        m_output.write(m_text.view());
        m_text.clear();
    }

private:
    static constexpr std::size_t kPiece = std::size_t{1} << 18;

    OutputFile& m_output;
    TextBuffer m_text;
};

}  // namespace TessaryMesh
