// Changes a value of a mesh in place, and sees that a copy of the mesh keeps its own.
#include <Korvane/Geometry.h>

#include <iostream>

using namespace Korvane;
using Pelon::Array;
using Pelon::Ptr;

// Copy on write: what is handed out is changed in place unless somebody else holds it too.
void heatUp(Object& mesh)
{
    Pelon::Any value = mesh.getPropertyForModification("heat");  // the mesh lets go of it ...
    const auto heat = toMutable(std::move(*value.get<Ptr<Object>>()));
    Pelon::Any data = heat->getPropertyForModification(Geometry::sData);
    const auto degrees = toMutable(std::move(*data.get<Ptr<Array<float>>>()));
    for (float& degree : *degrees)
        degree += 10;
    heat->setProperty(Geometry::sData, degrees);
    mesh.setProperty("heat", heat);  // ... and must get it back
}

int main()
{
    const auto mesh = Geometry::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 3}, {0, 1, 2});
    Geometry::addDataGeoProperty<float>(*mesh, "heat", Geometry::sPointComp,
                                        Pelon::makeMutable<Array<float>>(3, 20.0f));
    const float* const storage = Geometry::dataArray<float>(*mesh, "heat")->data();
    heatUp(*mesh);
    const bool inPlace = Geometry::dataArray<float>(*mesh, "heat")->data() == storage;

    const Object copy = *mesh;  // shares every value
    heatUp(*mesh);
    std::cout << (inPlace ? "in place" : "copied") << ", then "
              << (*Geometry::dataArray<float>(*mesh, "heat"))[0] << " beside "
              << (*Geometry::dataArray<float>(copy, "heat"))[0] << '\n';
}
