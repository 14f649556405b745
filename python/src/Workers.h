#pragma once

#include <functional>

namespace TessaryPython {

/// Starts `work`, which throws nothing, on a thread of its own. Threads that are idle are used again, so
/// that starting takes microseconds; they take no signals and do not keep the process from ending.
void startOnWorker(std::function<void()> work);

}  // namespace TessaryPython
