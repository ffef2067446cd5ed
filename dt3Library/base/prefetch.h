#pragma once

#include <cstddef>
#include <cstdint>

namespace VARN3D {

/// Prefetches so many bytes, which may begin in one cache line and end in the next. Does nothing
/// where the compiler offers no such hint.
inline void prefetchBytes(const void* first, std::size_t size) {
#if defined(__GNUC__)
    const auto address = reinterpret_cast<std::uintptr_t>(first);
    __builtin_prefetch(reinterpret_cast<const void*>(address));
    __builtin_prefetch(reinterpret_cast<const void*>(address + size - 1));
#else
    static_cast<void>(first);
    static_cast<void>(size);
#endif
}

/// Prefetches a tetrahedron or a vertex, or nothing for null.
template <class Record>
inline void prefetchRecord(const Record* record) {
    prefetchBytes(record, sizeof(Record));
}

}  // namespace VARN3D
