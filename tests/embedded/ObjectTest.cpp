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

TEST(Object, FindsEachOfManyNamesAndSoDoItsCopies)
{
    Object object;
    for (int i = 0; i < 1000; ++i)
        object.setProperty(std::to_string(i % 500), i);
    const Object copy = object;
    object.setProperty("more", 1);
    EXPECT_EQ(copy.propertyNames().size(), 500u);
    for (int i = 0; i < 500; ++i)
        ASSERT_EQ(*copy.getProperty(std::to_string(i)).get<int>(), i + 500);
    EXPECT_TRUE(object.hasProperty("more"));
    EXPECT_FALSE(copy.hasProperty("more"));
}

TEST(String, IsItsBytesAndSharesThoseOfLongOnes)
{
    for (const std::size_t size : {0, 1, 14, 15, 16, 1000}) {
        std::string text(size, 'x');
        if (size > 1)
            text[size / 2] = '\0';
        Pelon::String string(text), copy = string, moved = std::move(string);
        EXPECT_EQ(copy.view(), text);
        EXPECT_EQ(moved, copy);
        EXPECT_EQ(copy.c_str()[size], '\0');
        EXPECT_EQ(copy.c_str() == moved.c_str(), size > 15);
        copy = Pelon::String("other");
        EXPECT_EQ(moved.view(), text);
        EXPECT_TRUE(copy != moved && copy.view() == "other");
    }
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
