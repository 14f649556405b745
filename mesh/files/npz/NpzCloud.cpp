#include "files/npz/Npz.h"

#include "base/Host.h"
#include "base/MessageText.h"
#include "base/PropertyKinds.h"
#include "files/npz/NpzWriter.h"

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;

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
        if constexpr (std::is_same_v<T, String>)
            if (const std::size_t width = NpzWriter::longestOf(values);
                width > NpzWriter::kLongestText)
                return leaveOut("property", name,
                                "has texts of up to " + std::to_string(width) + " characters");
        Shape shape = shapeOfElement<T>();
        shape.insert(shape.begin(), values.size());
        m_writer.add(name.c_str(), shape, values);
    }

    const Object& m_cloud;
    NpzWriter m_writer;
    std::vector<std::string> m_warnings;
};

}  // namespace

std::vector<std::string> writeNpzCloud(const Object& cloud, OutputFile& output)
{
    return CloudWriter(cloud, output).write();
}

}  // namespace TessaryMesh
