#include <Tessary/Scratch.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

using Tessary::Scratch;

namespace {

template <class T>
class ScratchOf : public testing::Test {};

using Elements = testing::Types<float, double>;
TYPED_TEST_SUITE(ScratchOf, Elements);

template <class T>
void expectEmpty(const Scratch<T>& scratch)
{
    EXPECT_EQ(scratch.size(), 0u);
    EXPECT_EQ(scratch.data(), nullptr);
}

TYPED_TEST(ScratchOf, GrowKeepsWhatIsLargeEnoughAndResizeKeepsNothing)
{
    Scratch<TypeParam> scratch(4);
    TypeParam* const buffer = scratch.data();
    buffer[3] = 3;
    scratch.grow(4);
    scratch.grow(0);
    EXPECT_EQ(scratch.data(), buffer);
    EXPECT_EQ(scratch.size(), 4u);
    EXPECT_EQ(std::as_const(scratch).data()[3], 3);

    scratch.grow(1000);
    EXPECT_EQ(scratch.size(), 1000u);
    scratch.data()[999] = 1;  // all of it is there
    scratch.resize(2);
    EXPECT_EQ(scratch.size(), 2u);
    scratch.resize(0);
    expectEmpty(scratch);
    expectEmpty(Scratch<TypeParam>());
    expectEmpty(Scratch<TypeParam>(0));
}

TYPED_TEST(ScratchOf, MovesAndIsNeverCopied)
{
    static_assert(!std::is_copy_constructible_v<Scratch<TypeParam>>);
    static_assert(!std::is_assignable_v<Scratch<TypeParam>&, const Scratch<TypeParam>&>);
    Scratch<TypeParam> a(3), b(5);
    TypeParam* const buffer = a.data();
    Scratch<TypeParam> c(std::move(a));
    expectEmpty(a);
    EXPECT_EQ(c.data(), buffer);
    b = std::move(c);
    expectEmpty(c);
    EXPECT_EQ(b.data(), buffer);
    EXPECT_EQ(b.size(), 3u);
}

TYPED_TEST(ScratchOf, WithoutMemoryItIsEmptyAndUsableAgain)
{
    const std::size_t overflowing = SIZE_MAX / sizeof(TypeParam) + 2;
    EXPECT_THROW(Scratch<TypeParam>{overflowing}, std::bad_array_new_length);
    Scratch<TypeParam> scratch(8);
    EXPECT_THROW(scratch.resize(overflowing), std::bad_array_new_length);
    expectEmpty(scratch);
    EXPECT_THROW(scratch.grow(SIZE_MAX), std::bad_array_new_length);
    scratch.resize(1);
    EXPECT_EQ(scratch.size(), 1u);
}

}  // namespace
