#include "support/MeshBuilding.h"

#include <Pelon/Ptr.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using namespace TestSupport;

struct Witness {
    int* destroyed;
    explicit Witness(int* count) : destroyed(count) {}
    ~Witness() { ++*destroyed; }
};

TEST(Ptr, CountsItsReferencesOfBothKinds)
{
    int destroyed = 0;
    MutablePtr<Witness> owner = makeMutable<Witness>(&destroyed);
    Ptr<Witness> reader = owner;
    EXPECT_EQ(reader.useCount(), 2u);
    EXPECT_EQ(reader.get(), owner.get());
    {
        const Ptr<Witness> another = reader;
        EXPECT_EQ(owner.useCount(), 3u);
        reader = reader;
        EXPECT_EQ(another, reader);
    }
    owner = nullptr;
    EXPECT_EQ(reader.useCount(), 1u);
    EXPECT_EQ(destroyed, 0);
    const Ptr<Witness> last = std::move(reader);
    EXPECT_FALSE(reader);
    EXPECT_EQ(reader.useCount(), 0u);
    EXPECT_EQ(last.useCount(), 1u);
}

TEST(Ptr, TheLastReferenceDestroysTheObjectOnceWhicheverThreadHoldsIt)
{
    int destroyed = 0;
    for (int round = 0; round < 20; ++round) {
        Ptr<Witness> shared = makeMutable<Witness>(&destroyed);
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([copy = shared] {
                for (int i = 0; i < 2000; ++i)
                    const Ptr<Witness> another = copy;
            });
        shared = nullptr;
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(destroyed, round + 1);
    }
}

TEST(Ptr, ToMutableChangesAnUnsharedObjectInPlaceAndCopiesASharedOne)
{
    Ptr<Array<int>> only = makeMutable<Array<int>>(Array<int>{1, 2});
    const Array<int>* const object = only.get();
    MutablePtr<Array<int>> unshared = toMutable(std::move(only));
    EXPECT_EQ(unshared.get(), object);
    EXPECT_EQ(unshared.useCount(), 1u);

    const Ptr<Array<int>> kept = unshared;
    const MutablePtr<Array<int>> copy = toMutable(kept);
    (*copy)[0] = 9;
    EXPECT_NE(copy.get(), kept.get());
    EXPECT_EQ(*kept, (Array<int>{1, 2}));
    EXPECT_EQ(copy.useCount(), 1u);
    EXPECT_FALSE(toMutable(Ptr<Array<int>>()));
}

}  // namespace
