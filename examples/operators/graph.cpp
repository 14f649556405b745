#include "graph.h"

#include <KOR/ExceptionMessage.h>
#include <Pelon/Job.h>

#include <stdexcept>
#include <utility>

Graph::Node Graph::add(Operator run, std::vector<Node> inputs)
{
    m_nodes.push_back({std::move(run), std::move(inputs)});
    return m_nodes.size() - 1;
}

// How often each node's result will be asked for.
std::vector<std::size_t> Graph::usesFor(const std::vector<Node>& wanted) const
{
    std::vector<std::size_t> uses(m_nodes.size());
    for (const Node node : wanted)
        ++uses[node];
    for (Node node = m_nodes.size(); node-- > 0;)
        if (uses[node] > 0)
            for (const Node input : m_nodes[node].inputs)
                ++uses[input];
    return uses;
}

std::vector<Shape> Graph::evaluate(const std::vector<Node>& wanted) const
{
    std::vector<std::size_t> uses = usesFor(wanted);
    std::vector<Shape> results(m_nodes.size());
    // Whoever asks last gets the graph's own pointer, and may be the only holder then.
    const auto take = [&](Node node) {
        return --uses[node] > 0 ? results[node] : std::move(results[node]);
    };
    for (Node node = 0; node < m_nodes.size(); ++node) {
        if (uses[node] == 0)
            continue;
        if (Pelon::isJobCancelled())
            throw std::runtime_error(KOR::exceptionMessage.c_str());
        std::vector<Shape> inputs;
        for (const Node input : m_nodes[node].inputs)
            inputs.push_back(take(input));
        results[node] = m_nodes[node].run(std::move(inputs), m_log);
    }
    std::vector<Shape> found;
    found.reserve(wanted.size());
    for (const Node node : wanted)
        found.push_back(take(node));
    return found;
}
