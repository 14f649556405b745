"""Reads a mesh, triangulates it, scatters samples over it, saves a picture: demo.py MESH PICTURE"""
import sys
import matplotlib.pyplot as plt
import tessary as ts

mesh = ts.read(sys.argv[1])
triangles = mesh.triangulate()
samples = triangles.sample(distance="4%", seed=7)
print(mesh, triangles, samples, sep="\n")
figure, (left, right) = plt.subplots(1, 2, figsize=(14, 6), subplot_kw={"projection": "3d"}, layout="constrained")
triangles.plot(color="color", edges=False, most_faces=50000, ax=left).set_axis_off()
samples.plot(color="color", ax=right).set_axis_off()
figure.savefig(sys.argv[2], dpi=150, bbox_inches="tight")
