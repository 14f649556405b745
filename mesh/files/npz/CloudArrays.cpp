#include "files/npz/CloudArrays.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "base/PropertyKinds.h"
#include "base/Scalars.h"
#include "files/npz/Npz.h"

#include <algorithm>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using namespace Korvane::Math;

constexpr std::size_t kLongestText = 256;

// The characters of UTF-8; a byte that is none becomes the character that stands for such.
std::vector<char32_t> charactersOf(std::string_view text)
{
    std::vector<char32_t> characters;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if (i + length > text.size() || !isUtf8(text.substr(i, length))) {
            characters.push_back(0xFFFD);
            ++i;
            continue;
        }
        char32_t character = length == 1 ? lead : lead & (0xFFu >> (length + 1));
        for (std::size_t k = 1; k < length; ++k)
            character = character << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3F);
        characters.push_back(character);
        i += length;
    }
    return characters;
}

class CloudWriter {
public:
    CloudWriter(const Object& cloud, OutputFile& output) : m_cloud(cloud), m_writer(output) {}

    std::vector<std::string> write()
    {
        std::string position = "position";
        while (m_cloud.hasProperty(position))
            position += '_';
        add(position, *dataArray<float3>(m_cloud, sPointPosition));
        for (const String& name : m_cloud.propertyNames())
            if (isOwnValue(m_cloud, name))
                leaveOut("value", name, "belongs to no point");
            else if (getDataGeoProperty(m_cloud, name) && !isTopology(name))
                writeProperty(name);
        m_writer.finish();
        return std::move(m_warnings);
    }

private:
    void leaveOut(const std::string& kind, const String& name, const std::string& why)
    {
        m_warnings.push_back(kind + " " + quoted(name.view()) + " " + why + " and is left out");
    }

    void writeProperty(const String& name)
    {
        const auto property = findElementProperty(m_cloud, name);
        if (!property || property->component != sPointComp || !property->range.empty())
            return leaveOut("property", name, "is no list of values of the points");
        Korvane::visitArray(getDataGeoProperty(m_cloud, name)->getProperty(sData),
                            [&](const auto& array, const char*) { add(name, *array); });
    }

    template <class T>
    void add(const String& name, const Array<T>& values)
    {
        std::vector<std::size_t> shape{values.size()};
        for (const std::size_t length : {Scalars<T>::kRows, Scalars<T>::kColumns})
            if (length > 0)
                shape.push_back(length);
        m_writer.add(name.c_str(), shape, scalarsOf(values.data()));
    }

    void add(const String& name, const Array<String>& texts)
    {
        std::size_t width = 1;
        for (const String& text : texts)
            width = std::max(width, charactersOf(text.view()).size());
        if (width > kLongestText)
            return leaveOut("property", name,
                            "has texts of up to " + std::to_string(width) + " characters");
        std::vector<char32_t> all(width * texts.size());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const std::vector<char32_t> characters = charactersOf(texts[i].view());
            std::copy(characters.begin(), characters.end(), all.data() + i * width);
        }
        m_writer.addTexts(name.c_str(), width, all);
    }

    const Object& m_cloud;
    NpzWriter m_writer;
    std::vector<std::string> m_warnings;
};

}  // namespace

std::vector<std::string> writeCloudNpz(const Object& cloud, OutputFile& output)
{
    return CloudWriter(cloud, output).write();
}

}  // namespace TessaryMesh
