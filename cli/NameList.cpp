#include "NameList.h"

#include "Session.h"

#include <algorithm>

namespace Cli {
namespace {

constexpr const char* kBlanks = " \t\n";

std::string trimmed(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(kBlanks);
    return begin == std::string::npos
               ? ""
               : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

// The text between the mark at `at` and its end, behind which `at` is then.
std::string unquoted(const std::string& list, std::size_t& at)
{
    std::string name;
    for (++at; at < list.size(); ++at) {
        if (list[at] != '"')
            name += list[at];
        else if (at + 1 < list.size() && list[at + 1] == '"')
            name += list[at++];
        else {
            ++at;
            return name;
        }
    }
    throw UsageError("the quotation mark before " + name +
                     " has no end (a mark in a name is written twice)");
}

}  // namespace

std::vector<std::string> namesIn(const std::string& list)
{
    std::vector<std::string> names;
    for (std::size_t at = 0; at <= list.size(); ++at) {
        const std::size_t first = list.find_first_not_of(kBlanks, at);
        std::string name;
        if (first != std::string::npos && list[first] == '"') {
            at = first;
            name = unquoted(list, at);
        }
        const std::size_t end = std::min(list.find(',', at), list.size());
        names.push_back(name + trimmed(list.substr(at, end - at)));
        at = end;
    }
    return names;
}

std::string asTyped(const std::string& name)
{
    const bool isPlain = !name.empty() && name.find_first_of(",\"") == std::string::npos &&
                         trimmed(name) == name && name != "all" && name != "none";
    if (isPlain)
        return name;
    std::string text;
    for (const char c : name)
        text += c == '"' ? "\"\"" : std::string(1, c);
    return '"' + text + '"';
}

}  // namespace Cli
