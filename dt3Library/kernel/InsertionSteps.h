// No include guard: compiled once for each kind of processor, inside a namespace that holds the
// lanes for it. See stepsPortable.h and stepsAvx2.h. The passes over an insertion's lists are kept
// from being inlined: in one function they would not all find registers.

/// How many tetrahedra of the region are visited in one step.
inline constexpr unsigned WIDTH = 4;

inline LanePositions positionOf(const double (&at)[3]) {
    return {allLanes(at[0]), allLanes(at[1]), allLanes(at[2])};
}

inline LanePositions gatherVertices(const CompactVertex* vertices, VertexNumber a, VertexNumber b,
                                    VertexNumber c, VertexNumber d) {
    return gather(vertices[a].at, vertices[b].at, vertices[c].at, vertices[d].at);
}

inline LanePositions operator-(const LanePositions& a, const LanePositions& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline Lanes squaredLength(const LanePositions& v) {
    return multiplyAdd(v.z, v.z, multiplyAdd(v.y, v.y, v.x * v.x));
}

inline LanePositions cross(const LanePositions& v, const LanePositions& w) {
    return {multiplySubtract(v.y, w.z, v.z * w.y), multiplySubtract(v.z, w.x, v.x * w.z),
            multiplySubtract(v.x, w.y, v.y * w.x)};
}

// ---- Walk --------------------------------------------------------------------------------------

inline Look lookAtNeighbours(const CompactTet* tets, const CompactTet& tet,
                             const LanePositions& p) {
    return lookAt(tets + slotOf(tet.link[0]), tets + slotOf(tet.link[1]),
                  tets + slotOf(tet.link[2]), tets + slotOf(tet.link[3]), p);
}

/// Walks to a tetrahedron in conflict with the vertex by comparing powers. The power of a point,
/// |p - c|^2 - r^2, falls across a facet exactly when the point lies beyond it, so a step to a
/// smaller power is a step of a visibility walk that reads no corner. The value of the present
/// tetrahedron is carried along and each next one must be less, so the walk cannot come back;
/// where rounding or a sphere that is not certified stops it, the exact walk takes over.
inline Slot walk(BatchState& state, VertexNumber vertex, Slot start) {
    constexpr unsigned MAX_STEPS = 1000;
    const CompactTet* const tets = state.mesh.tets();
    const LanePositions p = positionOf(state.mesh.vertices()[vertex].at);
    const Lanes inner = allLanes(1.0 - ProvedCertificate::ETA);
    Slot slot = start;
    const CompactTet* const first = tets + slot;
    const Look here = lookAt(first, first, first, first, p);
    if (whereLess(here.squaredDistance, here.squaredRadius * inner) != 0) return slot;
    double power = leastLane(here.squaredDistance - here.squaredRadius).value;
    for (unsigned step = 0; step < MAX_STEPS; ++step) {
        ++state.numSteps;
        const CompactTet& tet = tets[slot];
        const Look look = lookAtNeighbours(tets, tet, p);
        const unsigned inside = whereLess(look.squaredDistance, look.squaredRadius * inner);
        if (inside != 0) return slotOf(tet.link[lowestBit(inside)]);
        const LeastLane least = leastLane(look.squaredDistance - look.squaredRadius);
        if (!(least.value < power)) break;
        power = least.value;
        slot = slotOf(tet.link[least.lane]);
    }
    slot = state.exact.walk(slot, vertex, state.numSteps);
    engineCheck(state.exact.isInConflict(slot, vertex), checks::START_IN_CONFLICT);
    return slot;
}

// ---- Conflict region ---------------------------------------------------------------------------

/// The signs of four determinants that are certain: those beyond their bounds, and all signs, also
/// none, where no operation has rounded.
struct CertainSigns {
    unsigned negative;
    unsigned positive;
    unsigned zero;
};
inline CertainSigns certainSigns(Lanes determinant, Lanes bound, Lanes permanent, double lattice) {
    const Lanes none = allLanes(0.0);
    const unsigned bExact = whereLess(permanent, allLanes(lattice));
    const unsigned below = whereLess(determinant, none);
    const unsigned above = whereLess(none, determinant);
    return {whereLess(determinant, none - bound) | (bExact & below),
            whereLess(bound, determinant) | (bExact & above), bExact & ~(below | above)};
}

/// The determinants of the point and the hull facets of four ghosts, evaluated and bounded as the
/// predicates' filter does: positive where the point lies beyond the facet.
inline CertainSigns testHullFacets(const BatchState& state, const Slot* slots,
                                   const LanePositions& p) {
    const CompactTet* const tets = state.mesh.tets();
    NewCorners facet[4];
    for (unsigned i = 0; i < 4; ++i)
        listFacetCorners(tets[slots[i]], tets[slots[i]].cornerAtInfinity() & 3U, facet[i]);
    LanePositions row[3];
    for (unsigned k = 0; k < 3; ++k)
        row[k] = gatherVertices(state.mesh.vertices(), facet[0].vertex[k], facet[1].vertex[k],
                                facet[2].vertex[k], facet[3].vertex[k]) -
                 p;
    const auto& [a, b, c] = row;
    const Lanes bc = b.x * c.y, cb = c.x * b.y;
    const Lanes ca = c.x * a.y, ac = a.x * c.y;
    const Lanes ab = a.x * b.y, ba = b.x * a.y;
    const Lanes sizeA = sizeOf(a.z), sizeB = sizeOf(b.z), sizeC = sizeOf(c.z);
    const Lanes determinant = a.z * (bc - cb) + b.z * (ca - ac) + c.z * (ab - ba);
    const Lanes permanent = (sizeOf(bc) + sizeOf(cb)) * sizeA + (sizeOf(ca) + sizeOf(ac)) * sizeB +
                            (sizeOf(ab) + sizeOf(ba)) * sizeC;
    const Lanes bound =
        allLanes(predicateStages::ORIENTATION_FILTER_BOUND) * permanent +
        allLanes(predicateStages::UNDERFLOW) * (allLanes(1.0) + sizeA + sizeB + sizeC);
    return certainSigns(determinant, bound, permanent, state.orientationLattice);
}

/// The sphere determinants of four finite tetrahedra, evaluated and bounded as the predicates'
/// filter does: negative where the point lies inside.
inline CertainSigns testDeterminants(const BatchState& state, const Slot* slots,
                                     const LanePositions& p) {
    const CompactTet* const tets = state.mesh.tets();
    LanePositions row[4];
    Lanes lift[4];
    for (unsigned k = 0; k < 4; ++k) {
        row[k] = gatherVertices(state.mesh.vertices(), tets[slots[0]].vertex[k],
                                tets[slots[1]].vertex[k], tets[slots[2]].vertex[k],
                                tets[slots[3]].vertex[k]) -
                 p;
        lift[k] = (row[k].x * row[k].x + row[k].y * row[k].y) + row[k].z * row[k].z;
    }
    struct Minor {
        Lanes value, size;
    };
    const auto minor = [&row](unsigned i, unsigned k) {
        const Lanes ik = row[i].x * row[k].y;
        const Lanes ki = row[k].x * row[i].y;
        return Minor{ik - ki, sizeOf(ik) + sizeOf(ki)};
    };
    const Minor ab = minor(0, 1), bc = minor(1, 2), cd = minor(2, 3);
    const Minor da = minor(3, 0), ac = minor(0, 2), bd = minor(1, 3);
    const Lanes za = row[0].z, zb = row[1].z, zc = row[2].z, zd = row[3].z;
    const Lanes abc = (za * bc.value - zb * ac.value) + zc * ab.value;
    const Lanes bcd = (zb * cd.value - zc * bd.value) + zd * bc.value;
    const Lanes cda = (zc * da.value + zd * ac.value) + za * cd.value;
    const Lanes dab = (zd * ab.value + za * bd.value) + zb * da.value;
    const Lanes determinant = (lift[3] * abc - lift[2] * dab) + (lift[1] * cda - lift[0] * bcd);
    const Lanes sizeA = sizeOf(za), sizeB = sizeOf(zb), sizeC = sizeOf(zc), sizeD = sizeOf(zd);
    const Lanes permanent = ((cd.size * sizeB + bd.size * sizeC) + bc.size * sizeD) * lift[0] +
                            ((da.size * sizeC + ac.size * sizeD) + cd.size * sizeA) * lift[1] +
                            ((ab.size * sizeD + bd.size * sizeA) + da.size * sizeB) * lift[2] +
                            ((bc.size * sizeA + ac.size * sizeB) + ab.size * sizeC) * lift[3];
    const Lanes size = allLanes(1.0) + lift[0] + lift[1] + lift[2] + lift[3];
    const Lanes bound = allLanes(predicateStages::SPHERE_FILTER_BOUND) * permanent +
                        allLanes(predicateStages::UNDERFLOW) * (size * size);
    return certainSigns(determinant, bound, permanent, state.sphereLattice);
}

/// Looks that the cached spheres have left open.
struct OpenLooks {
    static constexpr unsigned MAX_LOOKS = 4 * WIDTH;

    /// The slot that decides, and which look it is. There is room for a last group of four.
    Slot slot[MAX_LOOKS + 3];
    unsigned look[MAX_LOOKS + 1];
    unsigned count = 0;

    /// Adds one or none.
    void add(Slot s, unsigned l, unsigned number = 1) {
        slot[count] = s;
        look[count] = l;
        count += number;
    }
    void fillLastGroup() {
        for (unsigned i = 0; i < 3; ++i) slot[count + i] = CompactMesh::DUMMY;
    }
};

/// Whether a finite tetrahedron's outcome is known already or given by its cached sphere. The
/// outcomes of an insertion are its vertex's number and, as the lowest bit, whether in conflict.
inline bool isDecided(const CompactTet* tets, std::uint32_t* outcomes, Slot slot,
                      const LanePositions& p, std::uint32_t unknown) {
    if ((outcomes[slot] ^ unknown) < 2) return true;
    const CompactTet* const tet = tets + slot;
    const Look look = lookAt(tet, tet, tet, tet, p);
    const bool bInside =
        whereLess(look.squaredDistance,
                  look.squaredRadius * allLanes(1.0 - ProvedCertificate::ETA)) != 0;
    const bool bOutside = whereLess(look.squaredRadius * allLanes(1.0 + ProvedCertificate::ETA),
                                    look.squaredDistance) != 0;
    if (bInside || bOutside) outcomes[slot] = unknown | (bInside ? 1U : 0U);
    return bInside || bOutside;
}

/// Decides the open looks at ghosts: strictly beyond the hull facet is in conflict; in its plane,
/// the finite neighbour's sphere decides, and the look goes on to that one.
inline unsigned decideGhosts(BatchState& state, VertexNumber vertex, const LanePositions& p,
                             OpenLooks& ghosts, OpenLooks& finite) {
    std::uint32_t* const outcomes = state.rememberedOutcomes();
    const CompactTet* const tets = state.mesh.tets();
    unsigned conflicts = 0;
    ghosts.fillLastGroup();
    for (unsigned first = 0; first < ghosts.count; first += 4) {
        const CertainSigns signs = testHullFacets(state, ghosts.slot + first, p);
        for (unsigned i = 0; i < 4 && first + i < ghosts.count; ++i) {
            const Slot slot = ghosts.slot[first + i];
            const unsigned look = ghosts.look[first + i];
            unsigned bBeyond = signs.positive >> i & 1U;
            unsigned bCoplanar = signs.zero >> i & 1U;
            if (((signs.positive | signs.negative | signs.zero) >> i & 1U) == 0) {
                const Orientation3 side = state.exact.sideOfHullFacet(slot, vertex);
                bBeyond = side == ORIENTATION3_POSITIVE ? 1 : 0;
                bCoplanar = side == ORIENTATION3_COPLANAR ? 1 : 0;
            }
            conflicts |= bBeyond << look;
            if (bCoplanar == 0) continue;
            const Slot inside = slotOf(tets[slot].link[tets[slot].cornerAtInfinity()]);
            if (isDecided(tets, outcomes, inside, p, 2 * vertex))
                conflicts |= (outcomes[inside] & 1U) << look;
            else
                finite.add(inside, look);
        }
    }
    return conflicts;
}

/// Decides the open looks at finite tetrahedra, by determinants of four at once as far as these
/// can tell. Two looks may be at the same tetrahedron.
inline unsigned decideFinite(BatchState& state, VertexNumber vertex, const LanePositions& p,
                             OpenLooks& finite) {
    std::uint32_t* const outcomes = state.rememberedOutcomes();
    const std::uint32_t unknown = 2 * vertex;
    unsigned conflicts = 0;
    finite.fillLastGroup();
    for (unsigned first = 0; first < finite.count; first += 4) {
        const CertainSigns signs = testDeterminants(state, finite.slot + first, p);
        for (unsigned i = 0; i < 4 && first + i < finite.count; ++i) {
            const Slot slot = finite.slot[first + i];
            if (((signs.negative | signs.positive | signs.zero) >> i & 1U) != 0)
                outcomes[slot] = unknown | (signs.negative >> i & 1U);
            else if ((outcomes[slot] ^ unknown) >= 2)
                outcomes[slot] = unknown | (state.exact.isInSphere(slot, vertex) ? 1U : 0U);
            conflicts |= (outcomes[slot] & 1U) << finite.look[first + i];
        }
    }
    return conflicts;
}

/// Decides the looks at a step's neighbours that the cached spheres left open: by what was found in
/// this insertion already, then by determinants of four tetrahedra at once, the rest exactly.
/// Returns the bits of those in conflict.
[[gnu::noinline]] inline unsigned decideOpenLooks(BatchState& state, VertexNumber vertex,
                                                  const LanePositions& p, const Slot* present,
                                                  unsigned open) {
    std::uint32_t* const outcomes = state.rememberedOutcomes();
    const CompactTet* const tets = state.mesh.tets();
    const std::uint32_t unknown = 2 * vertex;
    const auto slotLookedAt = [tets, present](unsigned look) {
        return slotOf(tets[present[look / 4]].link[look % 4]);
    };
    OpenLooks ghosts;
    OpenLooks finite;
    unsigned conflicts = 0;
    unsigned looksAtGhosts = 0;
    VARN3D_COUNT(openLooks, bitCount(open));
    // Which of the three it is can't be predicted either.
    for (; open != 0; open &= open - 1) {
        const unsigned look = lowestBit(open);
        const Slot slot = slotLookedAt(look);
        const std::uint32_t outcome = outcomes[slot] ^ unknown;
        const unsigned bUnknown = outcome < 2 ? 0 : 1;
        const unsigned bGhost = tets[slot].cornerAtInfinity() < 4 ? 1 : 0;
        conflicts |= (outcome & 1U & ~bUnknown) << look;
        ghosts.add(slot, look, bUnknown & bGhost);
        finite.add(slot, look, bUnknown & ~bGhost);
        looksAtGhosts |= (bUnknown & bGhost) << look;
    }
    conflicts |= decideGhosts(state, vertex, p, ghosts, finite);
    conflicts |= decideFinite(state, vertex, p, finite);
    for (unsigned rest = looksAtGhosts; rest != 0; rest &= rest - 1) {
        const unsigned look = lowestBit(rest);
        const Slot slot = slotLookedAt(look);
        if ((outcomes[slot] ^ unknown) < 2) continue;
        outcomes[slot] = unknown | (conflicts >> look & 1U);
        state.numGhosts -= conflicts >> look & 1U;
    }
    return conflicts;
}

/// What a step's looks at neighbours say, a bit each: certainly in conflict, certainly not, met
/// before in this insertion.
struct Looks {
    unsigned inside;
    unsigned outside;
    unsigned seen;
};

/// Looks at the neighbours of a step's tetrahedra, and leaves the insertion's mark on all of them,
/// whatever they turn out to be.
inline Looks lookAround(CompactTet* tets, const Slot (&present)[WIDTH], const LanePositions& p,
                        VertexNumber vertex) {
    const Lanes innerFactor = allLanes(1.0 - ProvedCertificate::ETA);
    const Lanes outerFactor = allLanes(1.0 + ProvedCertificate::ETA);
    Looks looks{0, 0, 0};
    for (unsigned i = 0; i < WIDTH; ++i) {
        const CompactTet& tet = tets[present[i]];
        CompactTet* const neighbours[4] = {tets + slotOf(tet.link[0]), tets + slotOf(tet.link[1]),
                                           tets + slotOf(tet.link[2]), tets + slotOf(tet.link[3])};
        const auto& [a, b, c, d] = neighbours;
        const Look look = lookAt(a, b, c, d, p);
        looks.inside |= whereLess(look.squaredDistance, look.squaredRadius * innerFactor) << 4 * i;
        looks.outside |= whereLess(look.squaredRadius * outerFactor, look.squaredDistance) << 4 * i;
        looks.seen |= markedOf(a, b, c, d, vertex) << 4 * i;
        for (CompactTet* const neighbour : neighbours) neighbour->mark = vertex;
    }
    return looks;
}

struct RegionSize {
    std::uint32_t numDoomed;
    std::uint32_t numFacets;
};

/// Gathers the conflict region and its boundary, breadth first and several tetrahedra a step. No
/// branch depends on an outcome, for none can be predicted: candidates are always written, and the
/// ends of the lists advance by the outcomes. The mark only keeps a tetrahedron from being listed
/// twice.
[[gnu::noinline]] inline RegionSize growRegion(BatchState& state, VertexNumber vertex, Slot start) {
    const LanePositions p = positionOf(state.mesh.vertices()[vertex].at);
    CompactTet* const tets = state.mesh.tets();
    std::uint32_t numDoomed = 1;
    std::uint32_t numFacets = 0;
    tets[start].mark = vertex;
    if (tets[start].cornerAtInfinity() < 4) {
        --state.numGhosts;
        state.rememberedOutcomes()[start] = 2 * vertex + 1;
    }
    Slot* region = state.region.data();
    FacetCode* outer = state.outer.data();
    FacetCode* inner = state.inner.data();
    for (unsigned i = 0; i < WIDTH; ++i) region[i] = i == 0 ? start : CompactMesh::DUMMY;
    std::uint32_t numPresent;
    for (std::uint32_t next = 0; next < numDoomed; next += numPresent) {
        numPresent = numDoomed - next < WIDTH ? numDoomed - next : WIDTH;
        if (numDoomed + 6 * WIDTH > state.region.size() ||
            numFacets + 5 * WIDTH > state.outer.size()) {
            state.growRegionLists(numDoomed + 6 * WIDTH, numFacets + 5 * WIDTH);
            region = state.region.data();
            outer = state.outer.data();
            inner = state.inner.data();
        }
        const Slot present[WIDTH] = {region[next], region[next + 1], region[next + 2],
                                     region[next + 3]};
        auto [inside, outside, seen] = lookAround(tets, present, p, vertex);
        const unsigned valid = (1U << 4 * numPresent) - 1U;
        inside &= valid;
        outside &= valid;
        if ((inside | outside) != valid) {
            const unsigned open = valid & ~(inside | outside);
            inside |= decideOpenLooks(state, vertex, p, region + next, open);
            outside = valid & ~inside;
        }
        const unsigned found = inside & ~seen;
        for (unsigned i = 0; i < WIDTH; ++i) {
            const FacetsOfTet facets(tets[present[i]], present[i]);
            const unsigned newHere = found >> 4 * i & 15U;
            const unsigned boundaryHere = outside >> 4 * i & 15U;
            facets.appendNeighbours(newHere, region + numDoomed);
            facets.appendBoundary(boundaryHere, outer + numFacets, inner + numFacets);
            numDoomed += bitCount(newHere);
            numFacets += bitCount(boundaryHere);
        }
        for (unsigned i = 0; i < WIDTH; ++i) region[numDoomed + i] = CompactMesh::DUMMY;
    }
    VARN3D_COUNT(doomed, numDoomed);
    return {numDoomed, numFacets};
}

// ---- Creation ----------------------------------------------------------------------------------

/// The circumspheres through four points each, with what certifies them; see CertifiedSphere.h.
struct LaneSpheres {
    LanePositions centre;
    Lanes squaredRadius;
};
inline LaneSpheres makeLaneSpheres(const LanePositions& p, const LanePositions& a,
                                   const LanePositions& b, const LanePositions& c, Lanes reach) {
    const LanePositions u = a - p, v = b - p, w = c - p;
    const Lanes uu = squaredLength(u), vv = squaredLength(v), ww = squaredLength(w);
    const LanePositions vw = cross(v, w), wu = cross(w, u), uv = cross(u, v);
    const Lanes det = multiplyAdd(u.z, vw.z, multiplyAdd(u.y, vw.y, u.x * vw.x));
    const Lanes half = allLanes(0.5) / det;
    const auto combine = [&](Lanes x, Lanes y, Lanes z) {
        return half * multiplyAdd(ww, z, multiplyAdd(vv, y, uu * x));
    };
    const LanePositions toCentre = {combine(vw.x, wu.x, uv.x), combine(vw.y, wu.y, uv.y),
                                    combine(vw.z, wu.z, uv.z)};
    const Lanes squaredRadius = squaredLength(toCentre);
    const Lanes leastDet = multiplyAdd(allLanes(ProvedCertificate::DETERMINANT), uu * vv * ww,
                                       allLanes(ProvedCertificate::LEAST_DETERMINANT));
    const Lanes leastRadius = allLanes(ProvedCertificate::RADIUS) * (reach * reach);
    return {{p.x + toCentre.x, p.y + toCentre.y, p.z + toCentre.z},
            orNaN(squaredRadius, leastDet, det * det, leastRadius, squaredRadius, squaredRadius,
                  allLanes(0x1p127))};
}

/// How far from the origin the certificate has to reckon with, for rows that start at this point.
inline double reachOf(const BatchState& state, const CompactVertex& vertex) {
    if (!state.bCertified) return std::numeric_limits<double>::infinity();
    const double largest = std::fmax(std::fmax(std::fabs(vertex.at[0]), std::fabs(vertex.at[1])),
                                     std::fabs(vertex.at[2]));
    return std::fmax(largest, ProvedCertificate::LEAST_REACH);
}

/// Lists the corners of the tetrahedra to be made, and for each vertex where it is listed first.
/// Returns whether any of them are ghosts.
///
/// The vertices are written from the last to the first and read only afterwards: to ask at each
/// corner whether its vertex has come before would be to wait, again and again, for a value that
/// has just been written.
[[gnu::noinline]] inline bool listCorners(BatchState& state, std::uint32_t numFacets) {
    constexpr std::uint32_t NOWHERE = 0xFFFFFFFFU;
    const CompactTet* const tets = state.mesh.tets();
    CompactVertex* const vertices = state.mesh.vertices();
    const FacetCode* const inner = state.inner.data();
    NewCorners* const corners = state.corners.data();
    vertices[AT_INFINITY].firstListed = NOWHERE;
    for (std::uint32_t i = numFacets; i-- > 0;) {
        listFacetCorners(tets[slotOf(inner[i])], facetOf(inner[i]), corners[i]);
        for (unsigned k = 0; k < 3; ++k) vertices[corners[i].vertex[k]].firstListed = 3 * i + k;
    }
    return vertices[AT_INFINITY].firstListed != NOWHERE;
}

/// Numbers the cavity's vertices in the order in which they are listed, and enters the edges of its
/// boundary.
[[gnu::noinline]] inline void numberCorners(BatchState& state, std::uint32_t numFacets) {
    const CompactVertex* const vertices = state.mesh.vertices();
    const Slot* const slots = state.region.data();
    const NewCorners* const corners = state.corners.data();
    CavityFacet* const facets = state.facets.data();
    std::uint32_t* const numbers = state.numbers.data();
    // A closed surface of triangles has half as many vertices as triangles, and two.
    const std::uint32_t numExpected = numFacets / 2 + 2;
    EdgeTable::Square edges = state.edges.square(numExpected);
    std::uint32_t numVertices = 0;
    for (std::uint32_t i = 0; i < numFacets; ++i) {
        CavityFacet facet;
        for (unsigned k = 0; k < 3; ++k) {
            const std::uint32_t first = vertices[corners[i].vertex[k]].firstListed;
            numbers[3 * i + k] = numVertices;
            numVertices += first == 3 * i + k ? 1U : 0U;
            facet.number[k] = numbers[first];
        }
        facets[i] = facet;
        if (edges.fits()) edges.enter(facet, slots[i]);
    }
    if (numVertices != numExpected) state.failOpenCavity(1);
}

inline std::uint32_t countGhosts(const BatchState& state, std::uint32_t numFacets) {
    std::uint32_t numGhosts = 0;
    for (std::uint32_t i = 0; i < numFacets; ++i)
        for (const VertexNumber corner : state.corners[i].vertex)
            numGhosts += corner == AT_INFINITY ? 1U : 0U;
    return numGhosts;
}

/// Makes the spheres of the new tetrahedra, four at a time. Returns which of them has the least
/// power to the next vertex to come: where its walk starts.
[[gnu::noinline]] inline std::uint32_t makeNewSpheres(BatchState& state, VertexNumber vertex,
                                                      std::uint32_t numFacets) {
    CompactTet* const tets = state.mesh.tets();
    const CompactVertex* const vertices = state.mesh.vertices();
    const NewCorners* const corners = state.corners.data();
    const LanePositions p = positionOf(vertices[vertex].at);
    const LanePositions next = positionOf(vertices[vertex + 1].at);
    const Lanes reach = allLanes(reachOf(state, vertices[vertex]));
    const VertexNumber corner0[4] = {vertex, vertex, vertex, vertex};
    LeastSoFar nearest;
    for (std::uint32_t i = 0; i < numFacets; i += 4) {
        const auto cornersAt = [&](unsigned k) {
            return gatherVertices(vertices, corners[i].vertex[k], corners[i + 1].vertex[k],
                                  corners[i + 2].vertex[k], corners[i + 3].vertex[k]);
        };
        const LaneSpheres spheres =
            makeLaneSpheres(p, cornersAt(0), cornersAt(1), cornersAt(2), reach);
        nearest.take(squaredLength(spheres.centre - next) - spheres.squaredRadius, i);
        storeSpheres(tets, state.region.data() + i, spheres.centre, spheres.squaredRadius, corner0);
    }
    const std::uint32_t place = nearest.place();
    return place < numFacets ? place : 0;
}

/// Gives the new tetrahedra their corners and links.
[[gnu::noinline]] inline void linkTets(BatchState& state, std::uint32_t numFacets) {
    CompactTet* const tets = state.mesh.tets();
    const CavityFacet* const facets = state.facets.data();
    const NewCorners* const corners = state.corners.data();
    const FacetCode* const outer = state.outer.data();
    const Slot* const slots = state.region.data();
    const EdgeTable::Square edges = state.edges.square(numFacets / 2 + 2);
    for (std::uint32_t i = 0; i < numFacets; ++i) {
        CompactTet& tet = tets[slots[i]];
        setCorners(tet, corners[i]);
        tet.link[0] = outer[i];
        if (edges.fits()) edges.link(facets[i], tet);
        tets[slotOf(outer[i])].link[facetOf(outer[i])] = facetCode(slots[i], 0);
    }
    if (!edges.fits())
        state.failOpenCavity(state.edges.linkByHashing(state.facets, numFacets, slots, tets));
}

/// Replaces the region by tetrahedra from its boundary to the vertex. Returns where to start for
/// the next vertex.
inline Slot fillRegion(BatchState& state, VertexNumber vertex, const RegionSize& size) {
    const std::uint32_t numFacets = size.numFacets;
    if (numFacets > size.numDoomed) state.mesh.reserve(numFacets - size.numDoomed);
    state.growRegionLists(numFacets + 4, numFacets + 4);
    Slot* const slots = state.region.data();
    for (std::uint32_t i = size.numDoomed; i < numFacets; ++i) slots[i] = state.mesh.take();
    const bool bAtHull = listCorners(state, numFacets);
    const std::uint32_t numGhosts = bAtHull ? countGhosts(state, numFacets) : 0;
    for (std::uint32_t i = numFacets; i < size.numDoomed; ++i) state.mesh.release(slots[i]);
    numberCorners(state, numFacets);
    // The last lanes may be no tetrahedra.
    for (std::uint32_t i = numFacets; i < numFacets + 3; ++i) {
        slots[i] = CompactMesh::DUMMY;
        state.corners[i] = {};
    }
    const std::uint32_t nearest = makeNewSpheres(state, vertex, numFacets);
    state.mesh.resetDummy();
    linkTets(state, numFacets);
    if (!state.incident.empty()) {
        const CompactTet* const tets = state.mesh.tets();
        for (std::uint32_t i = 0; i < numFacets; ++i)
            for (const VertexNumber corner : tets[slots[i]].vertex)
                state.incident[corner] = slots[i];
    }
    state.mesh.vertices()[vertex].firstLabel = state.numMade;
    state.numMade += numFacets - numGhosts;
    state.numGhosts += numGhosts;
    return slots[nearest];
}

inline Slot insertVertex(BatchState& state, VertexNumber vertex, Slot start) {
    const Slot inConflict = walk(state, vertex, start);
    return fillRegion(state, vertex, growRegion(state, vertex, inConflict));
}

inline void makeSpheres(BatchState& state, Slot first, std::size_t count) {
    CompactTet* const tets = state.mesh.tets();
    const CompactVertex* const vertices = state.mesh.vertices();
    for (std::size_t done = 0; done < count; done += 4) {
        Slot slots[4];
        VertexNumber corner0[4];
        double reach = 0.0;
        for (unsigned i = 0; i < 4; ++i) {
            slots[i] = done + i < count ? first + static_cast<Slot>(done) + i : CompactMesh::DUMMY;
            corner0[i] = tets[slots[i]].vertex[0];
            reach = std::fmax(reach, reachOf(state, vertices[corner0[i]]));
        }
        const auto cornersAt = [&](unsigned k) {
            return gatherVertices(vertices, tets[slots[0]].vertex[k], tets[slots[1]].vertex[k],
                                  tets[slots[2]].vertex[k], tets[slots[3]].vertex[k]);
        };
        const LaneSpheres spheres = makeLaneSpheres(cornersAt(0), cornersAt(1), cornersAt(2),
                                                    cornersAt(3), allLanes(reach));
        storeSpheres(tets, slots, spheres.centre, spheres.squaredRadius, corner0);
    }
    state.mesh.resetDummy();
}
