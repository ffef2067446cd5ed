#include "dt3Library/base/pages.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace VARN3D {

void fetchPages(void* first, std::size_t bytes) {
#if defined(__linux__) && defined(MADV_POPULATE_WRITE)
    // Whole pages only.
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto begin = (reinterpret_cast<std::uintptr_t>(first) + (page - 1)) / page * page;
    const auto end = (reinterpret_cast<std::uintptr_t>(first) + bytes) / page * page;
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
