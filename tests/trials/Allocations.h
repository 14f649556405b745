#pragma once

/// Memory that runs out on purpose. Programs that compile Allocations.cpp in get their memory through it, and
/// so do their libraries, whatever they call: new, malloc, calloc, realloc or mmap. The scheduler's own memory
/// is left alone.
namespace Trials {

enum class Failing {
    Once,     ///< the allocation itself; what follows is served
    OnAndOn,  ///< every one from there on
    Large,    ///< it alone, counting those of 64 KB and more
};

/// While it lives, the allocation after `allocations` others fails, on any thread.
class Starvation {
public:
    Starvation(long allocations, Failing failing);
    ~Starvation();
    Starvation(const Starvation&) = delete;
    Starvation& operator=(const Starvation&) = delete;

    bool hasFailed() const;  ///< whether so many allocations were asked for
};

/// How many blocks are allocated, by whomever.
long blocksInUse();

}  // namespace Trials
