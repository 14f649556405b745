#pragma once

#include "system/System.h"

#include <system_error>
#include <thread>

namespace Cli {

/// A thread that no signal interrupts: they belong to the main thread, whose waiting they have to end. It
/// is not joinable where the system makes no more threads; the program works without.
template <class Work>
std::thread quietThread(const Work& work)
{
    const System::SignalsHeldBack held;
    std::thread thread;
    try {
        thread = std::thread(work);
    } catch (const std::system_error&) {
        // Then a stop may take longer, and no progress is shown.
    }
    return thread;
}

}  // namespace Cli
