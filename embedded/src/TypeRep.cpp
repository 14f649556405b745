#include <Pelon/TypeRep.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace Pelon {
namespace Internal {
namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;

#if defined(__linux__)

//   | huge page           | ...       | page |      mapped, from a 2 MiB boundary on
//     | start | elements  ...           |           start < 4096, from 64 bytes to 64 bytes
//
// A processor holds a load back while an earlier store with the same low 12 bits waits to be written.
// Were every block to begin on a boundary, a loop that reads one array and writes another in step would
// stall at each element. So blocks begin in different places of their first page.
constexpr std::size_t kStartRange = 4096;

// 17 lines of 64 bytes, so 64 blocks in a row begin differently. Dual table of a natural torus of a
// million triangles, input against output, 2 busy cores: equal starts 49 ms; 64 bytes apart on either
// side, and every multiple of 256, 25 to 28 ms. Any odd number of lines would do.
constexpr std::size_t kStartStep = 1088;

std::size_t roundedUp(std::size_t bytes, std::size_t unit)
{
    return (bytes + unit - 1) / unit * unit;
}

// Elements may ask for more than the step keeps; they begin on a multiple of what they ask for.
std::size_t nextStart(std::size_t alignment)
{
    static std::atomic<std::size_t> blocks{0};
    const std::size_t start =
        blocks.fetch_add(1, std::memory_order_relaxed) * kStartStep % kStartRange;
    return start / alignment * alignment;
}

// A tail of small pages costs a fault each, so whole huge pages are taken wherever the tail is a
// small part of the block. One page more makes room for any start, which therefore need not be known.
std::size_t mappedSize(std::size_t bytes)
{
    static const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return roundedUp(bytes, bytes >= 8 * kHugePage ? kHugePage : page) + page;
}

void* mapZeroed(std::size_t bytes, std::size_t alignment)
{
    const std::size_t length = mappedSize(bytes);
    void* mapped = mmap(nullptr, length + kHugePage, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        throw std::bad_alloc();

    // The mapping is a huge page longer than asked: cut it down to the aligned part.
    char* const first = static_cast<char*>(mapped);
    const std::size_t lead = roundedUp(reinterpret_cast<std::uintptr_t>(first), kHugePage) -
                             reinterpret_cast<std::uintptr_t>(first);
    if (lead > 0)
        munmap(first, lead);
    munmap(first + lead + length, kHugePage - lead);
    madvise(first + lead, length, MADV_HUGEPAGE);  // only advice: small pages serve as well
    return first + lead + nextStart(alignment);
}

// Nothing is stored in front of the elements: the mapping begins where their huge page does.
void unmap(void* block, std::size_t bytes)
{
    const std::size_t start = reinterpret_cast<std::uintptr_t>(block) % kHugePage;
    munmap(static_cast<char*>(block) - start, mappedSize(bytes));
}

bool isMapped(std::size_t bytes)
{
    return bytes >= kHugePage;
}

#endif

// What calloc aligns for; few element types ask for more.
bool isOverAligned(std::size_t alignment)
{
    return alignment > alignof(std::max_align_t);
}

void* allocateOverAligned(std::size_t bytes, std::size_t alignment)
{
    return std::memset(::operator new(bytes, std::align_val_t(alignment)), 0, bytes);
}

}  // namespace

void* UntypedTypeRep::allocate(std::size_t count) const
{
    if (count == 0)
        return nullptr;
    if (count > std::numeric_limits<std::ptrdiff_t>::max() / m_size)
        throw std::bad_array_new_length();
#if defined(__linux__)
    if (isMapped(count * m_size))
        return mapZeroed(count * m_size, m_alignment);
#endif
    if (isOverAligned(m_alignment))
        return allocateOverAligned(count * m_size, m_alignment);
    void* const block = std::calloc(count, m_size);
    if (!block)
        throw std::bad_alloc();
    return block;
}

void UntypedTypeRep::deallocate(void* pointer, std::size_t count) const noexcept
{
    if (count == 0)
        return;  // null, or memory that an array has borrowed
#if defined(__linux__)
    if (isMapped(count * m_size)) {
        unmap(pointer, count * m_size);
        return;
    }
#endif
    if (isOverAligned(m_alignment))
        ::operator delete(pointer, std::align_val_t(m_alignment));
    else
        std::free(pointer);
}

}  // namespace Internal
}  // namespace Pelon
