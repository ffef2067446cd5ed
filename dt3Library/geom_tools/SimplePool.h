#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "dt3Library/base/messages.h"
#include "dt3Library/tools.h"

namespace VARN3D {

class Tet3;

/// As the size of a further block: the growth rule of `SimplePool` chooses it.
constexpr std::int32_t POOL_GROWTH_RULE = -1;

/// The sizes of the blocks of a pool, in slots. Specialised for the types that need others.
template <class T>
struct SimplePoolTraits {
    static constexpr std::int32_t INITIAL_SIZE = 4;
    static constexpr std::int32_t INCREASE = POOL_GROWTH_RULE;
};

template <>
struct SimplePoolTraits<Tet3> {
    static constexpr std::int32_t INITIAL_SIZE = 28;
    static constexpr std::int32_t INCREASE = POOL_GROWTH_RULE;
};

/// Hands out slots for objects of type T from a few large blocks, and drops them all at once.
///
/// The slots are raw memory: the caller constructs what it puts there, and nothing is destructed.
/// (A block from malloc is an array of T without elements as yet, so one may count along it.)
/// A slot stays where it is until `reset` or the end of the pool; single slots are never freed.
///
/// By the growth rule the second block has half the size of the first, and each further one twice
/// the size of the last, up to about 100 MB; so n slots take O(log n) allocations.
///
/// Thread rule: a pool belongs to one owner and is used by one thread at a time.
template <class T>
class SimplePool {
  public:
    SimplePool() = default;
    ~SimplePool() {
        if (vBlocks.size() > 50)
            messageStream() << "SimplePool::~SimplePool: Number of containers to release: "
                            << vBlocks.size() << std::endl;
    }
    SimplePool(const SimplePool&) = delete;
    SimplePool& operator=(const SimplePool&) = delete;

    /// Sets the pool up with its first block; to be called once, before `alloc`. A second call
    /// prints a message and throws VarnException, and so does a lack of memory.
    void init();

    /// The next free slot, in constant amortised time. Where there is no memory for another block
    /// it prints a message and throws VarnException; the pool is then as it was.
    T* alloc() {
        if (nextIndex + 1 < currentBlockSize) return pCurrentBlock + ++nextIndex;
        return allocInNewBlock();
    }

    /// Takes all slots back. The first block is kept for reuse, the others are freed.
    void reset();

    /// Takes over memory from malloc as its newest block: `size` slots, of which the first `used`
    /// count as handed out. What is left of the present block is not handed out any more. Throws
    /// std::bad_alloc, and then the memory remains the caller's.
    void adopt(void* pMemory, std::int32_t size, std::int32_t used);

    /// The block that is being filled.
    T* getLastBlock() const { return pCurrentBlock; }

    /// Exchanges all blocks and slots with another pool.
    void swap(SimplePool& other) noexcept;

    /// How much has been handed out.
    struct Mark {
        std::size_t numBlocks;
        std::int32_t nextIndex;
    };
    Mark mark() const { return {vBlocks.size(), nextIndex}; }
    /// Takes back all slots handed out since the mark, and frees the blocks made since.
    void rewind(const Mark& mark) noexcept;

    /// The sizes of all blocks ever made, in slots and in the order of their making; `reset`
    /// forgets none of them.
    const std::vector<std::int32_t>& getBlockSizes() const { return vSizes; }

    /// Calls f(T* pFirst, std::int32_t used) for each present block in the order of making: its
    /// slots in use are pFirst[0] to pFirst[used - 1].
    template <class F>
    void forEachBlock(F f) const {
        for (const Block& block : vBlocks) {
            const bool isCurrent = &block == &vBlocks.back();
            f(block.pSlots.get(), isCurrent ? nextIndex + 1 : block.size);
        }
    }

  private:
    using Traits = SimplePoolTraits<T>;
    static_assert(Traits::INITIAL_SIZE > 1, "half of the first block must leave a slot");
    static_assert(Traits::INCREASE > 0 || Traits::INCREASE == POOL_GROWTH_RULE,
                  "a further block must have a slot");

    struct FreeBlock {
        void operator()(T* pSlots) const { std::free(static_cast<void*>(pSlots)); }
    };
    struct Block {
        std::unique_ptr<T, FreeBlock> pSlots;
        std::int32_t size;
    };

    T* allocInNewBlock();
    void addBlock(std::int32_t request);
    std::int32_t getGrownSize() const;
    void useLastBlock();

    static constexpr std::size_t MAXIMUM_BLOCK_BYTES = 100000000;
    static constexpr std::int32_t MAXIMUM_BLOCK_SIZE =
        static_cast<std::int32_t>(MAXIMUM_BLOCK_BYTES / sizeof(T));

    T* pCurrentBlock = nullptr;
    std::int32_t nextIndex = -1;  // of the last slot handed out
    std::int32_t currentBlockSize = 0;
    bool initialized = false;
    std::vector<Block> vBlocks;
    std::vector<std::int32_t> vSizes;
};

template <class T>
void SimplePool<T>::init() {
    if (initialized) {
        messageStream() << "SimplePool::init(..), ERROR: This pool is already initialized"
                        << std::endl;
        conditionFailed("false", "dt3Library/geom_tools/SimplePool.h", 140,
                        "a pool was initialised twice");
    }
    addBlock(Traits::INITIAL_SIZE);
    initialized = true;
}

template <class T>
T* SimplePool<T>::allocInNewBlock() {
    varnAssertAt(initialized, "initialized", "dt3Library/geom_tools/SimplePool.h", 148);
    addBlock(Traits::INCREASE);
    nextIndex = 0;
    return pCurrentBlock;
}

template <class T>
void SimplePool<T>::addBlock(std::int32_t request) {
    const std::int32_t size = request >= 0 ? request : getGrownSize();
    void* pMemory = std::malloc(static_cast<std::size_t>(size) * sizeof(T));
    Block block{std::unique_ptr<T, FreeBlock>(static_cast<T*>(pMemory)), size};
    if (pMemory == nullptr) {
        messageStream() << "SimplePool::alloc(..), ERROR: Out of memory, sorry" << std::endl;
        conditionFailed("false", "dt3Library/geom_tools/SimplePool.h", 161, "out of memory");
    }
    vBlocks.push_back(std::move(block));
    try {
        vSizes.push_back(size);
    } catch (...) {
        vBlocks.pop_back();
        throw;
    }
    useLastBlock();
}

template <class T>
std::int32_t SimplePool<T>::getGrownSize() const {
    if (vSizes.size() == 1) return std::min(vSizes.back() / 2, MAXIMUM_BLOCK_SIZE);
    return vSizes.back() > MAXIMUM_BLOCK_SIZE / 2 ? MAXIMUM_BLOCK_SIZE : 2 * vSizes.back();
}

template <class T>
void SimplePool<T>::useLastBlock() {
    pCurrentBlock = vBlocks.back().pSlots.get();
    currentBlockSize = vBlocks.back().size;
    nextIndex = -1;
}

template <class T>
void SimplePool<T>::adopt(void* pMemory, std::int32_t size, std::int32_t used) {
    vSizes.reserve(vSizes.size() + 1);
    vBlocks.reserve(vBlocks.size() + 1);
    // Only what the last block has handed out is in use from now on.
    vBlocks.back().size = nextIndex + 1;
    vBlocks.push_back({std::unique_ptr<T, FreeBlock>(static_cast<T*>(pMemory)), size});
    vSizes.push_back(size);
    useLastBlock();
    nextIndex = used - 1;
}

template <class T>
void SimplePool<T>::rewind(const Mark& mark) noexcept {
    vSizes.resize(vSizes.size() - (vBlocks.size() - mark.numBlocks));
    vBlocks.resize(mark.numBlocks);
    useLastBlock();
    nextIndex = mark.nextIndex;
}

template <class T>
void SimplePool<T>::swap(SimplePool& other) noexcept {
    std::swap(pCurrentBlock, other.pCurrentBlock);
    std::swap(nextIndex, other.nextIndex);
    std::swap(currentBlockSize, other.currentBlockSize);
    std::swap(initialized, other.initialized);
    vBlocks.swap(other.vBlocks);
    vSizes.swap(other.vSizes);
}

template <class T>
void SimplePool<T>::reset() {
    nextIndex = -1;
    if (vBlocks.size() < 2) return;
    vBlocks.erase(vBlocks.begin() + 1, vBlocks.end());
    useLastBlock();
}

}  // namespace VARN3D
