#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Words and numbers as people read them.
namespace Cli {

/// The text with control characters, which would break a line or steer a terminal, as "\x1b".
std::string shown(const std::string& text);

/// "1 face", "2 faces". `one` is a word whose plural ends in s.
std::string counted(std::uint64_t count, const std::string& one);

/// "a, b or c", with " or " as `beforeLast`.
std::string listOf(const std::vector<std::string>& words, const std::string& beforeLast);

/// The one of `words` that somebody who wrote `word` has most likely meant; empty where none is near.
std::string nearest(const std::string& word, const std::vector<std::string>& words);

}  // namespace Cli
