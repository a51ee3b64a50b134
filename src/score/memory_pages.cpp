#include "score/memory_pages.h"

#include <cstdint>
#include <cstdlib>

#if defined(__linux__) && defined(__GLIBC__)
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace plectaro {

void UseLargeMemoryPages(size_t bytes) {
#if defined(__linux__) && defined(__GLIBC__) && defined(MADV_HUGEPAGE)
  // Blocks of a few megabytes (file texts, long bars) would otherwise each get a mapping of
  // their own, outside the region advised below.
  mallopt(M_MMAP_THRESHOLD, 256 << 20);
  // Keep the reserve: handing it back and growing again would lose the advice.
  mallopt(M_TRIM_THRESHOLD, static_cast<int>(bytes * 2));
  mallopt(M_TOP_PAD, 16 << 20);
  const auto before = reinterpret_cast<uintptr_t>(sbrk(0));
  void* block = std::malloc(bytes);
  if (!block) return;
  const auto after = reinterpret_cast<uintptr_t>(sbrk(0));
  std::free(block);
  constexpr uintptr_t kLarge = uintptr_t{2} << 20;
  const uintptr_t from = (before + kLarge - 1) & ~(kLarge - 1);
  const uintptr_t to = after & ~(kLarge - 1);
  if (to > from) madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE);
#else
  (void)bytes;
#endif
}

}  // namespace plectaro
