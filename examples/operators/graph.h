#pragma once

#include <Korvane/Object.h>
#include <Pelon/RuntimeServices.h>

#include <functional>
#include <string>
#include <vector>

/// What flows along the edges of the graph: a mesh or a point cloud, which several nodes may hold.
using Shape = Pelon::Ptr<Korvane::Object>;

/// What every operator is given beside its inputs: where to say something.
using Log = Pelon::RuntimeServices;

/// Inputs come by value. An operator that changes one hands it to toMutable(): what nobody else holds is
/// changed in place, everything else is copied first.
using Operator = std::function<Shape(std::vector<Shape> inputs, const Log& log)>;

/// Operators and who feeds whom.
class Graph {
public:
    using Node = std::size_t;

    explicit Graph(Log log) : m_log(std::move(log)) {}

    /// Adds a node behind those that it takes its inputs from.
    Node add(Operator run, std::vector<Node> inputs = {});

    /// The results of some nodes, each node run once. Throws what an operator throws, and std::runtime_error
    /// where the job of this thread was cancelled.
    std::vector<Shape> evaluate(const std::vector<Node>& wanted) const;

private:
    struct Entry {
        Operator run;
        std::vector<Node> inputs;
    };

    std::vector<std::size_t> usesFor(const std::vector<Node>& wanted) const;

    Log m_log;
    std::vector<Entry> m_nodes;  // inputs before those that take them
};
