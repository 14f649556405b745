#include "Requirements.h"

#include <TessaryMesh/Errors.h>

#include <algorithm>
#include <string>
#include <vector>

namespace TessaryPython {
namespace {

using Pelon::uint;
using TessaryMesh::ArrayError;
using Code = ArrayError::Code;

constexpr uint kNone = 0xFFFFFFFF;

[[noreturn]] void throwValue(const char* name, std::size_t element, uint value,
                             const std::string& what)
{
    throw ArrayError(
        Code::Value, name,
        "entry " + std::to_string(element) + " is " + std::to_string(value) + ", " + what, element,
        std::to_string(value));
}

}  // namespace

void requireOffsets(IndexArrayRef offsets, std::size_t cornerCount, const char* name)
{
    if (offsets.empty())
        throw ArrayError(Code::Length, name, "there are none, where no faces have one, which is 0");
    uint last = 0;
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        if (offsets[i] < last || (i == 0 && offsets[i] != 0))
            throwValue(name, i, offsets[i],
                       i == 0 ? "where offsets begin at 0" : "less than before");
        last = offsets[i];
    }
    if (last != cornerCount)
        throwValue(name, offsets.size() - 1, last,
                   "where there are " + std::to_string(cornerCount) + " corners");
}

void requireBelow(IndexArrayRef indices, std::size_t count, const char* name, const char* what)
{
    const auto bad = std::find_if(indices.begin(), indices.end(),
                                  [count](uint index) { return index >= count; });
    if (bad != indices.end())
        throwValue(name, static_cast<std::size_t>(bad - indices.begin()), *bad,
                   "where there are " + std::to_string(count) + " " + what);
}

void requireEdgeTable(IndexArrayRef edges, std::size_t cornerCount, const char* name)
{
    std::vector<char> isNamed(cornerCount);
    for (std::size_t i = 0; i < edges.size(); ++i) {
        if (edges[i] == kNone && i % 2 == 1)
            continue;
        if (edges[i] >= cornerCount)
            throwValue(name, i, edges[i],
                       "where there are " + std::to_string(cornerCount) + " corners");
        if (isNamed[edges[i]] != 0)
            throwValue(name, i, edges[i], "a corner that is named twice");
        isNamed[edges[i]] = 1;
    }
}

void requireLength(std::size_t length, std::size_t wanted, const char* name, const char* what)
{
    if (length != wanted)
        throw ArrayError(Code::Length, name,
                         std::to_string(length) + " entries, where there are " +
                             std::to_string(wanted) + " " + what);
}

std::size_t leastPointCount(IndexArrayRef corners)
{
    const auto largest = std::max_element(corners.begin(), corners.end());
    return largest == corners.end() ? 0 : std::size_t{*largest} + 1;
}

}  // namespace TessaryPython
