#pragma once

namespace TestSupport {

/// After how many allocations with `new` one fails; none does while negative. Only in programs that
/// compile FailingAllocations.cpp in.
extern int allocationsLeft;

}  // namespace TestSupport
