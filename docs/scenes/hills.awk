# Writes a model as a scanner gives it, with a colour at each vertex: awk -f hills.awk >hills.ply
function height(x, y) {
    return 1.6 * exp(-((x - 1.5) ^ 2 + (y - 1) ^ 2) / 3) + 1.1 * exp(-((x + 2) ^ 2 + (y + 1.2) ^ 2) / 4) \
        + 0.12 * sin(3.1 * x + y) * cos(2.3 * y - 0.6 * x)
}
BEGIN {
    n = 120
    print "ply\nformat ascii 1.0\nelement vertex " n * n "\nproperty float x\nproperty float y\nproperty float z"
    print "property uchar red\nproperty uchar green\nproperty uchar blue\nelement face " 2 * (n - 1) ^ 2
    print "property list uchar int vertex_indices\nend_header"
    for (j = 0; j < n; j++)
        for (i = 0; i < n; i++) {
            x = 10 * i / (n - 1) - 5
            y = 10 * j / (n - 1) - 5
            h = height(x, y)
            water = h < 0.12
            colour = water ? "40 95 140" : h < 0.22 ? "214 196 140" : h < 0.85 ? "92 140 64" : h < 1.3 ? "120 108 92" : "240 240 244"
            printf "%.4f %.4f %.4f %s\n", x, y, water ? 0.12 : h, colour
        }
    for (j = 0; j < n - 1; j++)
        for (i = 0; i < n - 1; i++) {
            a = j * n + i
            print 3, a, a + 1, a + n + 1 "\n" 3, a, a + n + 1, a + n
        }
}
