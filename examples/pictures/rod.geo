// A connecting rod of a Debian package (occt-misc), drawn in inches, meshed in millimetres.
SetFactory("OpenCASCADE");
Merge "/usr/share/opencascade/data/step/linkrods.step";
Physical Volume("ROD") = {1};
Mesh.CharacteristicLengthMin = 0.15;
Mesh.CharacteristicLengthMax = 0.15;
Mesh.ElementOrder = 2;
Mesh.HighOrderOptimize = 1;
Mesh.ScalingFactor = 25.4;
