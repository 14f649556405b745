#include "base/PropertyAccess.h"

#include "support/FailingAllocations.h"
#include "support/MeshBuilding.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

using namespace Tessary;
using TestSupport::allocationsLeft;
using TestSupport::entryOf;
using TestSupport::kNone;
using TestSupport::meshOf;

TEST(GetDataArray, IsEmptyForWhateverIsNotAnArrayOfThatType)
{
    const MutablePtr<Object> mesh = meshOf(3, {{0, 1, 2}});
    mesh->setProperty("text", String("not a property"));
    mesh->setProperty("no data", Korvane::createObject());
    EXPECT_EQ(*getDataArray<uint>(*mesh, Geometry::sFaceVertex), (Array<uint>{0, 1, 2}));
    EXPECT_FALSE(getDataArray<float>(*mesh, Geometry::sFaceVertex));
    for (const char* name : {"missing", "text", "no data"})
        EXPECT_FALSE(getDataArray<uint>(*mesh, name)) << name;
}

TEST(AddDataArray, MakesAPropertyWithEveryEntry)
{
    const MutablePtr<Object> geometry = Korvane::createObject();
    const MutablePtr<Array<uint>> data = addDataArray<uint>("comp", "p", 3, kNone, *geometry);
    (*data)[1] = 7;

    EXPECT_EQ(*getDataArray<uint>(*geometry, "p"), (Array<uint>{kNone, 7, kNone}));
    EXPECT_EQ(entryOf<uint>(*geometry, "p", Geometry::sDefault), kNone);
    EXPECT_EQ(entryOf<String>(*geometry, "p", Geometry::sTarget), "comp");
    EXPECT_TRUE(entryOf<Ptr<Array<String>>>(*geometry, "p", Geometry::sDependsOn)->empty());
    EXPECT_EQ(static_cast<int>(entryOf<TestSupport::Mode>(*geometry, "p", Geometry::sInterp)), 1);
}

TEST(AddDataArray, ChangesAnUnsharedPropertyInPlaceAndCopiesASharedOne)
{
    const MutablePtr<Object> geometry = Korvane::createObject();
    addDataArray<uint>("comp", "p", 2, 5, *geometry);
    const uint* const storage = getDataArray<uint>(*geometry, "p")->data();
    addDataArray<uint>("comp", "p", 1, 6, *geometry);
    EXPECT_EQ(getDataArray<uint>(*geometry, "p")->data(), storage);
    EXPECT_EQ(*getDataArray<uint>(*geometry, "p"), (Array<uint>{5}));

    const Object other = *geometry;  // shares the property object
    addDataArray<uint>("comp", "p", 3, 8, *geometry);
    EXPECT_EQ(*getDataArray<uint>(*geometry, "p"), (Array<uint>{5, 8, 8}));
    EXPECT_EQ(*getDataArray<uint>(other, "p"), (Array<uint>{5}));
    EXPECT_EQ(entryOf<uint>(other, "p", Geometry::sDefault), 6u);

    const Ptr<Array<uint>> array = getDataArray<uint>(*geometry, "p");  // shares the array alone
    addDataArray<uint>("comp", "p", 0, 8, *geometry);
    EXPECT_EQ(array->size(), 3u);
}

TEST(AddDataArray, ReplacesAnArrayOfAnotherTypeAndStoresNothingUnderAnEmptyName)
{
    const MutablePtr<Object> geometry = Korvane::createObject();
    addDataArray<float>("comp", "p", 2, 1.0f, *geometry);
    addDataArray<uint>("comp", "p", 1, 4, *geometry);
    EXPECT_EQ(*getDataArray<uint>(*geometry, "p"), (Array<uint>{4}));

    const auto unnamed = addDataArray<uint>("comp", "", 2, 9, *geometry);
    EXPECT_EQ(*unnamed, (Array<uint>{9, 9}));
    EXPECT_EQ(geometry->propertyNames(), (Array<String>{"p"}));
}

TEST(AddDataArray, LosesNothingWhereverMemoryRunsOut)
{
    const String name = "a_name_too_long_to_be_stored_without_memory_of_its_own";
    static const uint lent[] = {5, 5};
    for (const std::string holder : {"none", "another object", "a lender"}) {
        bool succeeded = false;
        for (int allocations = 0; !succeeded; ++allocations) {
            SCOPED_TRACE(holder + " beside it, " + std::to_string(allocations));
            const MutablePtr<Object> geometry = Korvane::createObject();
            addDataArray<uint>("comp", name, 2, 5, *geometry);
            const Object other = holder == "another object" ? *geometry : Object();
            if (holder == "a lender")
                setDataArray(name, Array<uint>::borrow(lent, 2), *geometry);
            try {
                allocationsLeft = allocations;
                addDataArray<uint>("comp", name, 3, 6, *geometry);
                succeeded = true;
            } catch (const std::bad_alloc&) {
            }
            allocationsLeft = -1;
            ASSERT_TRUE(getDataArray<uint>(*geometry, name));
            EXPECT_EQ((*getDataArray<uint>(*geometry, name))[1], 5u);
        }
    }
    const MutablePtr<Object> geometry = Korvane::createObject();
    addDataArray<uint>("comp", name, 2, 5, *geometry);
    const std::uint64_t tooMany = std::uint64_t{1} << 62;
    EXPECT_THROW(addDataArray<uint>("comp", name, tooMany, 6, *geometry), std::bad_alloc);
    EXPECT_EQ(*getDataArray<uint>(*geometry, name), (Array<uint>{5, 5}));
}
