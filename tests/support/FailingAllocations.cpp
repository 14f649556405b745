#include "support/FailingAllocations.h"

#include <cstdlib>
#include <new>

namespace TestSupport {

int allocationsLeft = -1;

}  // namespace TestSupport

void* operator new(std::size_t size)
{
    if (TestSupport::allocationsLeft == 0)
        throw std::bad_alloc();
    if (TestSupport::allocationsLeft > 0)
        --TestSupport::allocationsLeft;
    if (void* const block = std::malloc(size > 0 ? size : 1))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}
