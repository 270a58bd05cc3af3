# Turns a Wavefront OBJ file into patches: awk -f obj2inc.awk model.obj >model.inc
# assimp writes OBJ files with y up; here z is up again. A material NAME becomes an include of surface_NAME.inc.
function turned() { return "<" $2 " " (-$4) " " $3 ">" }
function corner(i,  part) { split($i, part, "/"); return "vertex " point[part[1]] " normal " normal[part[3]] }
$1 == "v" { point[++points] = turned() }
$1 == "vn" { normal[++normals] = turned() }
$1 == "usemtl" { gsub(/[^A-Za-z0-9_]/, "_", $2); print "include \"surface_" $2 ".inc\"" }
$1 == "f" { for (i = 3; i < NF; i++) print "patch { " corner(2) " " corner(i) " " corner(i + 1) " }" }
