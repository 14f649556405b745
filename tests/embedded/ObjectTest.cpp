#include "support/MeshBuilding.h"

#include <Korvane/Object.h>
#include <gtest/gtest.h>

namespace {

using namespace TestSupport;
using Pelon::Any;

TEST(Object, KeepsValuesUnderTheirNamesInTheOrderOfFirstInsertion)
{
    Object object;
    EXPECT_FALSE(object.hasProperty("b"));
    EXPECT_TRUE(object.getProperty("b").empty());

    object.setProperty("b", 1);
    object.setProperty("a", 2);
    object.storeProperty("c", 3);
    object.setProperty("b", 4);
    EXPECT_EQ(object.propertyNames(), (Array<String>{"b", "a", "c"}));
    EXPECT_EQ(*object.getProperty("b").get<int>(), 4);
    EXPECT_EQ(*object.getProperty("c").get<int>(), 3);

    object.setProperty("a", Any());
    EXPECT_FALSE(object.hasProperty("a"));
    EXPECT_EQ(object.propertyNames(), (Array<String>{"b", "c"}));
}

TEST(Object, HandsAValueOutForModificationAndTakesItBackInItsPlace)
{
    Object object;
    object.setProperty("array", makeMutable<Array<int>>(Array<int>{1}));
    object.setProperty("after", 2);
    EXPECT_EQ(object.getProperty("array").get<Ptr<Array<int>>>()->useCount(), 2u);

    Any value = object.getPropertyForModification("array");
    auto& array = *value.get<Ptr<Array<int>>>();
    EXPECT_EQ(array.useCount(), 1u);  // nobody else holds it, so it is changed in place
    EXPECT_FALSE(object.hasProperty("array"));
    EXPECT_EQ(object.propertyNames(), (Array<String>{"after"}));

    const auto* const storage = array.get();
    auto changed = toMutable(std::move(array));
    changed->push_back(5);
    object.setProperty("array", std::move(changed));
    EXPECT_EQ(object.propertyNames(), (Array<String>{"array", "after"}));
    EXPECT_EQ(object.getProperty("array").get<Ptr<Array<int>>>()->get(), storage);
    EXPECT_EQ(*storage, (Array<int>{1, 5}));
    EXPECT_TRUE(object.getPropertyForModification("nothing").empty());
}

TEST(Object, CopiesAreShallowAndIndependent)
{
    const auto nested = Korvane::createObject();
    nested->setProperty("depth", 1);
    Object original;
    original.setProperty("nested", nested);
    Object copy = original;
    copy.setProperty("own", 2);
    EXPECT_FALSE(original.hasProperty("own"));
    EXPECT_EQ(copy.getProperty("nested").get<Ptr<Object>>()->get(), nested.get());
    EXPECT_EQ(nested.useCount(), 3u);
}

}  // namespace
