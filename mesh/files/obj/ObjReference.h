#pragma once

#include "base/Host.h"
#include "files/obj/ObjScanner.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace TessaryMesh {

/// What corners of a block of text name: points, texture coordinates or normals.
///
/// How many values come before the block may be unknown when it is read: negative indices, which count
/// backwards, are then taken as if there were none, and wait for addBefore().
class ObjReference {
public:
    ObjReference() = default;

    /// Where `before`, the number of values before the block, is known, negative indices that reach
    /// behind the first one fail.
    ObjReference(std::uint64_t before, std::uint64_t total)
        : m_count(before), m_isExact(true), m_total(total)
    {}

    /// Values read so far, those before the block included.
    std::uint64_t count() const { return m_count; }
    void addValue() { ++m_count; }

    /// The index from 0 on for the entry at `place` of a list of indices.
    uint resolve(std::int64_t index, std::size_t place, const char* kind, const ObjScanner& scanner)
    {
        if (index > 0) {
            m_furthest = std::max(m_furthest, static_cast<std::uint64_t>(index));
            if (static_cast<std::uint64_t>(index) > m_total && m_danglingLine == 0) {
                m_danglingLine = scanner.line();
                m_dangling = index;
            }
            return static_cast<uint>(index - 1);
        }
        return resolveBackwards(index, place, kind, scanner);
    }

    /// Whether all negative indices of the block lead to one of `before` values before it, or later.
    bool fits(std::uint64_t before) const { return m_missing <= before; }

    /// Completes the block's indices.
    void addBefore(std::uint64_t before, uint* indices) const
    {
        for (const uint place : m_backwards)
            indices[place] += static_cast<uint>(before);
    }

    /// The largest of the indices, which count from 1.
    std::uint64_t furthest() const { return m_furthest; }

    /// The first line with an index beyond the total, and the index; 0 where there is none.
    std::uint64_t danglingLine() const { return m_danglingLine; }
    std::int64_t dangling() const { return m_dangling; }

private:
    uint resolveBackwards(std::int64_t index, std::size_t place, const char* kind,
                          const ObjScanner& scanner)
    {
        if (index == 0)
            scanner.fail(std::string("face names ") + kind + " 0; indices in OBJ files begin at 1");
        const auto back = static_cast<std::uint64_t>(-index);
        if (back > m_count && m_isExact)
            scanner.fail(std::string("face names ") + kind + " " + std::to_string(index) +
                         ", but only " + std::to_string(m_count) +
                         " come before it; correct the face");
        m_missing = std::max(m_missing, back - std::min(back, m_count));
        m_backwards.push_back(static_cast<uint>(place));
        return static_cast<uint>(m_count - back);
    }

    std::uint64_t m_count = 0;
    bool m_isExact = false;
    std::uint64_t m_total = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t m_furthest = 0;
    std::uint64_t m_missing = 0;  // values that must come before the block
    std::uint64_t m_danglingLine = 0;
    std::int64_t m_dangling = 0;
    std::vector<uint> m_backwards;  // places of negative indices
};

}  // namespace TessaryMesh
