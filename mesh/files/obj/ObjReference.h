#pragma once

#include "base/Host.h"
#include "files/obj/ObjScanner.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace TessaryMesh {

/// What corners name: points, texture coordinates or normals. Indices may run ahead of the values
/// that the file has shown so far.
class ObjReference {
public:
    explicit ObjReference(const char* kind) : m_kind(kind) {}

    std::uint64_t count = 0;  // values read so far

    uint resolve(std::int64_t index, const ObjScanner& scanner)
    {
        if (index > 0) {
            if (static_cast<std::uint64_t>(index) > std::max(count, m_furthest))
                runAhead(static_cast<std::uint64_t>(index), scanner.line());
            return static_cast<uint>(index - 1);
        }
        if (index == 0)
            scanner.fail("face names " + m_kind + " 0; indices in OBJ files begin at 1");
        if (static_cast<std::uint64_t>(-index) > count)
            scanner.fail("face names " + m_kind + " " + std::to_string(index) + ", but only " +
                         std::to_string(count) + " come before it; correct the face");
        return static_cast<uint>(count - static_cast<std::uint64_t>(-index));
    }

    // The first line with an index beyond the end, 0 if there is none.
    std::uint64_t firstDangling() const
    {
        const Ahead* const ahead = findDangling();
        return ahead ? ahead->line : 0;
    }

    [[noreturn]] void failDangling(const ObjScanner& scanner) const
    {
        const Ahead* const ahead = findDangling();
        scanner.fail("face names " + m_kind + " " + std::to_string(ahead->index) +
                         ", but the file has " + std::to_string(count) +
                         "; correct the face or add what is missing",
                     ahead->line);
    }

private:
    struct Ahead {
        std::uint64_t index;
        std::uint64_t line;
    };

    // Of two indices that run ahead, the later one matters only if it is larger.
    void runAhead(std::uint64_t index, std::uint64_t line)
    {
        m_furthest = index;
        m_ahead.push_back({index, line});
    }

    const Ahead* findDangling() const
    {
        const auto found = std::find_if(m_ahead.begin(), m_ahead.end(),
                                        [this](const Ahead& a) { return a.index > count; });
        return found == m_ahead.end() ? nullptr : &*found;
    }

    std::string m_kind;
    std::uint64_t m_furthest = 0;
    std::vector<Ahead> m_ahead;
};

}  // namespace TessaryMesh
