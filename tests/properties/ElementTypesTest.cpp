#include "support/MeshBuilding.h"

#include <Korvane/ElementTypes.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

using namespace TestSupport;

namespace {

// A value whose bytes tell which element it is; strings long enough to need memory of their own.
template <class T>
T valueNumber(unsigned char n)
{
    if constexpr (std::is_same_v<T, String>) {
        return String(std::string(40, static_cast<char>('a' + n)));
    } else if constexpr (std::is_same_v<T, bool>) {
        return n % 2 == 1;
    } else {
        T value;
        std::memset(static_cast<void*>(&value), n + 1, sizeof value);
        return value;
    }
}

template <class T>
Array<T> values(std::initializer_list<int> numbers)
{
    Array<T> out;
    for (const int n : numbers)
        out.push_back(valueNumber<T>(static_cast<unsigned char>(n)));
    return out;
}

template <class T>
void addProperty(Object& mesh, const char* name, const String& component,
                 std::initializer_list<int> numbers)
{
    Geometry::addDataGeoProperty<T>(mesh, name, component,
                                    makeMutable<Array<T>>(values<T>(numbers)), valueNumber<T>(50));
}

template <class T>
void carryEverywhere()
{
    const MutablePtr<Object> mesh = meshOf(4, {{0, 1, 2, 3}, {2, 1, 3}});
    addProperty<T>(*mesh, "point", Geometry::sPointComp, {0, 1, 2, 3});
    addProperty<T>(*mesh, "face", Geometry::sFaceComp, {4, 5});
    addProperty<T>(*mesh, "corner", Geometry::sFaceVertexComp, {0, 1, 2, 3, 4, 5, 6});
    addProperty<T>(*mesh, "other", "no component", {0});
    Geometry::addRangeGeoProperty(*mesh, "range", Geometry::sFaceComp, shared<uint>({1, 0}));
    addProperty<T>(*mesh, "indexed", "range", {7, 8});

    const MutablePtr<Object> target = Korvane::createObject();
    ASSERT_TRUE(Tessary::triangulatePolyMesh(*mesh, {"point", "face", "corner", "other", "indexed"},
                                             *target));
    EXPECT_TRUE(dataOf<T>(*target, "point") == dataOf<T>(*mesh, "point"));
    EXPECT_TRUE(*dataOf<T>(*target, "face") == values<T>({4, 4, 5}));
    EXPECT_TRUE(*dataOf<T>(*target, "corner") == values<T>({0, 1, 2, 0, 2, 3, 4, 5, 6}));
    EXPECT_TRUE(dataOf<T>(*target, "other")->empty());
    EXPECT_TRUE(dataOf<T>(*target, "indexed") == dataOf<T>(*mesh, "indexed"));
    EXPECT_TRUE(entryOf<T>(*target, "face", Geometry::sDefault) == valueNumber<T>(50));
}

}  // namespace

TEST(ElementTypes, EveryTypeOfTheHostIsCarriedPlainAndIndexed)
{
    int count = 0;
    Korvane::anyElementType([&count](auto tag, const char* name) {
        SCOPED_TRACE(name);
        carryEverywhere<typename decltype(tag)::type>();
        ++count;
        return false;
    });
    EXPECT_EQ(count, 36);
}
