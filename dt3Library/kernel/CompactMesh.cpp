#include "dt3Library/kernel/CompactMesh.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

#include "dt3Library/base/pages.h"

namespace VARN3D {

static_assert(std::is_trivially_copyable<CompactTet>::value, "realloc moves tetrahedra");
static_assert(std::is_trivially_default_constructible<CompactTet>::value,
              "memory from realloc holds tetrahedra without their construction");

void CompactMesh::Free::operator()(void* memory) const {
    std::free(memory);
}

/// More vertices than slots make no mesh; and a size in bytes that overflows must not reach
/// operator new, which some compilers let through.
std::size_t CompactMesh::checkedCount(std::size_t numVertices) {
    if (numVertices > MAX_SLOTS) throw std::bad_alloc();
    return numVertices;
}

CompactMesh::CompactMesh(std::size_t numVertices, std::size_t expectedTets)
    : verticesUsed(numVertices + 1),
      // One more: while a vertex is inserted the next one is looked at.
      vertexArray(new CompactVertex[checkedCount(numVertices) + 2]()) {
    constexpr double NOWHERE = std::numeric_limits<double>::quiet_NaN();
    vertexArray[AT_INFINITY] = {{NOWHERE, NOWHERE, NOWHERE}, 0, 0};
    vertexArray[numVertices + 1] = vertexArray[AT_INFINITY];
    grow(expectedTets + 1);
    makeReady(1);
    slotsUsed = 1;
    resetDummy();
}

void CompactMesh::resetDummy() {
    tetArray[DUMMY] = {{0.0, 0.0, 0.0}, -1.0F, {}, 0, {}};
}

/// Goes ahead by half a megabyte: pages that are never used would still count as memory.
void CompactMesh::makeReady(std::size_t needed) {
    constexpr std::size_t AHEAD = 8192;
    if (needed > capacity) grow(needed);
    const std::size_t wanted = std::min(needed + AHEAD, capacity);
    fetchPages(tetArray + slotsReady, (wanted - slotsReady) * sizeof(CompactTet));
    slotsReady = wanted;
}

/// Grows by half at least. What malloc can extend in place (or move by its pages) is not copied.
void CompactMesh::grow(std::size_t needed) {
    const std::size_t wanted = std::min(std::max(needed, capacity + capacity / 2), MAX_SLOTS);
    if (needed > MAX_SLOTS ||
        wanted > (std::numeric_limits<std::size_t>::max() - 64) / BYTES_PER_SLOT)
        throw std::bad_alloc();
    const std::ptrdiff_t offset =
        block ? reinterpret_cast<char*>(tetArray) - static_cast<char*>(block.get()) : 0;
    void* memory = std::realloc(block.get(), wanted * BYTES_PER_SLOT + alignof(CompactTet));
    if (memory == nullptr) throw std::bad_alloc();
    static_cast<void>(block.release());
    block.reset(memory);
    capacity = wanted;
    alignTets();
    if (slotsUsed > 0 && reinterpret_cast<char*>(tetArray) != static_cast<char*>(memory) + offset)
        std::memmove(static_cast<void*>(tetArray), static_cast<char*>(memory) + offset,
                     slotsUsed * sizeof(CompactTet));
}

void CompactMesh::alignTets() {
    void* first = block.get();
    std::size_t space = capacity * BYTES_PER_SLOT + alignof(CompactTet);
    tetArray = static_cast<CompactTet*>(
        std::align(alignof(CompactTet), capacity * sizeof(CompactTet), first, space));
}

void CompactMesh::release(Slot slot) {
    freeSlots.push_back(slot);
    std::fill(tetArray[slot].vertex, tetArray[slot].vertex + 4, AT_INFINITY);
}

void CompactMesh::giveTo(SimplePool<Tet3>& pool) {
    char* const behind = static_cast<char*>(block.get()) + slotsUsed * BYTES_PER_SLOT;
    char* const ready = reinterpret_cast<char*>(tetArray + slotsReady);
    if (ready < behind) fetchPages(ready, static_cast<std::size_t>(behind - ready));
    pool.adopt(block.get(), static_cast<std::int32_t>(capacity),
               static_cast<std::int32_t>(slotsUsed));
    static_cast<void>(block.release());
}

}  // namespace VARN3D
