#include <Korvane/Geometry.h>
#include <Korvane/Math.h>
#include <Pelon/Array.h>
#include <Pelon/String.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <new>
#include <numeric>
#include <set>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using Pelon::Array;
using Pelon::MutablePtr;
using Pelon::Ptr;
using Pelon::String;

// Counts living objects, and throws when the countdown of copies reaches zero. Its move may throw
// too, so that an array has to copy it when it grows.
struct Fragile {
    static inline int living = 0;
    static inline int copiesLeft = 0;

    int value;

    explicit Fragile(int v = 0) : value(v) { ++living; }
    Fragile(const Fragile& other) : value(other.value)
    {
        if (copiesLeft-- <= 0)
            throw std::runtime_error("no more copies");
        ++living;
    }
    Fragile& operator=(const Fragile&) = default;
    ~Fragile() { --living; }
    friend bool operator==(const Fragile& a, const Fragile& b) { return a.value == b.value; }
};

bool isAllZero(const void* block, std::size_t bytes)
{
    const auto* first = static_cast<const unsigned char*>(block);
    return std::all_of(first, first + bytes, [](unsigned char byte) { return byte == 0; });
}

std::uintptr_t addressOf(const void* pointer)
{
    return reinterpret_cast<std::uintptr_t>(pointer);
}

TEST(Array, ConstructorsAndResizeGiveTheNamedElements)
{
    EXPECT_TRUE(Array<int>().empty());
    EXPECT_EQ(Array<int>(3), (Array<int>{0, 0, 0}));
    EXPECT_EQ(Array<int>(2, 7), (Array<int>{7, 7}));

    Array<int> numbers{1, 2, 3};
    numbers.resize(5);
    EXPECT_EQ(numbers, (Array<int>{1, 2, 3, 0, 0}));
    numbers.resize(2);
    numbers.resize(4);  // the storage still holds the old 3, which must not come back
    EXPECT_EQ(numbers, (Array<int>{1, 2, 0, 0}));
    numbers.resize(5, numbers[1]);
    EXPECT_EQ(numbers, (Array<int>{1, 2, 0, 0, 2}));
    EXPECT_NE(numbers, (Array<int>{1, 2, 0, 0}));
    EXPECT_EQ(Array<String>(2, "x"), (Array<String>{"x", "x"}));
}

TEST(Array, FillsWithAnyBitsAndHoldsOneByteForEachBool)
{
    EXPECT_TRUE(std::signbit(Array<float>(3, -0.0f)[2]));
    const Array<Korvane::Math::float3> ones(2, {0, 0, 1});
    EXPECT_EQ(ones[1], (Korvane::Math::float3{0, 0, 1}));

    Array<bool> flags(4);
    flags[2] = true;
    flags.push_back(true);
    const bool* const first = flags.data();
    EXPECT_EQ(std::vector<bool>(first, first + 5), (std::vector<bool>{0, 0, 1, 0, 1}));
}

TEST(Array, CopiesAreDeepAndMovesKeepTheStorage)
{
    Array<String> names{"a", "b"};
    Array<String> copy = names;
    copy[0] = "changed";
    EXPECT_EQ(names, (Array<String>{"a", "b"}));

    const String* const storage = names.data();
    Array<String> moved = std::move(names);
    EXPECT_EQ(moved.data(), storage);
    moved = moved;
    EXPECT_EQ(moved, (Array<String>{"a", "b"}));
}

TEST(Array, GrowsGeometricallyAndMayAppendItsOwnElements)
{
    Array<String> names{"a string that is too long to be stored in place"};
    const String expected = names[0];
    int moves = 0;
    const String* storage = names.data();
    while (names.size() < 10000) {
        names.push_back(names[0]);
        moves += names.data() != storage;
        storage = names.data();
    }
    EXPECT_LT(moves, 20);
    EXPECT_EQ(names, Array<String>(10000, expected));

    names.resize(1);
    names.push_back(std::move(names[0]));
    EXPECT_EQ(names[1], expected);
}

// Lets `change` fail at its first copy, at its second, and so on, until it succeeds; after each
// failure the array must hold what it held, and nothing else may live. Returns the failures.
template <class Change>
int failEachCopy(const Change& change)
{
    for (int copies = 0;; ++copies) {
        SCOPED_TRACE(copies);
        Fragile::copiesLeft = 100;
        Array<Fragile> array(4, Fragile(5));
        const Array<Fragile> before = array;
        const int livingBefore = Fragile::living;
        try {
            Fragile::copiesLeft = copies;
            change(array);
            return copies;
        } catch (const std::runtime_error&) {
            EXPECT_EQ(Fragile::living, livingBefore);
            EXPECT_EQ(array, before);
        }
    }
}

TEST(Array, KeepsItsElementsAndLeaksNoneWhenACopyThrows)
{
    const Fragile added(6);
    EXPECT_EQ(failEachCopy([&](auto& array) { array.resize(9, added); }), 1 + 5 + 4);
    EXPECT_EQ(failEachCopy([&](auto& array) { array.push_back(added); }), 1 + 4);
    EXPECT_EQ(failEachCopy([](auto& array) { const auto copy = array; }), 4);
    EXPECT_EQ(Fragile::living, 1);
}

constexpr std::size_t kHugePage = std::size_t{2} << 20;

template <std::size_t alignment>
struct alignas(alignment) Aligned {
    unsigned char bytes[alignment];
};

template <std::size_t alignment>
void expectZeroAndAligned(std::size_t bytes)
{
    SCOPED_TRACE(testing::Message() << bytes << " bytes aligned to " << alignment);
    for (int round = 0; round < 2; ++round) {  // the second may get the first one's memory
        Array<Aligned<alignment>> array((bytes + alignment - 1) / alignment);
        auto* const first = reinterpret_cast<unsigned char*>(array.data());
        EXPECT_EQ(addressOf(first) % alignment, 0u);
        EXPECT_TRUE(bytes < kHugePage || addressOf(first) % 64 == 0);
        EXPECT_TRUE(isAllZero(first, array.size() * alignment));
        std::memset(first, 0xFF, array.size() * alignment);
    }
}

TEST(Array, BlocksAreZeroAndAlignedForTheirType)
{
    for (const std::size_t bytes : {std::size_t{100}, kHugePage - 1, kHugePage, kHugePage + 5,
                                    8 * kHugePage, 9 * kHugePage + 5}) {
        expectZeroAndAligned<1>(bytes);
        expectZeroAndAligned<64>(bytes);
        expectZeroAndAligned<2048>(bytes);
        expectZeroAndAligned<8192>(bytes);
    }
}

#if defined(__linux__)

// Two arrays whose starts are equal modulo 4 KiB slow down a loop over both.
TEST(Array, LargeBlocksBeginOnHugePagesInDifferentPlaces)
{
    std::set<std::uintptr_t> starts;
    for (int n = 0; n < 16; ++n)
        starts.insert(addressOf(Array<int>(kHugePage).data()) % kHugePage);
    EXPECT_EQ(starts.size(), 16u);
    EXPECT_LT(*starts.rbegin(), 4096u);
}

std::size_t mappedPages()
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages;
}

// An array that grows frees blocks of many sizes; neither they nor what they are cut from may stay.
TEST(Array, LargeBlocksAreGivenBackWhole)
{
    const auto growAndFree = [] {
        Array<int> grown;
        for (const std::size_t megabytes : {2, 3, 7, 20, 41}) {
            grown.resize(megabytes << 18, 1);
            ASSERT_TRUE(grown == Array<int>(grown.size(), 1));
        }
    };
    mappedPages();
    const std::size_t before = mappedPages();
    for (int round = 0; round < 5; ++round)
        growAndFree();
    EXPECT_EQ(mappedPages(), before);
}

#endif

TEST(Array, RefusesSizesThatCannotBe)
{
    Array<double> array{1, 2};
    EXPECT_THROW(array.resize(std::numeric_limits<std::size_t>::max() / 8),
                 std::bad_array_new_length);
    EXPECT_THROW(array.resize(std::size_t{1} << 59), std::bad_alloc);
    EXPECT_EQ(array, (Array<double>{1, 2}));
    EXPECT_EQ(Pelon::Internal::typeRep<int>.allocate(0), nullptr);
}

// Nothing but a pointer that reads leads to a borrowed array, so whoever wants to write has to go
// through one of the ways below.
using Borrowed = decltype(Array<int>::borrow(nullptr, 0));
static_assert(std::is_same_v<Borrowed, Ptr<Array<int>>>);
static_assert(std::is_same_v<decltype(*Borrowed()), const Array<int>&>);
static_assert(!std::is_constructible_v<MutablePtr<Array<int>>, Borrowed>);
static_assert(!std::is_constructible_v<Array<int>, const int*, std::size_t>);

TEST(BorrowedArray, IsReadInPlaceAndCopiedForEveryWayToWrite)
{
    static const int memory[] = {1, 2, 3};  // read-only pages: a write through the array crashes
    const auto borrowed = [] { return Array<int>::borrow(memory, 3); };
    const Ptr<Array<int>> array = borrowed();
    EXPECT_TRUE(array->isBorrowed());
    EXPECT_EQ(array->data(), memory);
    EXPECT_EQ(array->end() - array->begin(), 3);

    const auto changed = [](MutablePtr<Array<int>> copy) {
        EXPECT_FALSE(copy->isBorrowed());
        *copy->data() = 7;
        copy->resize(5, 8);
        return *copy;
    };
    const Array<int> expected{7, 2, 3, 8, 8};
    EXPECT_EQ(changed(toMutable(borrowed())), expected) << "behind the only pointer";
    EXPECT_EQ(changed(toMutable(array)), expected);
    EXPECT_EQ(changed(Pelon::makeMutable<Array<int>>(*array)), expected);
    EXPECT_EQ(changed(Pelon::makeMutable<Array<int>>(std::move(*array))), expected);
    Array<int> assigned{4};
    assigned = *array;
    assigned[0] = 9;
    EXPECT_EQ(*array, (Array<int>{1, 2, 3}));
}

TEST(BorrowedArray, LeavesABagOnlyAsACopy)
{
    const auto owner = std::make_shared<std::vector<float>>(3, 1.0f);
    Korvane::Object bag;
    bag.setProperty("values", Array<float>::borrow(owner->data(), 3, owner));
    Pelon::Any taken = bag.getPropertyForModification("values");
    const auto values = toMutable(std::move(*taken.get<Ptr<Array<float>>>()));
    (*values)[0] = 2;
    EXPECT_EQ((*owner)[0], 1);
    EXPECT_EQ(owner.use_count(), 1) << "the copy still holds the lender";
}

TEST(BorrowedArray, ReleasesItsOwnerOnceAfterTheLastReaderOfAnyThread)
{
    int released = 0;
    std::vector<int> memory(1000, 1);
    {
        const auto free = [&](const void*) { ++released; };
        Ptr<Array<int>> array = Array<int>::borrow(
            memory.data(), memory.size(), std::shared_ptr<const void>(memory.data(), free));
        std::vector<std::thread> readers;
        for (int t = 0; t < 4; ++t)
            readers.emplace_back([copy = array, &released] {
                for (int round = 0; round < 200; ++round) {
                    const Ptr<Array<int>> another = copy;
                    EXPECT_EQ(std::accumulate(another->begin(), another->end(), 0), 1000);
                }
                EXPECT_EQ(released, 0);
            });
        array = nullptr;
        for (std::thread& reader : readers)
            reader.join();
    }
    EXPECT_EQ(released, 1);
}

TEST(BorrowedArray, RefusesMemoryThatCannotHoldItsElements)
{
    alignas(8) static const unsigned char bytes[16] = {};
    const auto* const odd = reinterpret_cast<const double*>(bytes + 4);
    EXPECT_THROW(Array<double>::borrow(odd, 1), std::invalid_argument);
    EXPECT_THROW(Array<double>::borrow(nullptr, 1), std::invalid_argument);
    EXPECT_TRUE(Array<double>::borrow(nullptr, 0)->empty());
}

}  // namespace
