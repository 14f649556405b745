#pragma once

#include <KOR/ExceptionMessage.h>
#include <Pelon/Job.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace TestSupport {

/// Runs `work` in a cancelled job; whether that ended it, with the host's text.
template <class Work>
bool endsWhenCancelled(const Work& work)
{
    Pelon::Job job;
    const Pelon::JobScope scope(job);
    job.cancel();
    try {
        work();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), KOR::exceptionMessage.c_str());
        return true;
    }
    return false;
}

}  // namespace TestSupport
