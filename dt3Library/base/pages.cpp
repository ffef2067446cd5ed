#include "dt3Library/base/pages.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace VARN3D {

void fetchPages(void* first, std::size_t bytes) {
#if defined(__linux__) && defined(MADV_POPULATE_WRITE)
    // Of any page size that a system may have, whole pages only.
    constexpr std::uintptr_t PAGE = 65536;
    const auto begin = (reinterpret_cast<std::uintptr_t>(first) + (PAGE - 1)) / PAGE * PAGE;
    const auto end = (reinterpret_cast<std::uintptr_t>(first) + bytes) / PAGE * PAGE;
    // Systems that don't know the request refuse it, and the pages come one by one.
    if (begin < end)
        static_cast<void>(
            madvise(reinterpret_cast<void*>(begin), end - begin, MADV_POPULATE_WRITE));
#else
    static_cast<void>(first);
    static_cast<void>(bytes);
#endif
}

}  // namespace VARN3D
