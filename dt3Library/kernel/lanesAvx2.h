// No include guard: part of stepsAvx2.h, inside its namespace and its target.

/// Four doubles at once.
using Lanes = __m256d;

struct LanePositions {
    Lanes x, y, z;
};

inline Lanes allLanes(double value) {
    return _mm256_set1_pd(value);
}
inline Lanes multiplyAdd(Lanes a, Lanes b, Lanes c) {
    return _mm256_fmadd_pd(a, b, c);
}
inline Lanes multiplySubtract(Lanes a, Lanes b, Lanes c) {
    return _mm256_fmsub_pd(a, b, c);
}
inline Lanes sizeOf(Lanes a) {
    return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a);
}
/// Bit i: a < b in lane i; false for NaN.
inline unsigned whereLess(Lanes a, Lanes b) {
    return static_cast<unsigned>(_mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_LT_OQ)));
}
/// a where x < y and z < w and v < t, else NaN.
inline Lanes orNaN(Lanes a, Lanes x, Lanes y, Lanes z, Lanes w, Lanes v, Lanes t) {
    const Lanes holds = _mm256_and_pd(
        _mm256_and_pd(_mm256_cmp_pd(x, y, _CMP_LT_OQ), _mm256_cmp_pd(z, w, _CMP_LT_OQ)),
        _mm256_cmp_pd(v, t, _CMP_LT_OQ));
    return _mm256_blendv_pd(_mm256_set1_pd(std::numeric_limits<double>::quiet_NaN()), a, holds);
}

/// From four vertices or spheres to lanes of x, y, z.
inline LanePositions gather(const double* a, const double* b, const double* c, const double* d) {
    const Lanes rowA = _mm256_load_pd(a), rowB = _mm256_load_pd(b);
    const Lanes rowC = _mm256_load_pd(c), rowD = _mm256_load_pd(d);
    const Lanes xzAB = _mm256_unpacklo_pd(rowA, rowB), ywAB = _mm256_unpackhi_pd(rowA, rowB);
    const Lanes xzCD = _mm256_unpacklo_pd(rowC, rowD), ywCD = _mm256_unpackhi_pd(rowC, rowD);
    return {_mm256_permute2f128_pd(xzAB, xzCD, 0x20), _mm256_permute2f128_pd(ywAB, ywCD, 0x20),
            _mm256_permute2f128_pd(xzAB, xzCD, 0x31)};
}

/// A look at four tetrahedra from a point: squared distance to the centre, squared radius.
struct Look {
    Lanes squaredDistance, squaredRadius;
};

inline Look lookAt(const CompactTet* a, const CompactTet* b, const CompactTet* c,
                   const CompactTet* d, const LanePositions& p) {
    // A tetrahedron's first half line: the centre, and the radius and a corner as a fourth double.
    const Lanes rowA = _mm256_load_pd(a->centre), rowB = _mm256_load_pd(b->centre);
    const Lanes rowC = _mm256_load_pd(c->centre), rowD = _mm256_load_pd(d->centre);
    const Lanes xzAB = _mm256_unpacklo_pd(rowA, rowB), ywAB = _mm256_unpackhi_pd(rowA, rowB);
    const Lanes xzCD = _mm256_unpacklo_pd(rowC, rowD), ywCD = _mm256_unpackhi_pd(rowC, rowD);
    const Lanes dx = _mm256_permute2f128_pd(xzAB, xzCD, 0x20) - p.x;
    const Lanes dy = _mm256_permute2f128_pd(ywAB, ywCD, 0x20) - p.y;
    const Lanes dz = _mm256_permute2f128_pd(xzAB, xzCD, 0x31) - p.z;
    const __m256i tail = _mm256_castpd_si256(_mm256_permute2f128_pd(ywAB, ywCD, 0x31));
    const __m256i radii =
        _mm256_permutevar8x32_epi32(tail, _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6));
    return {multiplyAdd(dz, dz, multiplyAdd(dy, dy, dx * dx)),
            _mm256_cvtps_pd(_mm_castsi128_ps(_mm256_castsi256_si128(radii)))};
}

/// Which of four tetrahedra have this mark.
inline unsigned markedOf(const CompactTet* a, const CompactTet* b, const CompactTet* c,
                         const CompactTet* d, std::uint32_t mark) {
    const __m128i marks = _mm_setr_epi32(static_cast<int>(a->mark), static_cast<int>(b->mark),
                                         static_cast<int>(c->mark), static_cast<int>(d->mark));
    return static_cast<unsigned>(_mm_movemask_ps(
        _mm_castsi128_ps(_mm_cmpeq_epi32(marks, _mm_set1_epi32(static_cast<int>(mark))))));
}

/// The lane with the least value, NaN counting as infinite, and that value.
struct LeastLane {
    unsigned lane;
    double value;
};
inline LeastLane leastLane(Lanes values) {
    const Lanes v = _mm256_min_pd(values, _mm256_set1_pd(std::numeric_limits<double>::infinity()));
    const Lanes pairs = _mm256_min_pd(v, _mm256_permute2f128_pd(v, v, 1));
    const Lanes least = _mm256_min_pd(pairs, _mm256_permute_pd(pairs, 5));
    const auto equal =
        static_cast<unsigned>(_mm256_movemask_pd(_mm256_cmp_pd(v, least, _CMP_EQ_OQ)));
    return {lowestBit(equal), _mm256_cvtsd_f64(least)};
}

/// Lane by lane the least value so far and where it came from.
struct LeastSoFar {
    Lanes values;
    __m256i places;

    LeastSoFar()
        : values(_mm256_set1_pd(std::numeric_limits<double>::infinity())),
          places(_mm256_setzero_si256()) {}
    void take(Lanes candidates, std::uint32_t place) {
        const Lanes less = _mm256_cmp_pd(candidates, values, _CMP_LT_OQ);
        values = _mm256_blendv_pd(values, candidates, less);
        const __m256i here = _mm256_set1_epi64x(place);
        places = _mm256_castpd_si256(
            _mm256_blendv_pd(_mm256_castsi256_pd(places), _mm256_castsi256_pd(here), less));
    }
    /// The place of the least value of all: that of its group of four and its lane.
    std::uint32_t place() const {
        alignas(32) std::uint64_t all[4];
        _mm256_store_si256(reinterpret_cast<__m256i*>(all), places);
        const unsigned lane = leastLane(values).lane;
        return static_cast<std::uint32_t>(all[lane]) + lane;
    }
};

/// Writes centres, squared radii and corners 0.
inline void storeSpheres(CompactTet* tets, const Slot* slots, const LanePositions& centre,
                         Lanes squaredRadius, const VertexNumber (&corner0)[4]) {
    const __m128i radii = _mm_castps_si128(_mm256_cvtpd_ps(squaredRadius));
    const __m128i corners = _mm_loadu_si128(reinterpret_cast<const __m128i*>(corner0));
    const Lanes tail = _mm256_castsi256_pd(
        _mm256_setr_m128i(_mm_unpacklo_epi32(radii, corners), _mm_unpackhi_epi32(radii, corners)));
    const Lanes xy02 = _mm256_unpacklo_pd(centre.x, centre.y);
    const Lanes xy13 = _mm256_unpackhi_pd(centre.x, centre.y);
    const Lanes zt02 = _mm256_unpacklo_pd(centre.z, tail);
    const Lanes zt13 = _mm256_unpackhi_pd(centre.z, tail);
    _mm256_store_pd(tets[slots[0]].centre, _mm256_permute2f128_pd(xy02, zt02, 0x20));
    _mm256_store_pd(tets[slots[1]].centre, _mm256_permute2f128_pd(xy13, zt13, 0x20));
    _mm256_store_pd(tets[slots[2]].centre, _mm256_permute2f128_pd(xy02, zt02, 0x31));
    _mm256_store_pd(tets[slots[3]].centre, _mm256_permute2f128_pd(xy13, zt13, 0x31));
}

/// Byte shuffles that move the chosen ones of four 32-bit numbers to the front.
alignas(16) inline constexpr std::uint8_t TO_FRONT[16][16] = {
    {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {0, 1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {4, 5, 6, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {0, 1, 2, 3, 4, 5, 6, 7, 0, 0, 0, 0, 0, 0, 0, 0},
    {8, 9, 10, 11, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {0, 1, 2, 3, 8, 9, 10, 11, 0, 0, 0, 0, 0, 0, 0, 0},
    {4, 5, 6, 7, 8, 9, 10, 11, 0, 0, 0, 0, 0, 0, 0, 0},
    {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0, 0, 0, 0},
    {12, 13, 14, 15, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {0, 1, 2, 3, 12, 13, 14, 15, 0, 0, 0, 0, 0, 0, 0, 0},
    {4, 5, 6, 7, 12, 13, 14, 15, 0, 0, 0, 0, 0, 0, 0, 0},
    {0, 1, 2, 3, 4, 5, 6, 7, 12, 13, 14, 15, 0, 0, 0, 0},
    {8, 9, 10, 11, 12, 13, 14, 15, 0, 0, 0, 0, 0, 0, 0, 0},
    {0, 1, 2, 3, 8, 9, 10, 11, 12, 13, 14, 15, 0, 0, 0, 0},
    {4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0, 0, 0, 0},
    {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15},
};

/// Appends those of four numbers whose bits are set; writes four, of which the rest is to be
/// overwritten.
inline void appendChosen(__m128i numbers, unsigned chosen, std::uint32_t* end) {
    const __m128i order = _mm_load_si128(reinterpret_cast<const __m128i*>(TO_FRONT[chosen]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(end), _mm_shuffle_epi8(numbers, order));
}

/// The lists of a region's step: four facets' codes on their outer and inner sides.
struct FacetsOfTet {
    __m128i outer, inner;

    FacetsOfTet(const CompactTet& tet, Slot slot)
        : outer(_mm_load_si128(reinterpret_cast<const __m128i*>(tet.link))),
          inner(_mm_add_epi32(_mm_set1_epi32(static_cast<int>(4 * slot)),
                              _mm_setr_epi32(0, 1, 2, 3))) {}
    void appendNeighbours(unsigned chosen, Slot* end) const {
        appendChosen(_mm_srli_epi32(outer, 2), chosen, end);
    }
    void appendBoundary(unsigned chosen, FacetCode* outerEnd, FacetCode* innerEnd) const {
        appendChosen(outer, chosen, outerEnd);
        appendChosen(inner, chosen, innerEnd);
    }
};

/// Byte shuffles from a tetrahedron's corners to those of its facets, and zero.
alignas(16) inline constexpr std::uint8_t TO_FACET[4][16] = {
    {4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 128, 128, 128, 128},
    {0, 1, 2, 3, 12, 13, 14, 15, 8, 9, 10, 11, 128, 128, 128, 128},
    {0, 1, 2, 3, 4, 5, 6, 7, 12, 13, 14, 15, 128, 128, 128, 128},
    {0, 1, 2, 3, 8, 9, 10, 11, 4, 5, 6, 7, 128, 128, 128, 128},
};

/// Lists the corners of a tetrahedron's facet as the tetrahedron has them.
inline void listFacetCorners(const CompactTet& tet, unsigned facet, NewCorners& list) {
    const __m128i all = _mm_loadu_si128(reinterpret_cast<const __m128i*>(tet.vertex));
    const __m128i order = _mm_load_si128(reinterpret_cast<const __m128i*>(TO_FACET[facet]));
    _mm_store_si128(reinterpret_cast<__m128i*>(list.vertex), _mm_shuffle_epi8(all, order));
}

/// Gives a new tetrahedron its corners 1 to 3, and no mark.
inline void setCorners(CompactTet& tet, const NewCorners& corners) {
    static_assert(offsetof(CompactTet, mark) == offsetof(CompactTet, vertex) + 16,
                  "corners 1 to 3 and the mark are written at once");
    _mm_store_si128(reinterpret_cast<__m128i*>(tet.vertex + 1),
                    _mm_load_si128(reinterpret_cast<const __m128i*>(corners.vertex)));
}
