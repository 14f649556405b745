"""Meshes that show something: a globe of wires, a house, bodies, a mesh with faults."""
import numpy as np
import tessary as ts


def tube(path, radius, sides=8):
    """A closed tube around a closed path of points: points and quads."""
    path = np.asarray(path, float)
    along = np.roll(path, -1, 0) - np.roll(path, 1, 0)
    along /= np.linalg.norm(along, axis=1)[:, None]
    outward = path - path.mean(0)
    outward -= (outward * along).sum(1)[:, None] * along
    outward /= np.linalg.norm(outward, axis=1)[:, None]
    across = np.cross(along, outward)
    angle = np.arange(sides) * 2 * np.pi / sides
    points = path[:, None] + radius * (np.cos(angle)[None, :, None] * outward[:, None] + np.sin(angle)[None, :, None] * across[:, None])
    return points.reshape(-1, 3), grid_faces(len(path), sides)


def grid_faces(rows, columns):
    """Quads of a grid that closes both ways."""
    i, j = np.meshgrid(np.arange(rows), np.arange(columns), indexing="ij")
    at = lambda a, b: (a % rows) * columns + b % columns
    return np.stack([at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)], -1).reshape(-1, 4)


def joined(parts, **properties):
    """One mesh of (points, faces) parts."""
    points, faces, first = [], [], 0
    for part, of in parts:
        points.append(part)
        faces += [[first + c for c in face] for face in of]
        first += len(part)
    mesh = ts.Mesh(np.concatenate(points).astype(np.float32), faces)
    for name, values in properties.items():
        mesh.properties[name] = values
    return mesh


def globe(center, radius, touched, meridians=6, parallels=5):
    """The wires of a globe, with a bead at each place that it touches."""
    t = np.linspace(0, 2 * np.pi, 96, endpoint=False)
    circle = np.stack([np.cos(t), np.sin(t), 0 * t], 1)
    rings = []
    for k in range(meridians):
        a = np.pi * k / meridians
        rings.append(circle @ np.array([[np.cos(a), 0, np.sin(a)], [0, 1, 0], [-np.sin(a), 0, np.cos(a)]]))
    for k in range(1, parallels + 1):
        a = np.pi * k / (parallels + 1)
        rings.append(np.stack([np.sin(a) * np.cos(t), 0 * t + np.cos(a), np.sin(a) * np.sin(t)], 1))
    wires = [tube(np.asarray(center) + radius * ring, 0.006 * radius) for ring in rings]
    return joined(wires + [ball(point, 0.04 * radius) for point in touched])


def house():
    """A box with a roof, whose gables are pentagons."""
    points = [(-1, -1, 1), (1, -1, 1), (1, -1, -1), (-1, -1, -1), (-1, 0.4, 1), (1, 0.4, 1), (1, 0.4, -1), (-1, 0.4, -1),
              (0, 1.2, 1), (0, 1.2, -1)]
    faces = [(0, 1, 5, 8, 4), (2, 3, 7, 9, 6), (1, 2, 6, 5), (3, 0, 4, 7), (5, 6, 9, 8), (7, 4, 8, 9), (0, 3, 2, 1)]
    return ts.Mesh(np.array(points, np.float32), faces)


def ball(center, radius, rows=24, columns=32):
    """Points and faces of a sphere."""
    a = np.pi * (np.arange(rows) + 0.5) / rows
    t = 2 * np.pi * np.arange(columns) / columns
    points = np.stack([np.sin(a)[:, None] * np.cos(t), np.repeat(np.cos(a)[:, None], columns, 1), np.sin(a)[:, None] * np.sin(t)], -1)
    faces = [f[::-1] for k, f in enumerate(grid_faces(rows, columns).tolist()) if k < (rows - 1) * columns]
    caps = [list(range(columns))[::-1], list(range((rows - 1) * columns, rows * columns))]
    return np.asarray(center) + radius * points.reshape(-1, 3), faces + caps


def box(center, half):
    """Points and faces of a box; no two faces share points, so that its edges stay sharp."""
    corners = np.array([[x, y, z] for x in (-1, 1) for y in (-1, 1) for z in (-1, 1)], float)
    faces = [(0, 1, 3, 2), (4, 6, 7, 5), (0, 4, 5, 1), (2, 3, 7, 6), (0, 2, 6, 4), (1, 5, 7, 3)]
    points = np.concatenate([corners[list(face)] for face in faces])
    return np.asarray(center) + points * half, [list(range(4 * k, 4 * k + 4)) for k in range(6)]


def bodies_mesh(rows):
    """Of rows of centre, half size and radius, with the number of its body at each point."""
    parts = [ball(row[:3], row[6]) if row[6] > 0 else box(row[:3], row[3:6]) for row in rows]
    return joined(parts, body=np.concatenate([np.full(len(points), k, np.int32) for k, (points, _) in enumerate(parts)]))


def broken_mesh():
    """The demo mesh with a hole, two faces turned over, and a fin."""
    mesh = ts.demo_mesh(10)
    faces = [list(mesh.face(k)) for k in range(mesh.face_count)]
    middle = np.array([mesh.points[face].mean(0) for face in faces])
    nearest = lambda place: np.argsort(np.linalg.norm(middle - place, axis=1))
    for face in nearest([0.9, 0.6, 0.4])[[0, 5]]:
        faces[face] = faces[face][::-1]
    a, b = faces[nearest([0.2, -1.1, 0.4])[0]][:2]
    points = np.concatenate([mesh.points, mesh.points[[a, b]] + [0, 0, 0.25]])
    hole = set(nearest([-0.9, 0.5, 0.4])[:3])
    faces = [face for k, face in enumerate(faces) if k not in hole] + [[a, b, len(points) - 1, len(points) - 2]]
    return ts.Mesh(points.astype(np.float32), faces, check=False)
