#include <cstdint>
#include <limits>
#include <set>
#include <vector>

#include "dt3Library/Tet3.h"
#include "dt3Library/geom_tools/SimplePool.h"
#include "tests/support/Failures.h"

using namespace VARN3D;
using support::failureOf;
using support::outputOf;

// Where there is not enough memory the sanitizers are to say so as the system does.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

using Sizes = std::vector<std::int32_t>;

struct Small {
    std::int32_t number;
};

/// Of which further blocks all have the same size.
struct Steady {
    char byte;
};

/// One fits into memory, a further block doesn't.
struct Hungry {
    char bytes[1 << 20];
};

/// Not even the first block fits.
struct Starving {
    char bytes[1 << 20];
};

/// The sizes of a pool's first blocks.
template <class T>
Sizes sizesOf(std::size_t numBlocks) {
    SimplePool<T> pool;
    pool.init();
    while (pool.getBlockSizes().size() < numBlocks) pool.alloc();
    return pool.getBlockSizes();
}

std::string lackOfMemory(const std::string& message) {
    return message + support::checkReport("false", "dt3Library/geom_tools/SimplePool.h:161");
}

}  // namespace

template <>
struct VARN3D::SimplePoolTraits<Steady> {
    static constexpr std::int32_t INITIAL_SIZE = 8;
    static constexpr std::int32_t INCREASE = 3;
};

template <>
struct VARN3D::SimplePoolTraits<Hungry> {
    static constexpr std::int32_t INITIAL_SIZE = 2;
    static constexpr std::int32_t INCREASE = std::numeric_limits<std::int32_t>::max();
};

template <>
struct VARN3D::SimplePoolTraits<Starving> {
    static constexpr std::int32_t INITIAL_SIZE = std::numeric_limits<std::int32_t>::max();
    static constexpr std::int32_t INCREASE = POOL_GROWTH_RULE;
};

TEST(SimplePool, BlocksGrowByTheRule) {
    EXPECT_EQ(sizesOf<Steady>(4), (Sizes{8, 3, 3, 3}));
    SimplePool<Small> pool;
    pool.init();
    std::set<Small*> slots;
    const std::int32_t numSlots = 4 + 2 + 4 + 8 + 16;
    for (std::int32_t i = 0; i < numSlots; ++i) {
        Small* slot = pool.alloc();
        slot->number = i;
        slots.insert(slot);
        const Sizes sizes = i < 4 ? Sizes{4} : i < 6 ? Sizes{4, 2} : Sizes{4, 2, 4};
        if (i < 10) EXPECT_EQ(pool.getBlockSizes(), sizes) << i;
    }
    EXPECT_EQ(slots.size(), static_cast<std::size_t>(numSlots));
    EXPECT_EQ(pool.getBlockSizes(), (Sizes{4, 2, 4, 8, 16}));
    pool.alloc()->number = numSlots;

    std::int32_t next = 0;
    Sizes used;
    pool.forEachBlock([&](const Small* first, std::int32_t numUsed) {
        used.push_back(numUsed);
        for (std::int32_t i = 0; i < numUsed; ++i) EXPECT_EQ(first[i].number, next++);
    });
    EXPECT_EQ(used, (Sizes{4, 2, 4, 8, 16, 1}));
}

TEST(SimplePool, LibraryRecordsHaveTheirBlockSizes) {
    // 80 and 40 bytes each, and less where pointers have 32 bits.
    constexpr bool b64 = sizeof(void*) == 8;
    constexpr std::int32_t MOST_TETS = b64 ? 1250000 : 100000000 / sizeof(Tet3);
    Sizes tets{28};
    for (std::int32_t size = 14; size < MOST_TETS; size *= 2) tets.push_back(size);
    tets.insert(tets.end(), {MOST_TETS, MOST_TETS});
    EXPECT_EQ(sizesOf<Tet3>(tets.size()), tets);
    constexpr std::int32_t MOST_POINTS = b64 ? 2500000 : 100000000 / sizeof(Point3);
    Sizes points{4};
    for (std::int32_t size = 2; size < MOST_POINTS; size *= 2) points.push_back(size);
    points.insert(points.end(), {MOST_POINTS, MOST_POINTS});
    EXPECT_EQ(sizesOf<Point3>(points.size()), points);
}

TEST(SimplePool, ResetKeepsTheFirstBlockAndTheSizesReached) {
    SimplePool<Small> pool;
    pool.init();
    Small* const first = pool.alloc();
    pool.reset();
    EXPECT_EQ(pool.alloc(), first);
    for (int i = 1; i < 4 + 2 + 4 + 1; ++i) pool.alloc();
    EXPECT_EQ(pool.getBlockSizes(), (Sizes{4, 2, 4, 8}));

    pool.reset();
    EXPECT_EQ(pool.alloc(), first);
    for (int i = 1; i < 4; ++i) EXPECT_EQ(pool.alloc(), first + i);
    EXPECT_EQ(pool.getBlockSizes(), (Sizes{4, 2, 4, 8}));
    pool.alloc();
    EXPECT_EQ(pool.getBlockSizes(), (Sizes{4, 2, 4, 8, 16}));
    Sizes used;
    pool.forEachBlock([&](const Small*, std::int32_t numUsed) { used.push_back(numUsed); });
    EXPECT_EQ(used, (Sizes{4, 1}));
}

TEST(SimplePool, IsInitialisedOnce) {
    SimplePool<Small> pool;
    const auto notReady =
        support::checkReport("initialized", "dt3Library/geom_tools/SimplePool.h:148");
    EXPECT_EQ(failureOf([&] { pool.alloc(); }), notReady);
    EXPECT_EQ(failureOf([&] { pool.alloc(); }), notReady);
    pool.init();
    Small* const first = pool.alloc();
    EXPECT_EQ(failureOf([&] { pool.init(); }),
              "SimplePool::init(..), ERROR: This pool is already initialized\n" +
                  support::checkReport("false", "dt3Library/geom_tools/SimplePool.h:140"));
    EXPECT_EQ(pool.alloc(), first + 1);
}

TEST(SimplePool, LackOfMemoryLeavesItAsItWas) {
    const auto report =
        ::testing::StartsWith(lackOfMemory("SimplePool::alloc(..), ERROR: Out of memory, sorry\n"));
    SimplePool<Hungry> pool;
    pool.init();
    Hungry* const first = pool.alloc();
    EXPECT_EQ(pool.alloc(), first + 1);
    for (int i = 0; i < 2; ++i) {
        EXPECT_THAT(failureOf([&] { pool.alloc(); }), report);
        EXPECT_EQ(pool.getBlockSizes(), (Sizes{2}));
    }
    pool.reset();
    EXPECT_EQ(pool.alloc(), first);

    SimplePool<Starving> hopeless;
    EXPECT_THAT(failureOf([&] { hopeless.init(); }), report);
    EXPECT_THAT(failureOf([&] { hopeless.init(); }), report);
    EXPECT_THAT(failureOf([&] { hopeless.alloc(); }),
                ::testing::HasSubstr("[ initialized failed ]"));
}

TEST(SimplePool, ManyBlocksAreReportedAtTheEnd) {
    const auto outputWith = [](std::size_t numBlocks) {
        return outputOf([numBlocks] { sizesOf<Steady>(numBlocks); });
    };
    EXPECT_EQ(outputWith(50), "");
    EXPECT_EQ(outputWith(51), "SimplePool::~SimplePool: Number of containers to release: 51\n");
}
