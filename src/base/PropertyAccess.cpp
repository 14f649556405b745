#include "base/PropertyAccess.h"

namespace Tessary {

void setDataArray(StringView name, Any array, Object& geometry)
{
    Modification<Object> modified(geometry, name);
    modified.valueOrMade(Korvane::createObject)->setProperty(Geometry::sData, std::move(array));
    modified.store();
}

void clearDependsOn(Object& property)
{
    if (!Geometry::sDependsOn.empty())
        property.setProperty(Geometry::sDependsOn, makeMutable<Array<String>>());
}

void setDefaultInterpolation(Object& property)
{
    if (!Geometry::sInterp.empty())
        property.setProperty(Geometry::sInterp,
                             static_cast<Geometry::Common::DataInterpolationMode>(1));
}

}  // namespace Tessary
