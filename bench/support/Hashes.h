#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace Bench {

/// The recorded hashes of outputs: a file of lines "hash name", sorted by name.
class Hashes {
public:
    enum class Verdict { Right, Wrong, Missing };

    /// A file that is not there counts as empty. Throws std::runtime_error for a malformed line.
    explicit Hashes(std::string path);

    Verdict verdict(const std::string& name, std::uint64_t hash) const;
    void record(const std::string& name, std::uint64_t hash) { m_hashes[name] = hash; }

    /// Writes the file, under a temporary name first.
    void save() const;

private:
    std::string m_path;
    std::map<std::string, std::uint64_t> m_hashes;
};

/// 16 hexadecimal digits.
std::string hexOf(std::uint64_t hash);

}  // namespace Bench
