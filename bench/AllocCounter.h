#pragma once
// Heap allocations of the whole benchmark process, counted by the replaced global operator new (every
// form: plain, array, nothrow and aligned). The library is a shared object, so its allocations go
// through these replacements as well.

#include <cstdint>

namespace prsm::bench {

// Allocations made so far by every thread.
std::uint64_t allocationCount();

// While tracing is on, every allocation made by the calling thread prints its call stack (raw
// symbols; pipe through c++filt) on standard error.
void setAllocationTracing(bool on);

// True when an allocation made inside the library is seen by the counter.
bool allocationCounterSeesLibrary();

}  // namespace prsm::bench
