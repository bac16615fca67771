// Room for large texts.
#include "musicxml/file/large_pages.h"

#include <sys/mman.h>

#include <cstdint>

namespace rovescio::musicxml {

void reserveInLargePages(std::string& text, std::size_t bytes) {
    text.reserve(text.size() + bytes);
#ifdef MADV_HUGEPAGE
    constexpr std::uintptr_t kPage = std::uintptr_t{1} << 21;
    const auto free = reinterpret_cast<std::uintptr_t>(text.data()) + text.size();
    const std::uintptr_t begin = (free + kPage - 1) / kPage * kPage;
    const std::uintptr_t end = (free + bytes) / kPage * kPage;
    if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#endif
}

}  // namespace rovescio::musicxml
