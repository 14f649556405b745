#include "host/Log.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Tessary;

TEST(Log, SendsOneErrorWithTheFunctionAndALineEndWhereErrorsAreWanted)
{
    std::vector<std::pair<std::uint32_t, std::string>> messages;
    Pelon::RuntimeServices services([&](Pelon::RuntimeMessageCategory category, StringView text) {
        messages.emplace_back(static_cast<std::uint32_t>(category), std::string(text.view()));
    });
    logError(&services, "No points", "sample");
    services.setLogEnabled(Pelon::RuntimeMessageCategory::Error, false);
    logError(&services, "Not wanted", "sample");
    logError(nullptr, "No service", "sample");

    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].first, 1u);
    EXPECT_EQ(messages[0].second, "No points in sample\n");
}
