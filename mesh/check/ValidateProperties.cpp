#include "check/ValidateParts.h"

#include "base/Host.h"
#include "base/PropertyKinds.h"

#include <algorithm>
#include <numeric>

namespace TessaryMesh {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 17;

class PropertyChecks {
public:
    explicit PropertyChecks(const Object& mesh) : m_mesh(mesh) {}

    void check(ValidationReport& report)
    {
        for (const String& name : m_mesh.propertyNames()) {
            if (const auto property = Geometry::getDataGeoProperty(m_mesh, name))
                Korvane::visitArray(property->getProperty(Geometry::sData),
                                    [&](const auto& array, const char*) {
                                        checkArray(name, *property, array->size());
                                    });
            else if (const auto range = Geometry::getRangeGeoProperty(m_mesh, name))
                checkArray(name, *range, Geometry::getRangeGeoPropIndices(*range)->size());
        }
        m_length.addTo(report);
        m_index.addTo(report);
        m_circle.addTo(report);
    }

private:
    void checkArray(const String& name, const Object& property, std::size_t size)
    {
        const std::string shown(name.view());
        const String target = entryOf<String>(property, Geometry::sTarget).value_or(String());
        if (const auto range = Geometry::getRangeGeoProperty(m_mesh, target))
            checkIndices(shown, target, *Geometry::getRangeGeoPropIndices(*range), size);
        const String component = Geometry::getTargetComponent(m_mesh, name);
        if (component.empty())
            m_circle.add([&] { return std::string(name.view()); });
        else if (component == target)
            checkLength(shown, component, size, name == Geometry::sFaceOffset ? 1 : 0);
    }

    // What targets a property rather than a component may be of any length.
    void checkLength(const std::string& name, const String& component, std::size_t size,
                     std::size_t extra)
    {
        const std::size_t expected = Geometry::getElementCount(m_mesh, component) + extra;
        if (size != expected)
            m_length.add([&] {
                return "\"" + name + "\", which has " + str(size) + " entries and should have " +
                       str(expected) + " (\"" + std::string(component.view()) + "\")";
            });
    }

    void checkIndices(const std::string& name, const String& range, const Array<uint>& indices,
                      std::size_t valueCount)
    {
        std::size_t outside = countOutside(indices, valueCount, true);
        for (std::size_t i = 0; outside > 0; ++i) {
            if (indices[i] < valueCount || indices[i] == kNone)
                continue;
            --outside;
            m_index.add([&] {
                return "entry " + str(i) + " of \"" + std::string(range.view()) +
                       "\", which names value " + str(indices[i]) + " of " + str(valueCount) +
                       " in \"" + name + "\"";
            });
        }
    }

    const Object& m_mesh;
    Finding m_length =
        error("length-mismatch", "arrays whose length does not match their component",
              "give the array one entry per element");
    Finding m_index = error("property-index", "indices outside the values of their property",
                            "add the missing values or correct the indices");
    Finding m_circle = error("circular-target", "properties whose targets lead round in a circle",
                             "let the property target a component");
};

}  // namespace

std::size_t countOutside(const Array<uint>& indices, std::size_t valueCount, bool noneIsAllowed)
{
    const auto bound = static_cast<uint>(std::min<std::size_t>(valueCount, kNone));
    std::vector<std::size_t> outside((indices.size() + kBlock - 1) / kBlock);
    forEachBlock(outside.size(), [&](std::size_t block) {
        const std::size_t end = std::min((block + 1) * kBlock, indices.size());
        uint found = 0;  // without branches, so that compilers can look at many entries at once
        for (std::size_t i = block * kBlock; i < end; ++i)
            found += (indices[i] >= bound) & !(noneIsAllowed & (indices[i] == kNone));
        outside[block] = found;
    });
    return std::accumulate(outside.begin(), outside.end(), std::size_t{0});
}

void checkProperties(const Object& mesh, ValidationReport& report)
{
    PropertyChecks(mesh).check(report);
}

}  // namespace TessaryMesh
