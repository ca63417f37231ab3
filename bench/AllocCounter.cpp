#include "AllocCounter.h"

#include <prsm/framework/PRSMSheetRegistry.h>

#include <execinfo.h>
#include <unistd.h>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

// One counter per thread, each on its own cache line, so that counting does not make threads that
// allocate contend with each other; threads beyond the slot count share slots.
struct alignas(64) Slot {
    std::atomic<std::uint64_t> count{0};
};
constexpr unsigned kSlots = 64;
Slot g_slots[kSlots];
std::atomic<unsigned> g_nextSlot{0};
thread_local unsigned t_slot = kSlots;  // not yet assigned
thread_local bool t_tracing = false;
thread_local bool t_inTrace = false;

void traceAllocation(std::size_t size) {
    if (!t_tracing || t_inTrace) return;
    t_inTrace = true;  // backtrace() may allocate the first time it runs
    char line[64];
    int const length = std::snprintf(line, sizeof line, "--- allocation of %zu bytes\n", size);
    if (length > 0) (void)!::write(2, line, static_cast<std::size_t>(length));
    void* frames[48];
    int const depth = ::backtrace(frames, 48);
    ::backtrace_symbols_fd(frames, depth, 2);
    t_inTrace = false;
}

void countAllocation() {
    if (t_slot == kSlots) t_slot = g_nextSlot.fetch_add(1, std::memory_order_relaxed) % kSlots;
    g_slots[t_slot].count.fetch_add(1, std::memory_order_relaxed);
}

void* allocate(std::size_t size) {
    countAllocation();
    traceAllocation(size);
    return std::malloc(size == 0 ? 1 : size);
}

void* allocateAligned(std::size_t size, std::align_val_t align) {
    countAllocation();
    traceAllocation(size);
    std::size_t const alignment =
        static_cast<std::size_t>(align) < sizeof(void*) ? sizeof(void*) : static_cast<std::size_t>(align);
    void* memory = nullptr;
    if (::posix_memalign(&memory, alignment, size == 0 ? 1 : size) != 0) return nullptr;
    return memory;
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* memory = allocate(size)) return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    if (void* memory = allocate(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    return allocate(size);
}
void* operator new(std::size_t size, std::align_val_t align) {
    if (void* memory = allocateAligned(size, align)) return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size, std::align_val_t align) {
    if (void* memory = allocateAligned(size, align)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, std::align_val_t align, std::nothrow_t const&) noexcept {
    return allocateAligned(size, align);
}
void* operator new[](std::size_t size, std::align_val_t align, std::nothrow_t const&) noexcept {
    return allocateAligned(size, align);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::nothrow_t const&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::nothrow_t const&) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t, std::nothrow_t const&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t, std::nothrow_t const&) noexcept {
    std::free(memory);
}

namespace prsm::bench {

std::uint64_t allocationCount() {
    std::uint64_t total = 0;
    for (Slot const& slot : g_slots) total += slot.count.load(std::memory_order_relaxed);
    return total;
}

void setAllocationTracing(bool on) {
    if (on) {
        // Load the unwinder now, so that its own allocations are not reported.
        void* frames[4];
        t_inTrace = true;
        (void)::backtrace(frames, 4);
        t_inTrace = false;
    }
    t_tracing = on;
}

bool allocationCounterSeesLibrary() {
    auto const sheets = SheetRegistry::instance().sheets();
    if (sheets.empty()) return true;
    std::uint64_t const before = allocationCount();
    auto instance = sheets.front()->create();  // std::make_unique inside the library
    return allocationCount() > before;
}

}  // namespace prsm::bench
