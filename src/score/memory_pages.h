// Large memory pages for the heap.
//
// A big score is tens of thousands of beats, allocated as it is read. On a fresh process every
// 4 KB page of that memory costs a page fault, and on a virtual machine a fault is slow enough
// that opening a 1000-bar band score spent more time in faults than in reading. Asking the
// kernel for 2 MB pages over the heap turns thousands of faults into a few dozen. Memory that
// is never touched stays unallocated, so a small song costs no more than before.
#pragma once

#include <cstddef>

namespace plectaro {

// Called once at the start of main(), before the heap holds much. Reserves `bytes` of heap
// address space for large pages and keeps big blocks in the heap rather than in separate
// mappings. Does nothing where the system has no such pages or refuses.
void UseLargeMemoryPages(size_t bytes = size_t{64} << 20);

}  // namespace plectaro
