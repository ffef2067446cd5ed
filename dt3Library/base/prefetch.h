#pragma once

#include <cstddef>
#include <cstdint>

namespace VARN3D {

/// Prefetches the cache line of an address; nothing where the compiler offers no such hint.
inline void prefetchLine(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#else
    static_cast<void>(address);
#endif
}

/// Prefetches so many bytes, which may begin in one cache line and end in the next.
inline void prefetchBytes(const void* first, std::size_t size) {
    const auto address = reinterpret_cast<std::uintptr_t>(first);
    prefetchLine(reinterpret_cast<const void*>(address));
    prefetchLine(reinterpret_cast<const void*>(address + size - 1));
}

/// Prefetches a tetrahedron or a vertex, or nothing for null.
template <class Record>
inline void prefetchRecord(const Record* record) {
    prefetchBytes(record, sizeof(Record));
}

}  // namespace VARN3D
