#include "base/MessageText.h"
#include "base/PropertyKinds.h"
#include "files/npz/Npz.h"
#include "files/npz/NpzNames.h"
#include "files/npz/NpzWriter.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using Json = nlohmann::ordered_json;
using Interpolation = Common::DataInterpolationMode;

constexpr std::size_t kLongestName =
    200;  // file systems allow 255 bytes, with what makes it unique

class MeshWriter {
public:
    MeshWriter(const Object& mesh, ZipWriter::Packing packing, OutputFile& output)
        : m_mesh(mesh), m_writer(output, packing), m_used{kNpzDescription}
    {
        for (const char* const name : {kNpzPositions, kNpzFaceOffset, kNpzFaceVertex})
            m_used.insert(name);
    }

    std::vector<std::string> write()
    {
        writeTopology<float3>(sPointPosition, kNpzPositions);
        writeTopology<uint>(sFaceOffset, kNpzFaceOffset);
        writeTopology<uint>(sFaceVertex, kNpzFaceVertex);
        for (const String& name : m_mesh.propertyNames())
            writeEntry(name);
        if (m_isNeeded) {
            const Json description = {{"version", 1}, {"entries", m_entries}};
            const std::string text = description.dump();
            Array<unsigned char> bytes(text.size());
            std::copy(text.begin(), text.end(), bytes.begin());
            m_writer.add(kNpzDescription, {text.size()}, bytes);
        }
        m_writer.finish();
        return std::move(m_warnings);
    }

private:
    template <class T>
    void writeTopology(const String& name, const char* array)
    {
        if (const auto values = dataArray<T>(m_mesh, name))
            add(array, *values);
    }

    // The name of an array that no other one has, which is that of a file, too.
    std::string arrayName(const String& name)
    {
        std::string array = escaped(name.view());
        for (char& c : array)
            if (c == '/' || c == '\\' || c == ':' || static_cast<unsigned char>(c) < 0x20)
                c = '_';
        while (array.size() > kLongestName || !isUtf8(array))
            array.pop_back();
        if (array.empty() || array.front() == '.')
            array.insert(0, "_");
        while (!m_used.insert(array).second)
            array += '_';
        m_isNeeded = m_isNeeded || array != name.view();
        return array;
    }

    void writeEntry(const String& name)
    {
        if (isTopology(name) || isMeshComponent(name)) {
            m_isNeeded = m_isNeeded || name == sFaceOffset;
            m_entries.push_back({{"name", npzName(name)}});
        } else if (isComponent(m_mesh, name)) {
            m_isNeeded = true;
            m_entries.push_back({{"name", npzName(name)},
                                 {"kind", "component"},
                                 {"count", getElementCount(m_mesh, name)}});
        } else if (const auto data = getDataGeoProperty(m_mesh, name)) {
            writeValues(name, *data);
        } else if (const auto range = getRangeGeoProperty(m_mesh, name)) {
            writeIndices(name, *range);
        } else {
            writeOther(name);
        }
    }

    void writeValues(const String& name, const Object& property)
    {
        Json entry = {{"name", npzName(name)}, {"kind", "values"}};
        const String on = targetOf(property);
        m_isNeeded = m_isNeeded || !(on == sPointComp);
        const bool isKnown =
            Korvane::visitArray(property.getProperty(sData), [&](const auto& values, const char*) {
                const std::string array = arrayName(name);
                entry["array"] = array;
                entry["on"] = npzName(on);
                writeArray(array, *values, entry);
                describe(array, *values, property, entry);
            });
        if (isKnown)
            m_entries.push_back(std::move(entry));
        else
            m_warnings.push_back("property " + quoted(name.view()) +
                                 " has elements of an unknown type and is left out");
    }

    static String targetOf(const Object& property)
    {
        return entryOf<String>(property, sTarget).value_or(String());
    }

    template <class T>
    void add(const std::string& array, const Array<T>& values)
    {
        Shape shape = shapeOfElement<T>();
        shape.insert(shape.begin(), values.size());
        m_writer.add(array, shape, values);
    }

    template <class T>
    void writeArray(const std::string& array, const Array<T>& values, Json& entry)
    {
        if constexpr (std::is_same_v<T, String>)
            if (!fitIntoRows(values))
                return writeTexts(array, values, entry);
        add(array, values);
    }

    // All bytes, one text behind the other.
    void writeTexts(const std::string& array, const Array<String>& texts, Json& entry)
    {
        m_isNeeded = true;
        Array<unsigned char> bytes;
        Array<unsigned long long> offsets{0};
        for (const String& text : texts) {
            for (const char c : text.view())
                bytes.push_back(static_cast<unsigned char>(c));
            offsets.push_back(bytes.size());
        }
        const std::string offsetArray = arrayName(String(array + "_offset"));
        entry["offsets"] = offsetArray;
        add(array, bytes);
        add(offsetArray, offsets);
    }

    // What a new property has, no entry says.
    template <class T>
    void describe(const std::string& array, const Array<T>&, const Object& property, Json& entry)
    {
        const auto interpolation = entryOf<Interpolation>(property, sInterp);
        if (interpolation && *interpolation != Interpolation::Linear)
            entry["interpolation"] = static_cast<int>(*interpolation);
        if (const auto value = entryOf<T>(property, sDefault); value && !(*value == T())) {
            if constexpr (std::is_same_v<T, String>) {
                entry["default"] = escaped(value->view());
            } else {
                const std::string defaultArray = arrayName(String(array + "_default"));
                entry["default"] = defaultArray;
                add(defaultArray, Array<T>(1, *value));
            }
        }
        const auto owners = entryOf<Ptr<Array<String>>>(property, sDependsOn);
        if (owners && *owners && !(*owners)->empty())
            for (const String& owner : **owners)
                entry["depends_on"].push_back(npzName(owner));
        m_isNeeded = m_isNeeded || entry.size() > 4;
    }

    void writeIndices(const String& name, const Object& range)
    {
        m_isNeeded = true;
        const std::string array = arrayName(name);
        add(array, *getRangeGeoPropIndices(range));
        m_entries.push_back({{"name", npzName(name)},
                             {"kind", "indices"},
                             {"array", array},
                             {"on", npzName(targetOf(range))}});
    }

    void writeOther(const String& name)
    {
        const Any value = m_mesh.getProperty(name);
        if (const String* const text = value.get<String>()) {
            m_isNeeded = true;
            m_entries.push_back(
                {{"name", npzName(name)}, {"kind", "text"}, {"text", escaped(text->view())}});
        } else {
            m_warnings.push_back("value " + quoted(name.view()) +
                                 " of the mesh itself is no text and is left out");
        }
    }

    const Object& m_mesh;
    NpzWriter m_writer;
    std::set<std::string> m_used;  // names of arrays
    Json m_entries = Json::array();
    bool m_isNeeded = false;  // the description
    std::vector<std::string> m_warnings;
};

}  // namespace

std::vector<std::string> writeNpz(const Object& mesh, ZipWriter::Packing packing,
                                  OutputFile& output)
{
    return MeshWriter(mesh, packing, output).write();
}

}  // namespace TessaryMesh
