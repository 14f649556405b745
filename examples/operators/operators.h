#pragma once

#include "graph.h"

/// The operators: functions that make one, bound to its parameters. What goes wrong is an exception of the
/// mesh library, or an empty shape and an error in the log.

/// A mesh file. No inputs.
Operator readFile(std::string path);

/// The fan triangles of a mesh.
Operator triangulate();

/// Three quads for each fan triangle of a mesh.
Operator quads(double creaseAngle);

/// Points on a triangle mesh that keep a distance.
Operator sample(float distance, unsigned seed);

/// The points of a cloud, moved until spheres of that radius around them do not overlap.
Operator separate(float radius);
