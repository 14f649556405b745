#pragma once

#include "base/Host.h"
#include "base/ParallelBlocks.h"
#include <TessaryMesh/Check.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace TessaryMesh {

inline std::string str(std::uint64_t number)
{
    return std::to_string(number);
}

/// Collects one kind of problem; only the first few places are put into words.
class Finding {
public:
    Finding(Problem::Severity severity, const char* code, const char* message, const char* advice)
        : m_problem{severity, code, message, 0, {}, advice}
    {}

    /// One more, at the element `index`; `describe` says it in words.
    template <class Describe>
    void add(Problem::Element element, std::uint64_t index, Describe&& describe)
    {
        if (m_problem.count++ < kMostPlaces)
            m_problem.places.push_back({describe(), element, index});
    }

    /// One more, at no point, corner or face.
    template <class Describe>
    void add(Describe&& describe)
    {
        add(Problem::Element::None, 0, describe);
    }

    /// The same kind without any found.
    Finding none() const
    {
        Finding copy = *this;
        copy.m_problem.count = 0;
        copy.m_problem.places.clear();
        return copy;
    }

    /// What was found further on.
    void append(const Finding& later)
    {
        m_problem.count += later.m_problem.count;
        for (const Problem::Place& place : later.m_problem.places)
            if (m_problem.places.size() < kMostPlaces)
                m_problem.places.push_back(place);
    }

    const Problem& problem() const { return m_problem; }

    void addTo(ValidationReport& report)
    {
        if (m_problem.count > 0)
            report.problems.push_back(std::move(m_problem));
    }

private:
    static constexpr std::uint64_t kMostPlaces = 5;

    Problem m_problem;
};

inline Finding error(const char* code, const char* message, const char* advice)
{
    return {Problem::Severity::Error, code, message, advice};
}

/// Adds what `scan(begin, end, part)` finds in the elements below `count`, in their order; blocks of them
/// are looked through on all threads.
template <class Scan>
void findInBlocks(std::size_t count, Finding& finding, const Scan& scan)
{
    constexpr std::size_t kBlock = std::size_t{1} << 16;
    std::vector<Finding> parts((count + kBlock - 1) / kBlock, finding.none());
    forEachBlock(parts.size(), [&](std::size_t block) {
        scan(block * kBlock, std::min((block + 1) * kBlock, count), parts[block]);
    });
    for (const Finding& part : parts)
        finding.append(part);
}

/// How many indices name no value.
std::size_t countOutside(const Array<uint>& indices, std::size_t valueCount, bool noneIsAllowed);

/// Checks the arrays of all properties against their components and against each other.
void checkProperties(const Object& mesh, ValidationReport& report);

}  // namespace TessaryMesh
