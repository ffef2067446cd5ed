#pragma once

#include <cstdint>

namespace VARN3D {

/// Prefetches a tetrahedron or a vertex, which may begin in one cache line and end in the next.
/// Does nothing for null, and nothing where the compiler offers no such hint.
template <class Record>
inline void prefetchRecord(const Record* record) {
#if defined(__GNUC__)
    const auto address = reinterpret_cast<std::uintptr_t>(record);
    __builtin_prefetch(reinterpret_cast<const void*>(address));
    __builtin_prefetch(reinterpret_cast<const void*>(address + sizeof(Record) - 1));
#else
    static_cast<void>(record);
#endif
}

}  // namespace VARN3D
