#pragma once

#include <Tessary/CutMesh.h>
#include <Tessary/HalfEdge.h>
#include <Tessary/Primitives.h>
#include <Tessary/Progress.h>
#include <Tessary/Sampling.h>
#include <Tessary/Scratch.h>
#include <Tessary/Solver.h>
#include <Tessary/Topology.h>
#include <Tessary/Triangulation.h>
