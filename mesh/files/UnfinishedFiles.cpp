#include "files/UnfinishedFiles.h"

#include <TessaryMesh/Files.h>

#include "system/System.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace TessaryMesh {
namespace {

struct List {
    std::mutex mutex;
    std::vector<std::string> names;
};

// Never destroyed: outputs of other threads may outlive the statics of a program that ends.
List& list()
{
    static List* const only = new List;
    return *only;
}

}  // namespace

bool UnfinishedFiles::add(const std::string& name, const std::function<bool()>& create)
{
    const std::lock_guard<std::mutex> lock(list().mutex);
    std::vector<std::string>& names = list().names;
    names.push_back(name);
    if (create())
        return true;
    names.pop_back();
    return false;
}

bool UnfinishedFiles::remove(const std::string& name, const std::function<bool()>& finish)
{
    const std::lock_guard<std::mutex> lock(list().mutex);
    if (!finish())
        return false;
    std::vector<std::string>& names = list().names;
    names.erase(std::find(names.begin(), names.end(), name));
    return true;
}

bool UnfinishedFiles::step(const std::function<bool()>& f)
{
    const std::lock_guard<std::mutex> lock(list().mutex);
    return f();
}

void UnfinishedFiles::removeAll() noexcept
{
    list().mutex.lock();  // for good
    for (const std::string& name : list().names)
        ::unlink(name.c_str());
}

void removeUnfinishedFiles() noexcept
{
    UnfinishedFiles::removeAll();
}

}  // namespace TessaryMesh
