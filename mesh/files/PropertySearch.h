#pragma once

#include "base/Host.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace TessaryMesh {

/// The values of a property and how the elements of its component find theirs.
template <class T>
struct ElementValues {
    using Value = T;

    Ptr<Array<T>> values;
    Ptr<Array<uint>> indices;  ///< empty for a plain property

    /// Where element `i` has its value, kNone if it has none.
    uint indexOf(std::size_t i) const
    {
        const uint index = indices ? (*indices)[i] : static_cast<uint>(i);
        return index < values->size() ? index : kNone;
    }

    T valueOf(std::size_t i) const
    {
        const uint index = indexOf(i);
        return index == kNone ? T() : (*values)[index];
    }
};

/// Looks for the properties that a format has a place for, and knows which ones are left.
class PropertySearch {
public:
    /// `format` is what warnings call it: "OBJ".
    PropertySearch(const Object& mesh, std::string_view format) : m_mesh(mesh), m_format(format) {}

    /// A property of that name and type, plain or indexed through one range property, whose arrays cover
    /// `count` elements of the component. False, with `found` as it was, where there is none.
    template <class Found>
    bool find(const char* name, const String& component, std::size_t count,
              std::optional<Found>& found)
    {
        const auto values = Geometry::dataArray<typename Found::Value>(m_mesh, name);
        if (!values || Geometry::getTargetComponent(m_mesh, name) != component)
            return false;
        Found result;
        result.values = values;
        const Array<String> chain = Geometry::getTargetChain(m_mesh, name);
        if (chain.size() == 1)
            if (const auto range = Geometry::getRangeGeoProperty(m_mesh, chain[0]))
                result.indices = Geometry::getRangeGeoPropIndices(*range);
        const std::size_t covered = result.indices ? result.indices->size() : values->size();
        if (chain.size() > 1 || (chain.size() == 1 && !result.indices) || covered != count)
            return false;
        m_handled.insert(name);
        found = std::move(result);
        return true;
    }

    /// A text of the object itself.
    std::optional<String> findText(const char* name);

    /// Whatever else is known of the property, no warning is due.
    void handle(const char* name) { m_handled.insert(name); }

    /// A warning for each property that was not found; the topology and components need none.
    std::vector<std::string> leftOut() const;

private:
    std::string describe(const String& name) const;
    bool isTarget(const String& range) const;

    const Object& m_mesh;
    std::string m_format;
    std::set<std::string> m_handled;
};

}  // namespace TessaryMesh
