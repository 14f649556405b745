#pragma once

// What tests of messages share.

#include <gtest/gtest.h>

#include <string>

namespace TestSupport {

/// Whether `part` occurs in `text`, which a failure shows.
inline testing::AssertionResult contains(const std::string& text, const std::string& part)
{
    if (text.find(part) != std::string::npos)
        return testing::AssertionSuccess() << '"' << part << "\" is in: " << text;
    return testing::AssertionFailure() << '"' << part << "\" is not in: " << text;
}

/// The message of the Error that `work` ends with.
template <class Error, class Work>
std::string messageOf(const Work& work)
{
    try {
        work();
    } catch (const Error& error) {
        return error.what();
    }
    return "no error";
}

}  // namespace TestSupport
