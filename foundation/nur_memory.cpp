#include "foundation/nur_memory.h"

#include <sys/mman.h>
#include <sys/sysinfo.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr std::uint64_t kAlignment = 64;
constexpr std::uint64_t kMappedFrom = 1u << 20;
constexpr std::uint64_t kHugePage = 2u << 20;
constexpr std::uint64_t kHugeFrom = 2 * kHugePage;

// Stands in the 64 bytes before each block.
struct BlockHead {
    void* mapping;  // null for a heap block
    std::uint64_t mappedBytes;
};
static_assert(sizeof(BlockHead) <= kAlignment);

/// Memory and swap of the machine. The system itself may be set to promise any size.
std::uint64_t machineBytes() {
    struct sysinfo machine {};
    if (::sysinfo(&machine) != 0) return ~std::uint64_t{0};
    return (std::uint64_t{machine.totalram} + machine.totalswap) * machine.mem_unit;
}

void* place(void* base, BlockHead head) {
    std::memcpy(base, &head, sizeof head);
    return static_cast<char*>(base) + kAlignment;
}

void* mapBlock(std::uint64_t bytes, bool isPromise) {
    const bool huge = bytes >= kHugeFrom;
    std::uint64_t used = bytes + kAlignment;
    // Whole huge pages to the end: a rest in small ones costs more than all the others.
    if (huge) used = (used + kHugePage - 1) / kHugePage * kHugePage;
    const std::uint64_t wanted = used + (huge ? kHugePage : 0);
    const int reserve = isPromise ? MAP_NORESERVE : 0;
    void* mapping = mmap(nullptr, wanted, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | reserve, -1, 0);
    if (mapping == MAP_FAILED) return nullptr;
    auto address = reinterpret_cast<std::uintptr_t>(mapping);
    if (huge) {
        address = (address + kHugePage - 1) / kHugePage * kHugePage;
        madvise(reinterpret_cast<void*>(address), used, MADV_HUGEPAGE);
    }
    return place(reinterpret_cast<void*>(address), {mapping, wanted});
}

}  // namespace

void* nur_alloc(std::uint64_t bytes, bool isPromise) {
    if (bytes == 0 || bytes > (std::uint64_t{1} << 46)) return nullptr;
    if (!isPromise && bytes >= kMappedFrom && bytes > machineBytes()) return nullptr;
    if (bytes >= kMappedFrom) return mapBlock(bytes, isPromise);
    const std::uint64_t whole = (bytes + 2 * kAlignment - 1) / kAlignment * kAlignment;
    void* base = std::aligned_alloc(kAlignment, whole);
    if (!base) return nullptr;
    std::memset(base, 0, whole);
    return place(base, {nullptr, 0});
}

void nur_free(void* block) {
    if (!block) return;
    void* base = static_cast<char*>(block) - kAlignment;
    BlockHead head;
    std::memcpy(&head, base, sizeof head);
    if (head.mapping) {
        munmap(head.mapping, head.mappedBytes);
    } else {
        std::free(base);
    }
}
