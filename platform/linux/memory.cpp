#include "platform/memory.hpp"

#include <cstdint>

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace vorn {
namespace {

bool hasChangedCode(const dl_phdr_info& object) {
    for (int i = 0; i < object.dlpi_phnum; ++i) {
        if (object.dlpi_phdr[i].p_type != PT_DYNAMIC) {
            continue;
        }
        // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how the loader tells addresses.
        const auto* entry = reinterpret_cast<const ElfW(Dyn)*>(object.dlpi_addr + object.dlpi_phdr[i].p_vaddr);
        for (; entry->d_tag != DT_NULL; ++entry) {
            if (entry->d_tag == DT_TEXTREL) {
                return true;
            }
        }
    }
    return false;
}

/// Pages of a file that nobody has changed are read again when they are touched, mostly from the system's cache.
int dropCode(dl_phdr_info* object, std::size_t, void*) {
    if (hasChangedCode(*object)) {
        return 0;
    }
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const auto& segment = object->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) {
            continue;
        }
        const std::uintptr_t start = (object->dlpi_addr + segment.p_vaddr) & ~(page - 1);
        const std::uintptr_t end = object->dlpi_addr + segment.p_vaddr + segment.p_memsz;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how the loader tells addresses.
        madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
    }
    return 0;
}

}  // namespace

void releaseUnusedMemory() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
    dl_iterate_phdr(&dropCode, nullptr);
}

}  // namespace vorn
