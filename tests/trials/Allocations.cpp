#include "trials/Allocations.h"

#include <link.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

// What really allocates: the GNU C library under its other names.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace Trials {
namespace {

constexpr long kNever = -1;
constexpr std::size_t kLarge = 65536;

std::atomic<long> s_left{kNever};  // allocations until one fails
std::atomic<bool> s_failed{false};
std::atomic<Failing> s_failing{Failing::Once};
std::atomic<long> s_blocks{0};  // in use

// Where the scheduler's libraries are loaded. Its threads and tasks are not what is on trial here.
struct Range {
    std::uintptr_t begin, end;
};
Range s_scheduler[4];
int s_schedulers = 0;

int noteScheduler(dl_phdr_info* info, std::size_t, void*)
{
    if (!std::strstr(info->dlpi_name, "libtbb") || s_schedulers == 4)
        return 0;
    std::uintptr_t end = info->dlpi_addr;
    for (int i = 0; i < info->dlpi_phnum; ++i)
        end = std::max<std::uintptr_t>(
            end, info->dlpi_addr + info->dlpi_phdr[i].p_vaddr + info->dlpi_phdr[i].p_memsz);
    s_scheduler[s_schedulers++] = {info->dlpi_addr, end};
    return 0;
}

bool isScheduler(const void* caller)
{
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    for (int i = 0; i < s_schedulers; ++i)
        if (s_scheduler[i].begin <= address && address < s_scheduler[i].end)
            return true;
    return false;
}

// Nothing here allocates.
bool fails(std::size_t size, const void* caller)
{
    if (s_left.load(std::memory_order_relaxed) == kNever || isScheduler(caller))
        return false;
    if (s_failing == Failing::Large && size < kLarge)
        return false;
    long left = s_left.load();
    while (left > 0 && !s_left.compare_exchange_weak(left, left - 1)) {
    }
    if (left != 0)
        return false;
    return !s_failed.exchange(true) || s_failing == Failing::OnAndOn;
}

void* counted(void* block)
{
    if (block)
        ++s_blocks;
    return block;
}

void* allocated(std::size_t size, const void* caller)
{
    if (!fails(size, caller))
        if (void* const block = counted(__libc_malloc(size > 0 ? size : 1)))
            return block;
    throw std::bad_alloc();
}

}  // namespace

Starvation::Starvation(long allocations, Failing failing)
{
    if (s_schedulers == 0)
        ::dl_iterate_phdr(noteScheduler, nullptr);
    s_failed = false;
    s_failing = failing;
    s_left = allocations;
}

Starvation::~Starvation()
{
    s_left = kNever;
}

bool Starvation::hasFailed() const
{
    return s_failed;
}

long blocksInUse()
{
    return s_blocks;
}

}  // namespace Trials

using Trials::allocated;
using Trials::counted;
using Trials::fails;

void* operator new(std::size_t size)
{
    return allocated(size, __builtin_return_address(0));
}

void* operator new[](std::size_t size)
{
    return allocated(size, __builtin_return_address(0));
}

void operator delete(void* block) noexcept
{
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}
void operator delete[](void* block) noexcept
{
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept
{
    std::free(block);
}

extern "C" {

void* malloc(std::size_t size)
{
    return fails(size, __builtin_return_address(0)) ? nullptr : counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return fails(count * size, __builtin_return_address(0)) ? nullptr
                                                            : counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size)
{
    if (fails(size, __builtin_return_address(0)))
        return nullptr;
    void* const moved = __libc_realloc(block, size);
    return block ? moved : counted(moved);
}

void* memalign(std::size_t alignment, std::size_t size)
{
    return fails(size, __builtin_return_address(0)) ? nullptr
                                                    : counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return fails(size, __builtin_return_address(0)) ? nullptr
                                                    : counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    if (fails(size, __builtin_return_address(0)))
        return ENOMEM;
    *block = counted(__libc_memalign(alignment, size));
    return *block ? 0 : ENOMEM;
}

void free(void* block)
{
    if (block)
        --Trials::s_blocks;
    __libc_free(block);
}

void* mmap(void* address, std::size_t length, int protection, int flags, int file, off_t offset)
{
    if (fails(length, __builtin_return_address(0))) {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    return reinterpret_cast<void*>(
        ::syscall(SYS_mmap, address, length, protection, flags, file, offset));
}
}
