"""Prints as JSON what VTK reads from a file of this library: points, cells, arrays; for triangles
area and volume."""

import json
import sys

from vtkmodules.vtkFiltersCore import vtkMassProperties
from vtkmodules.vtkIOGeometry import vtkSTLReader
from vtkmodules.vtkIOXML import vtkXMLPolyDataReader, vtkXMLUnstructuredGridReader


def arrays(attributes):
    result = {}
    for k in range(attributes.GetNumberOfArrays()):
        array = attributes.GetArray(k)
        values = [array.GetTuple(i) for i in range(array.GetNumberOfTuples())]
        result[array.GetName()] = [[None if v != v else v for v in t] for t in values]
    return result


def components(attributes, name):
    array = attributes.GetArray(name)
    return [array.GetComponentName(k) for k in range(array.GetNumberOfComponents())]


def cells(data):
    result = []
    for k in range(data.GetNumberOfCells()):
        points = data.GetCell(k).GetPointIds()
        result.append({"type": data.GetCellType(k),
                       "points": [points.GetId(i) for i in range(points.GetNumberOfIds())]})
    return result


path = sys.argv[1]
readers = {"vtu": vtkXMLUnstructuredGridReader, "vtp": vtkXMLPolyDataReader, "stl": vtkSTLReader}
reader = readers[path[-3:]]()
reader.SetFileName(path)
reader.Update()
data = reader.GetOutput()
report = {"error": reader.GetErrorCode()}
if path.endswith("stl"):
    mass = vtkMassProperties()
    mass.SetInputData(data)
    report.update(area=mass.GetSurfaceArea(), volume=mass.GetVolume())
else:
    fields = data.GetPointData()
    report.update(points=[data.GetPoint(k) for k in range(data.GetNumberOfPoints())],
                  cells=cells(data), point_data=arrays(fields),
                  cell_data=arrays(data.GetCellData()),
                  order={name: components(fields, name) for name in arrays(fields)})
print(json.dumps(report))
