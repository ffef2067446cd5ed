#include "PlainEngine.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "dt3Library/MeshAccess.h"

namespace support {

using namespace VARN3D;

namespace {

// Rows are octants, columns states; a and b stand for 10 and 11.
const char* const DIGITS[8] = {"000246462246", "173335775151", "317151353577", "264022044660",
                               "731577511335", "642404606022", "426660220404", "555713137713"};
const char* const NEXT_STATES[8] = {"1206b456a47a", "2690b4713423", "30a6085618b2", "279b783a1826",
                                    "48195019a27a", "581096143753", "30b90ab95284", "57b876ba9354"};

/// The corners of a facet that follow the new vertex, seen from inside and from outside.
const int INNER[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
const int OUTER[4][3] = {{1, 3, 2}, {0, 2, 3}, {0, 3, 1}, {0, 1, 2}};

void require(bool bCondition, const char* what) {
    if (!bCondition) throw std::logic_error(what);
}

bool bFirstEnlargement = true;

}  // namespace

std::uint32_t plainHilbertKey(const Point3& p, const Coordinates& min, const Coordinates& max) {
    Coordinates half = {(max[0] - min[0]) / 2, (max[1] - min[1]) / 2, (max[2] - min[2]) / 2};
    Coordinates d = {p.x() - min[0], p.y() - min[1], p.z() - min[2]};
    std::size_t state = 0;
    std::uint32_t key = 0;
    for (int shift = 24; shift >= 0; shift -= 3) {
        std::size_t octant = 0;
        const double threshold = half[0];  // of x, for all three axes
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const bool bUpper = d[axis] >= threshold;
            octant = 2 * octant + (bUpper ? 1 : 0);
            if (bUpper) d[axis] -= half[axis];
            half[axis] /= 2;
        }
        key += static_cast<std::uint32_t>(DIGITS[octant][state] - '0') << shift;
        const char next = NEXT_STATES[octant][state];
        state = static_cast<std::size_t>(next >= 'a' ? next - 'a' + 10 : next - '0');
    }
    return key;
}

std::vector<int> firstSimplex(const std::vector<const Point3*>& points) {
    const GeomTest3 predicates;
    const std::size_t n = points.size();
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = i + 1; j < n; ++j)
            for (std::size_t k = j + 1; k < n; ++k)
                for (std::size_t l = k + 1; l < n; ++l)
                    if (predicates.getOrientation3(points[i], points[j], points[k], points[l]) !=
                        ORIENTATION3_COPLANAR)
                        return {static_cast<int>(i), static_cast<int>(j), static_cast<int>(k),
                                static_cast<int>(l)};
    return {};
}

// ---- Vertex store ------------------------------------------------------------------------------

bool PlainEngine::growBox(const Point3& p) {
    const Coordinates c = {p.x(), p.y(), p.z()};
    if (!bBoxValid) {
        min = max = c;
        return bBoxValid = true;
    }
    bool bChanged = false;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        bChanged |= c[axis] < min[axis] || c[axis] > max[axis];
        min[axis] = std::min(min[axis], c[axis]);
        max[axis] = std::max(max[axis], c[axis]);
    }
    return bChanged;
}

void PlainEngine::enlargeBox(double factor) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double d = (max[axis] - min[axis]) * factor * 0.5;
        min[axis] -= d;
        max[axis] += d;
    }
    cells.clear();
    for (std::size_t i = 0; i < points.size(); ++i)
        cells.emplace(keyOf(points[i]), static_cast<int>(i));
}

std::uint32_t PlainEngine::keyOf(const Point3& p) const {
    return plainHilbertKey(p, min, max);
}

/// Returns the vertex, and whether it is new.
std::pair<int, bool> PlainEngine::store(const Point3& p) {
    const int next = static_cast<int>(points.size());
    const auto [place, bNew] = vertexAt.emplace(coordinatesOf(p), next);
    if (bNew) {
        points.emplace_back(p.x(), p.y(), p.z());
        oneTet.push_back(NONE);
        cells.emplace(keyOf(p), next);
    }
    return {place->second, bNew};
}

int PlainEngine::findStart(std::pair<std::uint32_t, int> entry) const {
    const auto begin = cells.lower_bound(entry);
    for (auto place = begin; place != cells.end(); ++place)
        if (!isPending(place->second)) return at(oneTet, place->second);
    for (auto place = begin; place != cells.begin();)
        if (!isPending((--place)->second)) return at(oneTet, place->second);
    return NONE;
}

std::vector<int> PlainEngine::listVertices() const {
    std::vector<int> result;
    for (const auto& cell : cells) result.push_back(cell.second);
    return result;
}

// ---- Insertion driver --------------------------------------------------------------------------

std::vector<int> PlainEngine::insert(const std::vector<Point3>& input) {
    if (input.empty()) return {};
    bool bGrown = false;
    for (const Point3& p : input) bGrown |= growBox(p);
    if (bGrown) enlargeBox(std::exchange(bFirstEnlargement, false) ? 0.1 : 1.0);
    std::vector<std::pair<std::uint32_t, std::size_t>> order;
    for (std::size_t i = 0; i < input.size(); ++i) order.emplace_back(keyOf(input[i]), i);
    std::sort(order.begin(), order.end());
    std::vector<int> handles(input.size());
    std::vector<int> newVertices;
    for (const auto& [key, i] : order) {
        const auto [vertex, bNew] = store(input[i]);
        handles[i] = vertex;
        if (bNew) newVertices.push_back(vertex);
    }
    if (is3D()) {
        if (newVertices.empty()) return handles;
        triangulate(newVertices, findStart({keyOf(at(points, newVertices.front())), NONE}));
        return handles;
    }
    const int first = startUp();
    if (first != NONE)
        triangulate(newVertices.size() != input.size() || points.size() != input.size()
                        ? listVertices()
                        : newVertices,
                    first);
    return handles;
}

int PlainEngine::insert(const Point3& point) {
    if (growBox(point)) enlargeBox(1.0);
    const int vertex = store(point).first;
    if (is3D())
        insertVertex(vertex,
                     isPending(vertex) ? findStart({keyOf(point), vertex}) : at(oneTet, vertex));
    else
        startUp();  // all other vertices stay pending
    return vertex;
}

int PlainEngine::startUp() {
    const std::vector<int> list = listVertices();
    std::vector<const Point3*> listed;
    for (const int vertex : list) listed.push_back(&at(points, vertex));
    const std::vector<int> simplex = firstSimplex(listed);
    if (simplex.empty()) return NONE;
    int a = at(list, simplex[0]);
    int b = at(list, simplex[1]);
    const int c = at(list, simplex[2]);
    const int d = at(list, simplex[3]);
    if (predicates.getOrientation3(&at(points, a), &at(points, b), &at(points, c),
                                   &at(points, d)) == ORIENTATION3_NEGATIVE)
        std::swap(a, b);
    return createTet(a, b, c, d);
}

void PlainEngine::distribute(const std::vector<int>& list, std::size_t lo, std::size_t hi,
                             std::size_t level, std::vector<std::vector<int>>& buckets) {
    while (hi - lo >= 2 && level < buckets.size() - 1) {
        const std::size_t mid = lo + (hi - lo) / 2;
        buckets[level++].push_back(list[mid]);
        distribute(list, lo, mid, level, buckets);
        lo = mid + 1;
    }
    for (; lo < hi; ++lo) buckets[level].push_back(list[lo]);
}

void PlainEngine::triangulate(const std::vector<int>& list, int start) {
    const double n = static_cast<double>(list.size());
    const int lastLevel = static_cast<int>(std::ceil(std::log(n) / std::log(2.0))) - 4;
    std::vector<std::vector<int>> buckets(static_cast<std::size_t>(std::max(lastLevel, 0) + 1));
    distribute(list, 0, list.size(), 0, buckets);
    for (std::size_t level = 0; level < buckets.size(); ++level) {
        if (level % 2 == 0) std::reverse(buckets[level].begin(), buckets[level].end());
        for (const int vertex : buckets[level]) start = insertVertex(vertex, start);
    }
}

int PlainEngine::insertVertex(int p, int start) {
    require(unglued.empty() && !isDoomed(start), "clean start");
    const Location location = locate(p, start);
    if (location.result == -2) return location.tet;
    if (location.result >= 0) return insertOutside(p, location.tet, location.result);
    return insertInside(p, location.tet);
}

int PlainEngine::insertInside(int p, int start) {
    int last = NONE;
    std::vector<int> doomed = {start};
    doom(start);
    for (std::size_t k = 0; k < doomed.size(); ++k) {
        const int current = doomed[k];
        for (int i = 3; i >= 0; --i) {
            const int outer = neighbour(current, i);
            if (outer != NONE && isDoomed(outer)) continue;
            if (outer != NONE && isInConflict(outer, p)) {
                doom(outer);
                doomed.push_back(outer);
                continue;
            }
            last = createOn(INNER[i], p, current, outer);
        }
    }
    require(unglued.empty(), "all facets glued");
    return last;
}

int PlainEngine::insertOutside(int p, int hullTet, int facet) {
    std::vector<int> staying;
    std::vector<int> doomed;
    for (const int seed : visibleHullTets(p, hullTet, facet)) {
        const bool bConflict = isInConflict(seed, p);
        (bConflict ? doomed : staying).push_back(seed);
        if (bConflict) doom(seed);
    }
    for (std::size_t k = 0; k < doomed.size(); ++k) {
        for (int i = 3; i >= 0; --i) {
            const int next = neighbour(doomed[k], i);
            if (next == NONE || isDoomed(next) || !isInConflict(next, p)) continue;
            doom(next);
            doomed.push_back(next);
        }
    }
    int last = NONE;
    for (const int t : doomed)
        for (int i = 3; i >= 0; --i) {
            const int outer = neighbour(t, i);
            if (side(t, i, p) != ORIENTATION3_POSITIVE) continue;
            if (outer != NONE && isDoomed(outer)) continue;
            last = createOn(INNER[i], p, t, outer);
        }
    for (const int t : staying)
        for (int i = 0; i < 4; ++i) {
            if (neighbour(t, i) != NONE || side(t, i, p) != ORIENTATION3_NEGATIVE) continue;
            last = createOn(OUTER[i], p, t, NONE);
            link({last, 0}, {t, i});
        }
    unglued.clear();  // the new hull
    return last;
}

// ---- Location ----------------------------------------------------------------------------------

PlainEngine::Location PlainEngine::locate(int p, int start) const {
    Location location = {NONE, start};
    int facet = 0;
    int budget = 4;
    for (int step = 0; step < 10000; ++step) {
        const int current = location.tet;
        const Orientation3 o = side(current, facet, p);
        if (o == ORIENTATION3_NEGATIVE) {
            const int next = neighbour(current, facet);
            if (next == NONE) return {facet, current};
            location.tet = next;
            facet = (indexOf(next, current) + 1) % 4;
            budget = 3;
            continue;
        }
        if (o == ORIENTATION3_COPLANAR && analyse(p, current, facet, location)) return location;
        facet = (facet + 1) % 4;
        if (--budget == 0) return {-1, current};
    }
    throw std::logic_error("a walk without end");
}

/// p lies in the plane of a facet. Returns whether it lies in the tetrahedron.
bool PlainEngine::analyse(int p, int tet, int facet, Location& location) const {
    for (int i = 0; i < 4; ++i)
        if (at(points, corner(tet, i)) == at(points, p)) {
            location.result = -2;
            return true;
        }
    int positives = 0;
    int hullFacet = NONE;
    int second = NONE;
    for (int k = 0; k < 4; ++k) {
        const Orientation3 o = side(tet, k, p);
        if (o == ORIENTATION3_NEGATIVE) return false;
        if (o == ORIENTATION3_POSITIVE) ++positives;
        if (o != ORIENTATION3_COPLANAR) continue;
        if (neighbour(tet, k) == NONE) hullFacet = k;
        if (k != facet) second = k;
    }
    location.result = hullFacet;
    if (positives == 3) return true;
    require(positives == 2, "a point on an edge");
    // Around the edge, until a hull facet or the start comes.
    int ends[2];
    int numEnds = 0;
    for (int i = 0; i < 4; ++i)
        if (i != facet && i != second) ends[numEnds++] = corner(tet, i);
    int opp3 = facet;
    int opp2 = second;
    for (;;) {
        const int next = neighbour(location.tet, opp2);
        if (next == NONE) {
            location.result = opp2;
            return true;
        }
        opp3 = indexOf(next, location.tet);
        location.tet = next;
        for (opp2 = 0;
             opp2 == opp3 || corner(next, opp2) == ends[0] || corner(next, opp2) == ends[1];)
            ++opp2;
        if (next == tet) {
            location.result = -1;
            return true;
        }
    }
}

std::vector<int> PlainEngine::visibleHullTets(int p, int hullTet, int hullFacet) const {
    struct Edge {
        int tet, opp3, opp2;
    };
    std::vector<int> visible;
    std::vector<Edge> stack;
    std::set<std::pair<int, int>> seen;
    const auto add = [&](int tet, int opp3, bool bAlways) {
        for (int k = 0; k < 4; ++k) {
            if (k == opp3) continue;
            std::vector<int> ends;
            for (int i = 0; i < 4; ++i)
                if (i != k && i != opp3) ends.push_back(corner(tet, i));
            if (seen.insert(std::minmax(ends[0], ends[1])).second || bAlways)
                stack.push_back({tet, opp3, k});
        }
        if (std::find(visible.begin(), visible.end(), tet) == visible.end()) visible.push_back(tet);
    };
    add(hullTet, hullFacet, true);
    while (!stack.empty()) {
        Edge edge = stack.back();
        stack.pop_back();
        for (int next; (next = neighbour(edge.tet, edge.opp2)) != NONE;) {
            // The corner that was opposite the edge's old facet is on the facet just crossed.
            const int crossed = corner(edge.tet, edge.opp3);
            edge = {next, indexOf(next, edge.tet), 0};
            while (corner(next, edge.opp2) != crossed) ++edge.opp2;
        }
        if (side(edge.tet, edge.opp2, p) == ORIENTATION3_NEGATIVE) add(edge.tet, edge.opp2, false);
    }
    return visible;
}

// ---- Tetrahedra --------------------------------------------------------------------------------

int PlainEngine::indexOf(int tet, int ofNeighbour) const {
    for (int i = 0; i < 4; ++i)
        if (neighbour(tet, i) == ofNeighbour) return i;
    throw std::logic_error("not a neighbour");
}

Orientation3 PlainEngine::side(int tet, int facet, int p) const {
    const int* order = OUTER[facet];
    return predicates.getOrientation3(&at(points, corner(tet, order[0])),
                                      &at(points, corner(tet, order[1])),
                                      &at(points, corner(tet, order[2])), &at(points, p));
}

bool PlainEngine::isInConflict(int tet, int p) {
    for (int i = 0; i < 4; ++i)
        MeshAccess::corner(&scratch, i) = &points[static_cast<std::size_t>(corner(tet, i))];
    return predicates.sphereInclusionTest(&scratch, &at(points, p)) != SIC_OUTSIDE;
}

int PlainEngine::createTet(int a, int b, int c, int d) {
    require(predicates.getOrientation3(&at(points, a), &at(points, b), &at(points, c),
                                       &at(points, d)) == ORIENTATION3_POSITIVE,
            "positive tetrahedra");
    const int tet = static_cast<int>(tets.size());
    tets.push_back({{a, b, c, d}, {NONE, NONE, NONE, NONE}, false});
    for (const int vertex : {a, b, c, d}) oneTet[static_cast<std::size_t>(vertex)] = tet;
    return tet;
}

/// A tetrahedron of p and a facet's corners, linked to the one behind the facet, and its three
/// facets through p offered to others.
int PlainEngine::createOn(const int (&order)[3], int p, int tet, int behind) {
    const int created =
        createTet(p, corner(tet, order[0]), corner(tet, order[1]), corner(tet, order[2]));
    if (behind != NONE) link({created, 0}, {behind, indexOf(behind, tet)});
    for (int i = 1; i < 4; ++i) {
        const std::pair<int, int> key =
            std::minmax(corner(created, i % 3 + 1), corner(created, (i + 1) % 3 + 1));
        const auto [place, bWaiting] = unglued.emplace(key, Facet{created, i});
        if (bWaiting) continue;
        link(place->second, {created, i});
        unglued.erase(place);
    }
    return created;
}

void PlainEngine::link(Facet from, Facet to) {
    neighbour(from.first, from.second) = to.first;
    neighbour(to.first, to.second) = from.first;
}

std::vector<LabelledTet> PlainEngine::labelledMesh() const {
    std::vector<LabelledTet> result;
    for (std::size_t t = 0; t < tets.size(); ++t) {
        if (tets[t].bDoomed) continue;
        LabelledTet entry{static_cast<std::int32_t>(t), {}, {}};
        for (std::size_t i = 0; i < 4; ++i) {
            entry.corners[i] = coordinatesOf(at(points, tets[t].corners[i]));
            entry.neighbours[i] = tets[t].neighbours[i];
        }
        result.push_back(entry);
    }
    return result;
}

}  // namespace support
