#include "base/MessageText.h"
#include "files/FileErrors.h"
#include "files/PercentCodes.h"
#include "files/npz/Npz.h"
#include "files/npz/NpzArchive.h"
#include "files/npz/NpzForeign.h"
#include "files/npz/NpzNames.h"
#include "files/npz/Texts.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using Json = nlohmann::json;
using Interpolation = Common::DataInterpolationMode;

/// Puts a mesh together as the description says.
class DescribedMesh {
public:
    DescribedMesh(NpzArchive& archive, const std::string& path, std::vector<std::string>& warnings)
        : m_archive(archive), m_path(path), m_warnings(warnings)
    {}

    MutablePtr<Object> mesh()
    {
        const Json description = read();
        makeBase();
        for (const Json& entry : description)
            addEntry(entry);
        for (const String& name : m_base->propertyNames())  // a point cloud lists none of faces
            if (!m_mesh->hasProperty(name))
                m_mesh->setProperty(name, m_base->getProperty(name));
        return m_mesh;
    }

private:
    [[noreturn]] void fail(const std::string& what) const
    {
        failToRead(FileError::Code::Malformed, m_path,
                   "the description in array \"tessary\" " + what +
                       "; leave the array out, or write the file again");
    }

    Json read()
    {
        const auto bytes = m_archive.require<unsigned char>(kNpzDescription);
        Json json = Json::parse(bytes->begin(), bytes->end(), nullptr, false);
        if (!json.is_object() || json.value("version", Json()) != 1 || !json.contains("entries") ||
            !json["entries"].is_array())
            fail("is no JSON object of version 1 with entries");
        return std::move(json["entries"]);
    }

    void makeBase()
    {
        Array<float3> points = pointsOf(m_archive, kNpzPositions, m_path, m_warnings);
        Array<uint> offset{0}, vertex;
        if (m_archive.has(kNpzFaceOffset) || m_archive.has(kNpzFaceVertex)) {
            Shape shape;
            offset = indicesOf(m_archive, kNpzFaceOffset, m_path, shape);
            vertex = indicesOf(m_archive, kNpzFaceVertex, m_path, shape);
        }
        m_base = makeMesh(std::move(points), std::move(offset), std::move(vertex));
    }

    std::string textOf(const Json& entry, const char* key) const
    {
        const auto found = entry.is_object() ? entry.find(key) : entry.end();
        if (found == entry.end() || !found->is_string())
            fail(std::string("has an entry without a text \"") + key + "\"");
        return found->get<std::string>();
    }

    void addEntry(const Json& entry)
    {
        const std::string text = textOf(entry, "name");
        const String name = nameOfNpz(text);
        if (m_mesh->hasProperty(name) || name == sRenderSettings)
            fail("has an entry " + TessaryMesh::quoted(text) + " that cannot be, or twice");
        if (text.substr(0, 1) == "@") {
            if (!m_base->hasProperty(name))
                fail("has an entry " + TessaryMesh::quoted(text) + " that no mesh has");
            m_mesh->setProperty(name, m_base->getProperty(name));
            return;
        }
        const std::string kind = textOf(entry, "kind");
        if (kind == "values")
            addValues(entry, name);
        else if (kind == "indices")
            addRangeGeoProperty(*m_mesh, name, nameOfNpz(textOf(entry, "on")),
                                m_archive.require<uint>(textOf(entry, "array")));
        else if (kind == "component")
            addComponent(entry, name);
        else if (kind == "text")
            m_mesh->setProperty(name, String(percentDecoded(textOf(entry, "text"))));
        else
            fail("has an entry of the unknown kind " + TessaryMesh::quoted(kind));
    }

    void addComponent(const Json& entry, const String& name)
    {
        const auto count = entry.find("count");
        if (count == entry.end() || !count->is_number_unsigned() ||
            count->get<std::uint64_t>() >= kNone)
            fail("has a component without a count");
        const auto component = Korvane::createObject();
        populateComponentGeoProperty(count->get<uint>(), *component);
        m_mesh->setProperty(name, component);
    }

    void addValues(const Json& entry, const String& name)
    {
        const std::string array = textOf(entry, "array");
        const String on = nameOfNpz(textOf(entry, "on"));
        if (entry.contains("offsets"))
            return add<String>(entry, name, on, textsOf(array, textOf(entry, "offsets")));
        const Any values = m_archive.read(array);
        const bool isKnown = Korvane::visitArray(values, [&](const auto& typed, const char*) {
            add<typename std::decay_t<decltype(*typed)>::value_type>(entry, name, on, typed);
        });
        if (!isKnown)
            fail("names an array " + TessaryMesh::quoted(array) + " of no type that a mesh has");
    }

    template <class T>
    T defaultOf(const std::string& text)
    {
        if constexpr (std::is_same_v<T, String>) {
            return String(percentDecoded(text));
        } else {
            const auto array = m_archive.require<T>(text);
            if (array->size() != 1)
                fail("names a default that is not one value");
            return (*array)[0];
        }
    }

    template <class T>
    void add(const Json& entry, const String& name, const String& on, Ptr<Array<T>> values)
    {
        T fallback{};
        if (entry.contains("default"))
            fallback = defaultOf<T>(textOf(entry, "default"));
        const auto interpolation = entry.find("interpolation");
        Interpolation mode = Interpolation::Linear;
        if (interpolation != entry.end()) {
            const Json constant = 0, none = 2;
            if (*interpolation != constant && *interpolation != none)
                fail("has an interpolation that is neither 0 nor 2");
            mode = static_cast<Interpolation>(interpolation->get<int>());
        }
        addDataGeoProperty<T>(*m_mesh, name, on, std::move(values), fallback, mode);
        if (entry.contains("depends_on"))
            addOwners(entry["depends_on"], name);
    }

    void addOwners(const Json& names, const String& name)
    {
        Array<String> owners;
        for (const Json& owner : names)
            owners.push_back(owner.is_string() ? nameOfNpz(owner.get<std::string>()) : String());
        const auto property = makeMutable<Object>(*getDataGeoProperty(*m_mesh, name));
        property->setProperty(sDependsOn, makeMutable<Array<String>>(std::move(owners)));
        m_mesh->setProperty(name, property);
    }

    MutablePtr<Array<String>> textsOf(const std::string& array, const std::string& offsetArray)
    {
        const auto bytes = m_archive.require<unsigned char>(array);
        const auto offsets = m_archive.require<unsigned long long>(offsetArray);
        if (offsets->empty() || (*offsets)[0] != 0 ||
            (*offsets)[offsets->size() - 1] != bytes->size() ||
            !std::is_sorted(offsets->begin(), offsets->end()))
            fail("names offsets " + TessaryMesh::quoted(offsetArray) +
                 " that do not divide the texts");
        auto texts = makeMutable<Array<String>>();
        const auto* const first = reinterpret_cast<const char*>(bytes->data());
        for (std::size_t i = 0; i + 1 < offsets->size(); ++i)
            texts->push_back(String(std::string(first + (*offsets)[i], first + (*offsets)[i + 1])));
        return texts;
    }

    NpzArchive& m_archive;
    const std::string& m_path;
    std::vector<std::string>& m_warnings;
    MutablePtr<Object> m_base, m_mesh = Korvane::createObject();
};

}  // namespace

bool isNpz(std::string_view bytes)
{
    if (bytes.substr(0, 4) != std::string_view("PK\x03\x04", 4) || bytes.size() < 30)
        return false;
    const auto length = [bytes](std::size_t at) {
        return static_cast<std::size_t>(static_cast<unsigned char>(bytes[at]) |
                                        static_cast<unsigned char>(bytes[at + 1]) << 8);
    };
    const std::string_view name = bytes.substr(30, length(26));
    return name.size() > 4 && name.substr(name.size() - 4) == ".npy";
}

MeshRead readNpz(const Input& input, const std::string& path)
{
    NpzArchive archive(input, path);
    MeshRead read{nullptr, findFormat(archive.isPacked() ? "npz-compressed" : "npz"), {}};
    read.mesh = archive.has(kNpzDescription) ? DescribedMesh(archive, path, read.warnings).mesh()
                                             : meshOfForeignArrays(archive, path, read.warnings);
    return read;
}

}  // namespace TessaryMesh
