#pragma once

/// @file
/// All kernels. What holds for every one of them:
///
/// - Indices are 32-bit and count from 0; 0xFFFFFFFF means none.
/// - An array or object that a function writes is never one that it reads: outputs must not be inputs.
///   Nothing checks it. Where the two may be the same, the parameter is marked `in,out`.
/// - What a comment calls a precondition (`@pre`) the caller owes, and nobody checks it but the checked
///   build (the CMake option TESSARY_CHECKED). TessaryMesh/Check.h checks meshes.
/// - Results have the same bits for any number of threads and on every machine.
/// - Kernels keep no state between calls. Any number of threads may call them at a time, as long as
///   nobody writes what another one reads.

#include <Tessary/CutMesh.h>
#include <Tessary/HalfEdge.h>
#include <Tessary/Primitives.h>
#include <Tessary/Progress.h>
#include <Tessary/Sampling.h>
#include <Tessary/Scratch.h>
#include <Tessary/Solver.h>
#include <Tessary/Topology.h>
#include <Tessary/Triangulation.h>
