#pragma once

#include "Session.h"
#include "Stopwatch.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

namespace Cli {

/// A table of what was done: a line each for what was called, what came of it, how long it took.
class Steps {
public:
    explicit Steps(Session& session) : m_session(session) {}

    template <class Work>
    void run(const std::string& name, Work&& work)
    {
        m_session.beginStage(name);
        Stopwatch watch;
        const std::string result = work();
        const double seconds = watch.lap();
        m_facts.push_back({{"step", name}, {"result", result}, {"seconds", seconds}});
        char line[64];
        std::snprintf(line, sizeof line, "%10.2f ms  %-22s", seconds * 1e3, name.c_str());
        m_text.append(line).append(result) += '\n';
    }

    const Json& facts() const { return m_facts; }
    const std::string& text() const { return m_text; }

private:
    Session& m_session;
    Json m_facts = Json::array();
    std::string m_text;
};

}  // namespace Cli
