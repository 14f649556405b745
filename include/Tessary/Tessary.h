#pragma once

#include <Tessary/HalfEdge.h>
#include <Tessary/Topology.h>
#include <Tessary/Triangulation.h>
