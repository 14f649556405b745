#include <TessaryMesh/Files.h>

#include "base/Host.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace TessaryMesh {
namespace {

namespace fs = std::filesystem;

constexpr const char* kName = "material_library";

// Of a file, which needs not exist; "-" is a stream, to which the working folder is as good as any.
fs::path folderOf(const std::string& file)
{
    const fs::path folder = file == "-" ? fs::path() : fs::path(file).parent_path();
    return fs::weakly_canonical(fs::absolute(folder.empty() ? "." : folder));
}

// Files of several statements are joined by blanks, which names may have, too.
std::vector<std::string> namesIn(const std::string& text, const fs::path& folder)
{
    std::error_code unknown;
    if (fs::exists(folder / text, unknown))
        return {text};
    std::vector<std::string> names;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = std::min(rest.find(' '), rest.size());
        if (end > 0)
            names.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return names;
}

}  // namespace

void moveMaterialLibrary(Object& mesh, const std::string& from, const std::string& to)
{
    const Any value = mesh.getProperty(kName);
    const String* const text = value.get<String>();
    if (!text || text->empty())
        return;
    try {
        const fs::path source = folderOf(from), target = folderOf(to);
        if (source == target)
            return;
        std::string moved;
        for (const std::string& name : namesIn(std::string(text->view()), source)) {
            const fs::path path = (source / name).lexically_normal();
            const fs::path near =
                fs::path(name).is_absolute() ? fs::path(name) : path.lexically_relative(target);
            moved += moved.empty() ? "" : " ";
            moved += (near.empty() ? path : near).generic_string();
        }
        mesh.setProperty(kName, String(moved));
    } catch (const fs::filesystem_error&) {
        // A folder that cannot be looked up leads nowhere from anywhere.
    }
}

}  // namespace TessaryMesh
