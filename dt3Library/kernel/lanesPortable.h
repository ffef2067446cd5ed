// No include guard: part of stepsPortable.h, inside its namespace.

/// Four doubles, in loops that any compiler can turn into what the processor has.
struct Lanes {
    double lane[4];
};

template <class Operation>
inline Lanes eachLane(Operation operation) {
    Lanes result;
    for (int i = 0; i < 4; ++i) result.lane[i] = operation(i);
    return result;
}
inline Lanes operator+(const Lanes& a, const Lanes& b) {
    return eachLane([&](int i) { return a.lane[i] + b.lane[i]; });
}
inline Lanes operator-(const Lanes& a, const Lanes& b) {
    return eachLane([&](int i) { return a.lane[i] - b.lane[i]; });
}
inline Lanes operator*(const Lanes& a, const Lanes& b) {
    return eachLane([&](int i) { return a.lane[i] * b.lane[i]; });
}
inline Lanes operator/(const Lanes& a, const Lanes& b) {
    return eachLane([&](int i) { return a.lane[i] / b.lane[i]; });
}

struct LanePositions {
    Lanes x, y, z;
};

inline Lanes allLanes(double value) {
    return {{value, value, value, value}};
}
inline Lanes multiplyAdd(const Lanes& a, const Lanes& b, const Lanes& c) {
    return a * b + c;
}
inline Lanes multiplySubtract(const Lanes& a, const Lanes& b, const Lanes& c) {
    return a * b - c;
}
inline Lanes sizeOf(const Lanes& a) {
    return eachLane([&](int i) { return std::fabs(a.lane[i]); });
}
/// Bit i: a < b in lane i; false for NaN.
inline unsigned whereLess(const Lanes& a, const Lanes& b) {
    return (a.lane[0] < b.lane[0] ? 1U : 0U) | (a.lane[1] < b.lane[1] ? 2U : 0U) |
           (a.lane[2] < b.lane[2] ? 4U : 0U) | (a.lane[3] < b.lane[3] ? 8U : 0U);
}
/// a where x < y and z < w and v < t, else NaN.
inline Lanes orNaN(const Lanes& a, const Lanes& x, const Lanes& y, const Lanes& z, const Lanes& w,
                   const Lanes& v, const Lanes& t) {
    const unsigned holds = whereLess(x, y) & whereLess(z, w) & whereLess(v, t);
    return eachLane([&](int i) {
        return (holds >> i & 1U) != 0 ? a.lane[i] : std::numeric_limits<double>::quiet_NaN();
    });
}

/// From four vertices or spheres to lanes of x, y, z.
inline LanePositions gather(const double* a, const double* b, const double* c, const double* d) {
    return {{{a[0], b[0], c[0], d[0]}}, {{a[1], b[1], c[1], d[1]}}, {{a[2], b[2], c[2], d[2]}}};
}

/// A look at four tetrahedra from a point: squared distance to the centre, squared radius.
struct Look {
    Lanes squaredDistance, squaredRadius;
};

inline Look lookAt(const CompactTet* a, const CompactTet* b, const CompactTet* c,
                   const CompactTet* d, const LanePositions& p) {
    const LanePositions centre = gather(a->centre, b->centre, c->centre, d->centre);
    const Lanes dx = centre.x - p.x;
    const Lanes dy = centre.y - p.y;
    const Lanes dz = centre.z - p.z;
    return {dx * dx + dy * dy + dz * dz,
            {{a->squaredRadius, b->squaredRadius, c->squaredRadius, d->squaredRadius}}};
}

/// Which of four tetrahedra have this mark.
inline unsigned markedOf(const CompactTet* a, const CompactTet* b, const CompactTet* c,
                         const CompactTet* d, std::uint32_t mark) {
    return (a->mark == mark ? 1U : 0U) | (b->mark == mark ? 2U : 0U) | (c->mark == mark ? 4U : 0U) |
           (d->mark == mark ? 8U : 0U);
}

/// The lane with the least value, NaN counting as infinite, and that value.
struct LeastLane {
    unsigned lane;
    double value;
};
inline LeastLane leastLane(const Lanes& values) {
    LeastLane least{0, std::numeric_limits<double>::infinity()};
    for (unsigned i = 0; i < 4; ++i)
        if (values.lane[i] < least.value) least = {i, values.lane[i]};
    return least;
}

/// Lane by lane the least value so far and where it came from.
struct LeastSoFar {
    double value = std::numeric_limits<double>::infinity();
    std::uint32_t where = 0;

    void take(const Lanes& candidates, std::uint32_t place) {
        const LeastLane least = leastLane(candidates);
        if (!(least.value < value)) return;
        value = least.value;
        where = place + least.lane;
    }
    /// The place of the least value of all: that of its group of four and its lane.
    std::uint32_t place() const { return where; }
};

/// Writes centres, squared radii and corners 0.
inline void storeSpheres(CompactTet* tets, const Slot* slots, const LanePositions& centre,
                         const Lanes& squaredRadius, const VertexNumber (&corner0)[4]) {
    for (int i = 0; i < 4; ++i) {
        CompactTet& tet = tets[slots[i]];
        tet.centre[0] = centre.x.lane[i];
        tet.centre[1] = centre.y.lane[i];
        tet.centre[2] = centre.z.lane[i];
        tet.squaredRadius = static_cast<float>(squaredRadius.lane[i]);
        tet.vertex[0] = corner0[i];
    }
}

/// The lists of a region's step: four facets' codes on their outer and inner sides.
struct FacetsOfTet {
    const FacetCode* outer;
    FacetCode inner;

    FacetsOfTet(const CompactTet& tet, Slot slot) : outer(tet.link), inner(facetCode(slot, 0)) {}
    void appendNeighbours(unsigned chosen, Slot* end) const {
        for (unsigned i = 0; i < 4; ++i) {
            *end = slotOf(outer[i]);
            end += chosen >> i & 1U;
        }
    }
    void appendBoundary(unsigned chosen, FacetCode* outerEnd, FacetCode* innerEnd) const {
        for (unsigned i = 0; i < 4; ++i) {
            *outerEnd = outer[i];
            *innerEnd = inner + i;
            outerEnd += chosen >> i & 1U;
            innerEnd += chosen >> i & 1U;
        }
    }
};

/// Lists the corners of a tetrahedron's facet as the tetrahedron has them.
inline void listFacetCorners(const CompactTet& tet, unsigned facet, NewCorners& list) {
    for (unsigned i = 0; i < 3; ++i) list.vertex[i] = tet.vertex[INNER_FACET[facet][i]];
}

/// Gives a new tetrahedron its corners 1 to 3, and no mark.
inline void setCorners(CompactTet& tet, const NewCorners& corners) {
    for (unsigned i = 0; i < 3; ++i) tet.vertex[i + 1] = corners.vertex[i];
    tet.mark = 0;
}
