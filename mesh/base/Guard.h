#pragma once

#include <KOR/ExceptionMessage.h>
#include <TessaryMesh/Errors.h>

#include <exception>
#include <new>
#include <string_view>

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
        // A kernel whose job, or the scheduler's context around it, was cancelled throws the host's text.
        if (error.what() == std::string_view(KOR::exceptionMessage.c_str()))
            throw Cancelled();
        throw Error(error.what());
    }
}

}  // namespace TessaryMesh
