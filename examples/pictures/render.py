"""Draws exported surfaces (qdlflex export vtp) side by side into a PNG file.

    render.py coarse BEFORE.vtp AFTER.vtp OUT.png
    render.py mode SURFACE.vtp MODE WARP OUT.png

coarse: the faces of two surfaces with their free edges.
mode: a surface deformed by a mode and coloured by displacement and by von Mises stress. WARP is the
largest displacement in the picture as a fraction of the body's diagonal.

Needs VTK for Python (Debian package python3-vtk9) and a display, be it that of xvfb-run.
"""

import sys

import vtk

WIDTH, HEIGHT = 1000, 430  # of a picture
SAMPLES = 3  # pixels drawn for one, along each side
VIEW = (0.75, -1.0, 0.65)  # from the body towards the eye
FACE, LINE, EDGE, TEXT = (0.80, 0.86, 0.93), (0.25, 0.32, 0.42), (0.85, 0.10, 0.10), (0.1, 0.1, 0.1)


def read(path):
    reader = vtk.vtkXMLPolyDataReader()
    reader.SetFileName(path)
    reader.Update()
    return reader.GetOutput()


def diagonal(data):
    x0, x1, y0, y1, z0, z1 = data.GetBounds()
    return ((x1 - x0) ** 2 + (y1 - y0) ** 2 + (z1 - z0) ** 2) ** 0.5


def polygons(data):
    """The faces alone, without lines and vertices."""
    faces = vtk.vtkPolyData()
    faces.SetPoints(data.GetPoints())
    faces.SetPolys(data.GetPolys())
    faces.GetPointData().ShallowCopy(data.GetPointData())
    return faces


def triangles(data, smooth):
    """What the renderer draws: polygons of many corners need not be convex."""
    cut = vtk.vtkTriangleFilter()
    cut.SetInputData(polygons(data))
    if not smooth:
        cut.Update()
        return cut.GetOutput()
    normals = vtk.vtkPolyDataNormals()
    normals.SetInputConnection(cut.GetOutputPort())
    normals.SetFeatureAngle(40)
    normals.Update()
    return normals.GetOutput()


def tubes(data, radius, color):
    """Lines as tubes, so that they have a width in every picture size."""
    tube = vtk.vtkTubeFilter()
    tube.SetInputData(data)
    tube.SetRadius(radius)
    tube.SetNumberOfSides(8)
    mapper = vtk.vtkPolyDataMapper()
    mapper.SetInputConnection(tube.GetOutputPort())
    mapper.ScalarVisibilityOff()
    actor = vtk.vtkActor()
    actor.SetMapper(mapper)
    actor.GetProperty().SetColor(color)
    actor.GetProperty().SetLighting(False)
    return actor


def outlines(data, radius):
    edges = vtk.vtkExtractEdges()
    edges.SetInputData(polygons(data))
    edges.Update()
    return tubes(edges.GetOutput(), radius, LINE)


def free_edges(data, radius):
    lines = vtk.vtkPolyData()
    lines.SetPoints(data.GetPoints())
    lines.SetLines(data.GetLines())
    return tubes(lines, radius, EDGE)


def body(data, field=None, colors=None):
    """Faces in one colour, or coloured by a point array of one value a node."""
    mapper = vtk.vtkPolyDataMapper()
    faces = triangles(data, smooth=field is not None)
    if field is None:
        mapper.ScalarVisibilityOff()
    else:
        faces.GetPointData().SetActiveScalars(field)
        mapper.SetLookupTable(colors)
        mapper.UseLookupTableScalarRangeOn()
        mapper.InterpolateScalarsBeforeMappingOn()
    mapper.SetInputData(faces)
    actor = vtk.vtkActor()
    actor.SetMapper(mapper)
    actor.GetProperty().SetColor(FACE)
    if field is None:
        actor.GetProperty().SetInterpolationToFlat()
    # Colours that mean a value should not depend much on the light.
    ambient = 0.25 if field is None else 0.5
    actor.GetProperty().SetAmbient(ambient)
    actor.GetProperty().SetDiffuse(1.0 - ambient)
    return actor


def blue_to_red(low, high):
    steps = vtk.vtkColorTransferFunction()
    for place, color in ((0.0, (0.19, 0.29, 0.60)), (0.33, (0.35, 0.72, 0.80)),
                         (0.66, (0.97, 0.86, 0.40)), (1.0, (0.75, 0.13, 0.13))):
        steps.AddRGBPoint(low + place * (high - low), *color)
    return steps


def ghost(data):
    """The body as it was before it moved."""
    actor = body(data)
    actor.GetProperty().SetOpacity(0.18)
    return actor


def caption(text, x, y, size, centred=True):
    actor = vtk.vtkTextActor()
    actor.SetInput(text)
    style = actor.GetTextProperty()
    style.SetColor(TEXT)
    style.SetFontSize(size * SAMPLES)
    style.SetFontFamilyToArial()
    if centred:
        style.SetJustificationToCentered()
    actor.GetPositionCoordinate().SetCoordinateSystemToNormalizedViewport()
    actor.SetPosition(x, y)
    return actor


def legend(colors, title):
    bar = vtk.vtkScalarBarActor()
    bar.SetLookupTable(colors)
    bar.SetTitle(title)
    bar.SetNumberOfLabels(3)
    bar.SetLabelFormat("%.3g")
    bar.SetOrientationToHorizontal()
    bar.SetPosition(0.22, 0.03)
    bar.SetWidth(0.56)
    bar.SetHeight(0.13)
    bar.UnconstrainedFontSizeOn()
    for style in (bar.GetTitleTextProperty(), bar.GetLabelTextProperty()):
        style.SetColor(TEXT)
        style.SetFontSize(13 * SAMPLES)
        style.SetFontFamilyToArial()
        style.ItalicOff()
        style.BoldOff()
        style.ShadowOff()
    return bar


def draw(panels, path):
    """Every panel is a list of things to draw; all look at the bodies in the same way."""
    window = vtk.vtkRenderWindow()
    window.SetOffScreenRendering(1)
    window.SetMultiSamples(0)
    window.SetSize(WIDTH * SAMPLES, HEIGHT * SAMPLES)
    camera = None
    for k, panel in enumerate(panels):
        renderer = vtk.vtkRenderer()
        renderer.SetBackground(1, 1, 1)
        renderer.SetViewport(k / len(panels), 0, (k + 1) / len(panels), 1)
        for actor in panel:
            renderer.AddViewProp(actor)
        vtk.vtkLightKit().AddLightsToRenderer(renderer)
        window.AddRenderer(renderer)
        if camera is None:
            camera = renderer.GetActiveCamera()
            camera.SetPosition(*VIEW)
            camera.SetFocalPoint(0, 0, 0)
            camera.SetViewUp(0, 0, 1)
            renderer.ResetCamera()
            camera.Zoom(1.15)
            camera.SetWindowCenter(0, -0.1)  # room for the words below
        renderer.SetActiveCamera(camera)
        renderer.ResetCameraClippingRange()
    window.Render()
    grab = vtk.vtkWindowToImageFilter()
    grab.SetInput(window)
    grab.ReadFrontBufferOff()
    shrink = vtk.vtkImageShrink3D()
    shrink.SetInputConnection(grab.GetOutputPort())
    shrink.SetShrinkFactors(SAMPLES, SAMPLES, 1)
    shrink.MeanOn()
    writer = vtk.vtkPNGWriter()
    writer.SetCompressionLevel(9)
    writer.SetInputConnection(shrink.GetOutputPort())
    writer.SetFileName(path)
    writer.Write()


def face_count(data):
    return f"{data.GetNumberOfPolys()} faces"


def edge_count(data):
    count = data.GetNumberOfLines()
    return f"{count} chains of free edges" if count else "no free edges"


def coarse(before, after, path):
    panels = []
    for title, data in (("before", read(before)), ("after", read(after))):
        size = diagonal(data)
        panels.append([body(data), outlines(data, 0.0008 * size), free_edges(data, 0.003 * size),
                       caption(f"{title}: {face_count(data)}, {edge_count(data)}", 0.5, 0.04, 16)])
    draw(panels, path)


def field_of(data, mode, words):
    """The name of a mode's array that has these words in it."""
    for k in range(data.GetPointData().GetNumberOfArrays()):
        name = data.GetPointData().GetArrayName(k)
        if name.startswith("Mode ") and int(name.split()[1]) == mode and words in name:
            return name
    raise SystemExit(f"there is no {words} of mode {mode}")


def warped(data, displacement, fraction):
    vectors = data.GetPointData().GetArray(displacement)
    warp = vtk.vtkWarpVector()
    warp.SetInputData(data)
    warp.SetInputArrayToProcess(0, 0, 0, vtk.vtkDataObject.FIELD_ASSOCIATION_POINTS, displacement)
    warp.SetScaleFactor(fraction * diagonal(data) / vectors.GetRange(-1)[1])
    warp.Update()
    return warp.GetOutput()


def add_length(data, vectors, name):
    source = data.GetPointData().GetArray(vectors)
    lengths = vtk.vtkDoubleArray()
    lengths.SetName(name)
    for k in range(source.GetNumberOfTuples()):
        lengths.InsertNextValue(sum(v * v for v in source.GetTuple(k)) ** 0.5)
    data.GetPointData().AddArray(lengths)


def mode_picture(surface, mode, fraction, path):
    data = read(surface)
    displacement = field_of(data, mode, "displacement")
    stress = field_of(data, mode, "von Mises")
    add_length(data, displacement, "length")
    bent = warped(data, displacement, fraction)
    title = displacement.split(" displacement")[0]
    panels = []
    for field, name in (("length", displacement), (stress, stress)):
        colors = blue_to_red(*data.GetPointData().GetArray(field).GetRange())
        panels.append([body(bent, field, colors), ghost(data),
                       legend(colors, name.replace(title, "").strip()),
                       caption(title, 0.72, 0.92, 16)])
    draw(panels, path)


def main(arguments):
    if len(arguments) == 4 and arguments[0] == "coarse":
        coarse(*arguments[1:])
    elif len(arguments) == 5 and arguments[0] == "mode":
        mode_picture(arguments[1], int(arguments[2]), float(arguments[3]), arguments[4])
    else:
        raise SystemExit(__doc__)


main(sys.argv[1:])
