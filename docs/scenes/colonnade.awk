# Two rows of columns with a ball on each, for a flight between them.
BEGIN {
    for (y = -14; y <= 26; y += 4)
        for (x = -3; x <= 3; x += 6) {
            print "surface { color 0.85 0.8 0.72  ambient 0.3  diffuse 0.7 }"
            printf "cylinder { base <%d %d 0>  cap <%d %d 3.2>  radius 0.4 }\n", x, y, x, y
            printf "disc { center <%d %d 3.2>  normal <0 0 1>  radius 0.4 }\n", x, y
            print "surface { color 0.8 0.35 0.1  ambient 0.25  diffuse 0.6  specular 0.5  roughness 40 }"
            printf "sphere { center <%d %d 3.75>  radius 0.6 }\n", x, y
        }
}
