#include "support/MeshBuilding.h"

#include <Korvane/ElementTypes.h>
#include <Pelon/Any.h>
#include <gtest/gtest.h>

#include <set>

namespace {

using namespace TestSupport;
using Pelon::Any;

TEST(Any, GivesBackOnlyTheTypeThatItHolds)
{
    EXPECT_TRUE(Any().empty());
    EXPECT_EQ(Any().get<int>(), nullptr);

    Any value = 7;
    EXPECT_FALSE(value.empty());
    EXPECT_EQ(*value.get<int>(), 7);
    EXPECT_EQ(value.get<unsigned>(), nullptr);
    const Any copy = value;
    *value.get<int>() = 8;
    EXPECT_EQ(*copy.get<int>(), 7);
    value = String("text");
    EXPECT_EQ(*value.get<String>(), "text");
    EXPECT_EQ(value.get<int>(), nullptr);
}

TEST(Any, HoldsAModifiablePointerAsASharedOneAndSharesOnCopy)
{
    const auto array = makeMutable<Array<int>>(Array<int>{1, 2});
    const Any value = array;
    const auto* const held = value.get<Ptr<Array<int>>>();
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(held->get(), array.get());
    EXPECT_EQ(value.get<MutablePtr<Array<int>>>(), nullptr);
    const Any copy = value;
    EXPECT_EQ(array.useCount(), 3u);
}

TEST(ElementTypes, AreThirtySixAndAnArrayOfEachIsRecognised)
{
    std::string visited;
    std::size_t size = 0;
    const auto visitor = [&](const auto& array, const char* name) {
        visited = name;
        size = array->size();
    };
    std::set<std::string> names;
    Korvane::anyElementType([&](auto tag, const char* name) {
        using T = typename decltype(tag)::type;
        EXPECT_TRUE(Korvane::visitArray(makeMutable<Array<T>>(names.size()), visitor));
        EXPECT_EQ(visited, name);
        EXPECT_EQ(size, names.size());
        names.insert(name);
        return false;
    });
    EXPECT_EQ(names.size(), 36u);
    EXPECT_FALSE(Korvane::visitArray(makeMutable<Array<char>>(), visitor));
    EXPECT_FALSE(Korvane::visitArray(Ptr<Array<int>>(), visitor));
}

}  // namespace
