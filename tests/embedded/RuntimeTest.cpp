#include <KOR/ExceptionMessage.h>
#include <Pelon/Job.h>
#include <Pelon/RuntimeServices.h>

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>
#include <vector>

namespace {

using Pelon::isJobCancelled;
using Pelon::Job;
using Pelon::JobScope;
using Pelon::RuntimeServices;
using Category = Pelon::RuntimeMessageCategory;

TEST(Job, IsTheCallingThreadsOwnAndScopesNest)
{
    EXPECT_FALSE(isJobCancelled());
    Job outer;
    {
        const JobScope outerScope(outer);
        Job inner;
        {
            const JobScope innerScope(inner);
            outer.cancel();
            EXPECT_FALSE(isJobCancelled());
            std::thread([] { EXPECT_FALSE(isJobCancelled()); }).join();
            std::thread([&inner] { inner.cancel(); }).join();
            EXPECT_TRUE(isJobCancelled());
        }
        EXPECT_TRUE(isJobCancelled());
    }
    EXPECT_FALSE(isJobCancelled());
    EXPECT_TRUE(outer.isCancelled());
    EXPECT_FALSE(KOR::exceptionMessage.empty());
}

Job* interruptible = nullptr;

TEST(Job, CanBeCancelledFromASignalHandler)
{
    Job job;
    const JobScope scope(job);
    interruptible = &job;
    const auto previous = std::signal(SIGUSR1, [](int) { interruptible->cancel(); });
    std::raise(SIGUSR1);
    std::signal(SIGUSR1, previous);
    EXPECT_TRUE(isJobCancelled());
}

TEST(RuntimeServices, SendsMessagesToItsSinkAndSwitchesCategories)
{
    std::vector<std::string> log;
    RuntimeServices services([&log](Category category, Pelon::StringView text) {
        log.push_back(std::to_string(static_cast<int>(category)) + std::string(text.view()));
    });
    for (const bool enabled : {true, false, true}) {
        services.setLogEnabled(Category::Error, enabled);
        EXPECT_EQ(services.isLogEnabled(Category::Error), enabled);
        EXPECT_TRUE(services.isLogEnabled(Category::Warning));
    }
    services.logImpl(Category::Error, "broken\n");
    EXPECT_EQ(log, std::vector<std::string>{"1broken\n"});

    const RuntimeServices silent;
    EXPECT_FALSE(silent.isLogEnabled(Category::Error));
    silent.logImpl(Category::Error, "nobody listens");
}

}  // namespace
