#pragma once

#include "base/Host.h"
#include <TessaryMesh/Check.h>

#include <cstdint>
#include <string>
#include <utility>

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

/// How many indices name no value.
std::size_t countOutside(const Array<uint>& indices, std::size_t valueCount, bool noneIsAllowed);

/// Checks the arrays of all properties against their components and against each other.
void checkProperties(const Object& mesh, ValidationReport& report);

}  // namespace TessaryMesh
