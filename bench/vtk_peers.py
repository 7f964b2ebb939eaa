#!/usr/bin/env python3
"""Filters of VTK as peers of the benchmark programs: one thread, in-memory meshes.

usage: bench/vtk_peers.py PEER FOLDER

PEER is a function below. FOLDER holds the mesh: points.f64 (x y z each), cells.i64 (point indices)
and, as a text, shape.txt (points per cell and VTK's number of the cell type). Prints the best time of
several runs in seconds and the number of cells that came out.
"""

import pathlib
import sys
import time

import numpy
import vtk
from vtk.util import numpy_support

MIN_RUNS = 3
ENOUGH = 2.0  # seconds


class Mesh:
    def __init__(self, folder):
        folder = pathlib.Path(folder)
        self.points_per_cell, self.cell_type = map(int, (folder / "shape.txt").read_text().split())
        self.coordinates = numpy.fromfile(folder / "points.f64").reshape(-1, 3)
        self.indices = numpy.fromfile(folder / "cells.i64", dtype=numpy.int64)

    def points(self):
        points = vtk.vtkPoints()
        points.SetDataTypeToDouble()
        points.SetData(numpy_support.numpy_to_vtk(self.coordinates, deep=True))
        return points

    def cells(self):
        ends = numpy.arange(0, self.indices.size + 1, self.points_per_cell, dtype=numpy.int64)
        cells = vtk.vtkCellArray()
        cells.SetData(
            numpy_support.numpy_to_vtkIdTypeArray(ends, deep=True),
            numpy_support.numpy_to_vtkIdTypeArray(self.indices, deep=True),
        )
        return cells

    def grid(self):
        grid = vtk.vtkUnstructuredGrid()
        grid.SetPoints(self.points())
        grid.SetCells(self.cell_type, self.cells())
        return grid

    def polygons(self):
        polygons = vtk.vtkPolyData()
        polygons.SetPoints(self.points())
        polygons.SetPolys(self.cells())
        return polygons


def measure(make_filter, mesh):
    """Best time of a fresh filter's run, and the number of cells that it gives."""
    best = float("inf")
    spent = 0.0
    runs = 0
    while runs < MIN_RUNS or spent < ENOUGH:
        job = make_filter()
        job.SetInputData(mesh)
        start = time.perf_counter()
        job.Update()
        elapsed = time.perf_counter() - start
        best = min(best, elapsed)
        spent += elapsed
        runs += 1
    return best, job.GetOutput().GetNumberOfCells()


def surface_filter(mesh):
    """The faces of solid cells that only one cell has."""
    return measure(vtk.vtkDataSetSurfaceFilter, mesh.grid())


def feature_edges(mesh):
    """The edges of polygons that only one polygon has."""

    def make_filter():
        edges = vtk.vtkFeatureEdges()
        edges.BoundaryEdgesOn()
        edges.FeatureEdgesOff()
        edges.NonManifoldEdgesOff()
        edges.ManifoldEdgesOff()
        edges.ColoringOff()
        return edges

    return measure(make_filter, mesh.polygons())


PEERS = {peer.__name__: peer for peer in (surface_filter, feature_edges)}


def main(arguments):
    if len(arguments) != 2 or arguments[0] not in PEERS:
        sys.exit(__doc__)
    vtk.vtkSMPTools.Initialize(1)
    seconds, cells = PEERS[arguments[0]](Mesh(arguments[1]))
    print(f"{seconds:.9f} {cells}")


if __name__ == "__main__":
    main(sys.argv[1:])
