#pragma once

// TESSARY_ASSERT(condition, message): what the caller owes, checked in builds made with
// TESSARY_CHECKED and nowhere else. `message` is a stream expression with the values that matter:
// TESSARY_ASSERT(p < n, "corner " << c << " names point " << p << " of " << n).

#if defined(TESSARY_CHECKED)

#include <cstdlib>
#include <iostream>

// NOLINTBEGIN(bugprone-macro-parentheses): a stream expression is no operand
#define TESSARY_ASSERT(condition, message)                                                     \
    do {                                                                                       \
        if (!(condition)) {                                                                    \
            std::cerr << __FILE__ << ':' << __LINE__ << ": " #condition " (" << message << ")" \
                      << std::endl;                                                            \
            std::abort();                                                                      \
        }                                                                                      \
    } while (false)
// NOLINTEND(bugprone-macro-parentheses)

#else

#define TESSARY_ASSERT(condition, message) static_cast<void>(0)

#endif
