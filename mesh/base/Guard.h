#pragma once

#include <TessaryMesh/Errors.h>

#include <exception>
#include <new>

namespace TessaryMesh {

/// Runs `work`, and lets what the kernels and the standard library throw out as this library's own
/// errors.
template <class Work>
auto guarded(const Work& work) -> decltype(work())
{
    try {
        return work();
    } catch (const Error&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw OutOfMemory("", "needs more memory than there is (use a smaller mesh)");
    } catch (const std::exception& error) {
        throwIfCancelled();  // a kernel that was cancelled throws the same text as the host
        throw Error(error.what());
    }
}

}  // namespace TessaryMesh
