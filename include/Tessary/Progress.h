#pragma once

#include <Tessary/Api.h>

#include <atomic>

/// @file
/// How far a long call is.

namespace Tessary {

/// Lets another thread see how far a long call is.
///
/// While this object lives, calls of the thread that made it write to `share` what part is done: from 0
/// to 1, rising within a call, estimated by what the phases usually take. Scopes nest, and the inner one
/// counts. poissonSampleTriMesh() tells, in steps of less than a hundredth for large inputs; no other
/// kernel takes long enough.
class TESSARY_API ProgressScope {
public:
    /// Begins to write to `share`, which outlives the scope.
    explicit ProgressScope(std::atomic<float>& share) noexcept;
    ~ProgressScope();  ///< the scope around this one counts again
    ProgressScope(const ProgressScope&) = delete;
    ProgressScope& operator=(const ProgressScope&) = delete;

private:
    std::atomic<float>* m_outer;
};

/// Tells the same of work of the caller's own; nothing happens without a scope on this thread.
TESSARY_API void reportProgress(float share) noexcept;

}  // namespace Tessary
