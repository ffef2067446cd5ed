#pragma once

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

/// Prefetches a tetrahedron or a vertex, which may begin in one cache line and end in the next.
/// Does nothing for null.
template <class Record>
inline void prefetchRecord(const Record* record) {
    const auto address = reinterpret_cast<std::uintptr_t>(record);
    prefetchLine(reinterpret_cast<const void*>(address));
    prefetchLine(reinterpret_cast<const void*>(address + sizeof(Record) - 1));
}

}  // namespace VARN3D
