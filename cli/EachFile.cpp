#include "EachFile.h"

#include "QuietThread.h"
#include "Threads.h"
#include "Words.h"

#include <Pelon/Job.h>
#include <Tessary/Progress.h>
#include <TessaryMesh/Memory.h>

#include <algorithm>
#include <exception>
#include <mutex>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace Cli {
namespace {

// The files of one command line, worked on by one thread a job.
class Batch {
public:
    Batch(std::vector<FileTask> tasks, Session& session, const FileWork& work)
        : m_tasks(std::move(tasks)), m_results(m_tasks.size()), m_session(session), m_work(work)
    {}

    ExitCode run(unsigned jobs);

private:
    struct Result {
        Held held;
        ExitCode code = ExitCode::Done;
        bool isDone = false;
    };

    void workOff();
    void work(std::size_t i);
    bool takeNext(std::size_t& i);
    void done(std::size_t i);
    void tell(Result& result);
    void tellProgress();
    std::string state() const;
    ExitCode end();

    const std::vector<FileTask> m_tasks;
    std::vector<Result> m_results;
    Session& m_session;
    const FileWork& m_work;
    unsigned m_threads = 1;  // of each job

    std::mutex m_mutex;                // guards what follows, and m_results once they are done
    std::size_t m_next = 0;            // the first that nobody has begun
    std::size_t m_told = 0;            // the first that is not told yet
    std::size_t m_done = 0;            // those that are over
    std::exception_ptr m_outputFault;  // standard output takes nothing
};

ExitCode Batch::run(unsigned jobs)
{
    m_session.beginStage("");
    tellProgress();
    m_threads = std::max(1u, threadCount() / jobs);
    TessaryMesh::shareMemory(jobs);
    std::vector<std::thread> others;
    for (unsigned job = 1; job < jobs; ++job)
        others.push_back(quietThread([this] { workOff(); }));
    workOff();
    for (std::thread& other : others)
        if (other.joinable())
            other.join();
    return end();
}

// What a kernel says of its progress is no matter where one file is one of many.
void Batch::workOff()
{
    const Pelon::JobScope job(m_session.program().interrupt.job());
    std::atomic<float> unseen{0};
    const Tessary::ProgressScope progress(unseen);
    for (std::size_t i = 0; takeNext(i);) {
        withThreads(m_threads, [this, i] { work(i); });
        done(i);
    }
}

void Batch::work(std::size_t i)
{
    Session one(m_session.program(), m_results[i].held);
    one.setVerb(m_session.verb());
    try {
        m_results[i].code = one.run([&] { return m_work(m_tasks[i], one); });
    } catch (const std::bad_alloc&) {
        m_results[i].code = ExitCode::File;  // with no memory to say so
    }
}

bool Batch::takeNext(std::size_t& i)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_outputFault || m_session.program().interrupt.isRequested() || m_next == m_tasks.size())
        return false;
    i = m_next++;
    return true;
}

void Batch::done(std::size_t i)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_results[i].isDone = true;
    m_done += m_results[i].code == ExitCode::Interrupted ? 0 : 1;
    tellProgress();
    for (; m_told < m_results.size() && m_results[m_told].isDone; ++m_told)
        tell(m_results[m_told]);
}

void Batch::tell(Result& result)
{
    const Held held = std::exchange(result.held, {});
    if (result.code == ExitCode::Interrupted || m_outputFault)
        return;
    for (const std::string& line : held.lines)
        m_session.program().say(line);
    try {
        print(held.product);
    } catch (const TessaryMesh::FileError&) {
        m_outputFault = std::current_exception();
    }
}

std::string Batch::state() const
{
    return std::to_string(m_done) + " of " + counted(m_tasks.size(), "file");
}

void Batch::tellProgress()
{
    m_session.tellProgress(state(),
                           static_cast<float>(m_done) / static_cast<float>(m_tasks.size()));
}

ExitCode Batch::end()
{
    ExitCode worst = ExitCode::Done;
    std::size_t failed = 0;
    for (Result& result : m_results) {
        worst = std::max(worst, result.code);
        failed += result.isDone && result.code != ExitCode::Done ? 1 : 0;
        if (result.isDone)
            tell(result);
    }
    if (m_outputFault)
        std::rethrow_exception(m_outputFault);
    TessaryMesh::throwIfCancelled();
    if (failed > 0)
        m_session.note(std::to_string(failed) + " of " + counted(m_tasks.size(), "file") +
                       " failed");
    m_session.finish("");
    return worst;
}

}  // namespace

ExitCode forEachFile(const FileOptions& files, Session& session, const FileWork& work)
{
    std::vector<FileTask> tasks = tasksOf(files);
    session.settings.isBatch = tasks.size() > 1 || files.jobs > 0;
    if (!session.settings.isBatch)
        return work(tasks.front(), session);
    const Settings& settings = session.settings;
    const std::size_t most = settings.threads > 0 ? settings.threads : tasks.size();
    const std::size_t jobs = std::min({std::size_t{std::max(1u, files.jobs)}, tasks.size(), most});
    return Batch(std::move(tasks), session, work).run(static_cast<unsigned>(jobs));
}

}  // namespace Cli
