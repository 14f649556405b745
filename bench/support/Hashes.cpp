#include "support/Hashes.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace Bench {

Hashes::Hashes(std::string path) : m_path(std::move(path))
{
    std::ifstream file(m_path);
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        char* end = nullptr;
        const std::uint64_t hash = std::strtoull(line.c_str(), &end, 16);
        if (end != line.c_str() + 16 || line.size() < 18 || *end != ' ')
            throw std::runtime_error(m_path + ":" + std::to_string(number) +
                                     ": expected 16 hexadecimal digits, a space and a name");
        m_hashes[line.substr(17)] = hash;
    }
}

Hashes::Verdict Hashes::verdict(const std::string& name, std::uint64_t hash) const
{
    const auto found = m_hashes.find(name);
    if (found == m_hashes.end())
        return Verdict::Missing;
    return found->second == hash ? Verdict::Right : Verdict::Wrong;
}

void Hashes::save() const
{
    const std::string temporary = m_path + ".new";
    std::ofstream file(temporary);
    for (const auto& [name, hash] : m_hashes)
        file << hexOf(hash) << ' ' << name << '\n';
    file.close();
    if (!file || std::rename(temporary.c_str(), m_path.c_str()) != 0)
        throw std::runtime_error(m_path + ": cannot be written");
}

std::string hexOf(std::uint64_t hash)
{
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

}  // namespace Bench
