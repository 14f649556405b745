#include "files/obj/ObjContent.h"

#include "base/Host.h"

namespace TessaryMesh {
namespace {

void storePointValues(ObjContent& content, std::size_t pointCount, Object& mesh)
{
    if (!content.colours.empty() && content.colours.size() == pointCount)
        Geometry::addDataGeoProperty<float3>(
            mesh, "color", Geometry::sPointComp,
            makeMutable<Array<float3>>(std::move(content.colours)));
    if (content.weights.empty())
        return;
    content.weights.resize(pointCount, 1.0f);
    Geometry::addDataGeoProperty<float>(mesh, "weight", Geometry::sPointComp,
                                        makeMutable<Array<float>>(std::move(content.weights)),
                                        1.0f);
}

void storeCornerValues(ObjContent& content, std::size_t cornerCount, Object& mesh)
{
    if (content.hasWideTexcoords)
        content.texcoordIndices.store(mesh, "texcoord", std::move(content.wideTexcoords),
                                      cornerCount);
    else if (!content.texcoords.empty())
        content.texcoordIndices.store(mesh, "texcoord", std::move(content.texcoords), cornerCount);
    if (!content.normals.empty())
        content.normalIndices.store(mesh, "normal", std::move(content.normals), cornerCount);
}

}  // namespace

void ObjContent::addColour(const float3& colour)
{
    ++colourCount;
    if (colours.size() + 1 == points.size())  // every point so far has one
        colours.push_back(colour);
}

void ObjContent::addWeight(float weight)
{
    if (weight == 1)
        return;
    weights.resize(points.size() - 1, 1.0f);
    weights.push_back(weight);
}

void ObjContent::addTexcoord(const float3& texcoord, bool hasW)
{
    if (hasW && !hasWideTexcoords) {
        hasWideTexcoords = true;
        wideTexcoords.resize(texcoords.size());
        for (std::size_t i = 0; i < texcoords.size(); ++i)
            wideTexcoords[i] = {texcoords[i].x, texcoords[i].y, 0};
        texcoords = {};
    }
    if (hasWideTexcoords)
        wideTexcoords.push_back(texcoord);
    else
        texcoords.push_back({texcoord.x, texcoord.y});
}

// Exporters repeat the statement for every object.
void ObjContent::addLibrary(const String& name)
{
    if (!knownLibraries.insert(name).second)
        return;
    if (knownLibraries.size() > 1)
        libraries += ' ';
    libraries += name.view();
}

MutablePtr<Object> moveToMesh(ObjContent& content)
{
    const std::size_t points = content.points.size();
    const std::size_t corners = content.corners.size();
    const std::size_t faces = content.faceCount();
    MutablePtr<Object> mesh = Geometry::makeMesh(
        std::move(content.points), std::move(content.faceOffset), std::move(content.corners));
    storePointValues(content, points, *mesh);
    storeCornerValues(content, corners, *mesh);
    content.object.store(*mesh, "object", faces);
    content.group.store(*mesh, "group", faces);
    content.material.store(*mesh, "material", faces);
    content.smoothing.store(*mesh, "smoothing", faces);
    if (!content.knownLibraries.empty())
        mesh->setProperty("material_library", String(content.libraries));
    return mesh;
}

}  // namespace TessaryMesh
