// A bracket in millimetres: a foot with a vertical bore, a lug with a horizontal one. The origin
// is in the mouth of the vertical bore.
SetFactory("OpenCASCADE");

Box(1) = {-55, -20, 0, 80, 40, 10};        // foot
Box(2) = {-55, -20, 10, 10, 40, 50};       // lug
Cylinder(3) = {0, 0, -1, 0, 0, 12, 9};     // bore of the foot, along z
Cylinder(4) = {-56, 0, 40, 12, 0, 0, 8};   // bore of the lug, along x
BooleanUnion(10) = { Volume{1}; Delete; }{ Volume{2}; Delete; };
BooleanDifference(20) = { Volume{10}; Delete; }{ Volume{3, 4}; Delete; };

// The volume is the only physical group: surfaces would come out as elements of their own.
Physical Volume("BRACKET") = {20};

Mesh.CharacteristicLengthMin = 16;
Mesh.CharacteristicLengthMax = 16;
Mesh.ElementOrder = 2;
Mesh.HighOrderOptimize = 1;
