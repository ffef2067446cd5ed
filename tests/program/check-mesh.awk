# awk -f check-mesh.awk m.node m.ele m.neigh m.face: whether TetGen's files of a mesh are consistent.
# Coordinates must be small multiples of a power of two, so that all arithmetic is exact.

function fault(text) { print "FAULT: " text; faults = 1 }
function volume(a, b, c, d) {
    return (x[b] - x[a]) * ((y[c] - y[a]) * (z[d] - z[a]) - (z[c] - z[a]) * (y[d] - y[a])) + \
        (y[b] - y[a]) * ((z[c] - z[a]) * (x[d] - x[a]) - (x[c] - x[a]) * (z[d] - z[a])) + \
        (z[b] - z[a]) * ((x[c] - x[a]) * (y[d] - y[a]) - (y[c] - y[a]) * (x[d] - x[a]))
}
# Three numbers, the smallest in front, in the same sense of rotation.
function turned(a, b, c) {
    a += 0; b += 0; c += 0
    return a < b && a < c ? a " " b " " c : b < c ? b " " c " " a : c " " a " " b
}
function outward(t, i) {
    if (i == 0) return turned(v[t, 1], v[t, 2], v[t, 3])
    if (i == 1) return turned(v[t, 0], v[t, 3], v[t, 2])
    return i == 2 ? turned(v[t, 0], v[t, 1], v[t, 3]) : turned(v[t, 0], v[t, 2], v[t, 1])
}

/^#/ { next }
FNR == 1 { ++file; count[file] = $1; next }
$1 != FNR - 2 { fault("number " $1 " in file " file) }
file == 1 { x[$1] = $2; y[$1] = $3; z[$1] = $4; next }
file == 2 {
    for (i = 0; i < 4; ++i) v[$1, i] = $(i + 2)
    key = sprintf("%9d%9d%9d%9d", $2, $3, $4, $5)
    if (key <= previous || $2 > $3 || $3 > $4 || $3 > $5) fault("order of tetrahedron " $1)
    previous = key
    if (volume($2, $3, $4, $5) <= 0) fault("orientation of tetrahedron " $1)
    whole += volume($2, $3, $4, $5)
    for (i = 0; i < 4; ++i) sides[outward($1, i)] = $1
    next
}
file == 3 {
    for (i = 0; i < 4; ++i) {
        split(outward($1, i), f, " ")
        other = turned(f[1], f[3], f[2])
        if ($(i + 2) != (other in sides ? sides[other] : -1)) fault("neighbour of " $1)
        if ($(i + 2) == -1) { ++open; hull[outward($1, i)] }
    }
}
file == 4 {
    if (!(($2 " " $3 " " $4) in hull)) fault("facet " $1)
    delete hull[$2 " " $3 " " $4]
    enclosed += volume(0, $2, $3, $4)
}
END {
    if (count[2] != count[3] || count[4] != open) fault("counts")
    if (enclosed != whole) fault("volume " enclosed " in place of " whole)
    print count[1] " points, " count[2] " tetrahedra, " open " facets" (faults ? "" : ", consistent")
}
