#include <KOR/ExceptionMessage.h>
#include <Pelon/Job.h>
#include <Pelon/RuntimeServices.h>

namespace Pelon {
namespace {

thread_local Job* t_job = nullptr;

std::uint32_t bitOf(RuntimeMessageCategory category)
{
    const auto index = static_cast<std::uint32_t>(category);
    return index < 32 ? std::uint32_t{1} << index : 0;
}

}  // namespace

JobScope::JobScope(Job& job) noexcept : m_outer(t_job)
{
    t_job = &job;
}

JobScope::~JobScope()
{
    t_job = m_outer;
}

bool isJobCancelled() noexcept
{
    return t_job && t_job->isCancelled();
}

void RuntimeServices::setLogEnabled(RuntimeMessageCategory category, bool enabled)
{
    if (enabled)
        m_disabled &= ~bitOf(category);
    else
        m_disabled |= bitOf(category);
}

bool RuntimeServices::isLogEnabled(RuntimeMessageCategory category) const
{
    return m_sink && (m_disabled & bitOf(category)) == 0;
}

void RuntimeServices::logImpl(RuntimeMessageCategory category, StringView text) const
{
    if (m_sink)
        m_sink(category, text);
}

}  // namespace Pelon

namespace KOR {

const Pelon::String exceptionMessage = "The job was cancelled";

}  // namespace KOR
