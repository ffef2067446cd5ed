// Writes one of the benchmarks' point sets as raw double triples:
//   varn3d_points SHAPE FILE SEED [PARAMETER]...
// The same arguments give the same points on every machine with IEEE doubles: the random numbers
// come from the standard's Mersenne twister by integer arithmetic of our own.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Position = std::array<double, 3>;
using Points = std::vector<Position>;

class Random {
  public:
    explicit Random(std::uint64_t seed) : engine(seed) {}

    /// Uniform in [0, 1).
    double uniform() { return static_cast<double>(engine() >> 11) * 0x1p-53; }
    double normal() {
        const double radius = std::sqrt(-2.0 * std::log(1.0 - uniform()));
        return radius * std::cos(2.0 * PI * uniform());
    }
    Position uniformPosition() { return {uniform(), uniform(), uniform()}; }
    Position normalPosition() { return {normal(), normal(), normal()}; }
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(engine() % bound); }
    void shuffle(Points& points) {
        for (std::size_t i = points.size(); i > 1; --i) std::swap(points[i - 1], points[below(i)]);
    }

    static constexpr double PI = 3.14159265358979323846;

  private:
    std::mt19937_64 engine;
};

struct Arguments {
    std::vector<std::string> values;

    double number(std::size_t i) const {
        if (i >= values.size()) throw std::runtime_error("a parameter is missing");
        return std::strtod(values[i].c_str(), nullptr);
    }
    std::size_t count(std::size_t i) const { return static_cast<std::size_t>(number(i)); }
    std::size_t axis(std::size_t i) const {
        if (i >= values.size()) throw std::runtime_error("a parameter is missing");
        const std::size_t axis = std::string("xyz").find(values[i]);
        if (axis > 2) throw std::runtime_error("no axis: " + values[i]);
        return axis;
    }
};

Points repeated(std::size_t count, const std::function<Position()>& next) {
    Points points(count);
    for (Position& point : points) point = next();
    return points;
}

Position scaled(const Position& p, double factor) {
    return {p[0] * factor, p[1] * factor, p[2] * factor};
}

Position sum(const Position& p, const Position& q) {
    return {p[0] + q[0], p[1] + q[1], p[2] + q[2]};
}

Points cube(const Arguments& arguments, Random& random) {
    return repeated(arguments.count(0), [&] { return random.uniformPosition(); });
}

/// COUNT, SIDE, X, Y, Z: uniform in a cube with its least corner there.
Points placedCube(const Arguments& arguments, Random& random) {
    const Position corner = {arguments.number(2), arguments.number(3), arguments.number(4)};
    return repeated(arguments.count(0), [&] {
        return sum(scaled(random.uniformPosition(), arguments.number(1)), corner);
    });
}

/// A place in that cube as the number of its cell along the Z-order curve, 1024 cells an edge.
std::uint32_t cellOnCurve(const Position& place, double side, const Position& corner) {
    std::uint32_t cell = 0;
    for (std::uint32_t axis = 0; axis < 3; ++axis) {
        const auto part = static_cast<std::uint32_t>((place[axis] - corner[axis]) / side * 1024.0);
        for (std::uint32_t bit = 0; bit < 10; ++bit) cell |= (part >> bit & 1) << (3 * bit + axis);
    }
    return cell;
}

/// The same points as in a placed cube, in the order of a curve through it.
Points placedCubeOnCurve(const Arguments& arguments, Random& random) {
    const double side = arguments.number(1);
    const Position corner = {arguments.number(2), arguments.number(3), arguments.number(4)};
    Points points = placedCube(arguments, random);
    std::stable_sort(points.begin(), points.end(), [&](const Position& p, const Position& q) {
        return cellOnCurve(p, side, corner) < cellOnCurve(q, side, corner);
    });
    return points;
}

Points gauss(const Arguments& arguments, Random& random) {
    return repeated(arguments.count(0), [&] { return random.normalPosition(); });
}

/// COUNT, CLUSTERS, SIGMA: clusters of that spread around centres in the unit cube.
Points clusters(const Arguments& arguments, Random& random) {
    const Points centres = repeated(arguments.count(1), [&] { return random.uniformPosition(); });
    return repeated(arguments.count(0), [&] {
        const Position& centre = centres[random.below(centres.size())];
        return sum(centre, scaled(random.normalPosition(), arguments.number(2)));
    });
}

Points sphere(const Arguments& arguments, Random& random) {
    return repeated(arguments.count(0), [&] {
        const Position p = random.normalPosition();
        return scaled(p, 1.0 / std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]));
    });
}

/// EDGE, ORIGIN, STEP: the points ORIGIN + i STEP of a cubic grid, x slowest.
Points sortedGrid(const Arguments& arguments, Random&) {
    const std::size_t edge = arguments.count(0);
    const auto at = [&](std::size_t i) {
        return arguments.number(1) + static_cast<double>(i) * arguments.number(2);
    };
    Points points;
    for (std::size_t i = 0; i < edge; ++i) {
        for (std::size_t j = 0; j < edge; ++j)
            for (std::size_t k = 0; k < edge; ++k) points.push_back({at(i), at(j), at(k)});
    }
    return points;
}

Points grid(const Arguments& arguments, Random& random) {
    Points points = sortedGrid(arguments, random);
    random.shuffle(points);
    return points;
}

/// EDGE: a plane grid and one point above it.
Points planeAndApex(const Arguments& arguments, Random& random) {
    const std::size_t edge = arguments.count(0);
    Points points;
    for (std::size_t i = 0; i < edge * edge; ++i)
        points.push_back({static_cast<double>(i / edge), static_cast<double>(i % edge), 0.0});
    const double middle = static_cast<double>(edge / 2);
    points.push_back({middle, middle, middle});
    random.shuffle(points);
    return points;
}

/// COUNT: points on a line and one beside it; the set spans a plane only.
Points lineAndApex(const Arguments& arguments, Random& random) {
    Points points;
    for (std::size_t i = 1; i < arguments.count(0); ++i)
        points.push_back({static_cast<double>(i), 0.0, 0.0});
    points.push_back({1.0, 1.0, 0.0});
    random.shuffle(points);
    return points;
}

/// COUNT, ROTATED: as many points on each of two skew segments, whose mesh is quadratic. Rotated by
/// a Pythagorean rotation, the points are rounded off the lines.
Points skewSegments(const Arguments& arguments, Random& random) {
    const std::size_t count = arguments.count(0);
    Points points;
    for (std::size_t i = 0; i < count; ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(count - 1) - 0.5;
        points.push_back({t, 0.0, -0.5});
        points.push_back({0.0, t, 0.5});
    }
    if (arguments.count(1) != 0) {
        for (Position& p : points) {
            p = {0.6 * p[0] - 0.8 * p[1], 0.8 * p[0] + 0.6 * p[1], p[2]};
            p = {p[0], (5.0 * p[1] - 12.0 * p[2]) / 13.0, (12.0 * p[1] + 5.0 * p[2]) / 13.0};
        }
    }
    random.shuffle(points);
    return points;
}

/// COUNT, AXIS, TURNS, NOISE: a helix of radius 1 and pitch 1 along an axis. Without noise its mesh
/// has far more tetrahedra than points.
Points helix(const Arguments& arguments, Random& random) {
    const std::size_t axis = arguments.axis(1);
    return repeated(arguments.count(0), [&] {
        const double turns = arguments.number(2) * random.uniform();
        const double angle = 2.0 * Random::PI * turns;
        Position p = scaled(random.normalPosition(), arguments.number(3));
        p[axis] += turns;
        p[(axis + 1) % 3] += std::cos(angle);
        p[(axis + 2) % 3] += std::sin(angle);
        return p;
    });
}

/// COUNT, AXIS, ALONG, ACROSS: a box of these sizes along the axis and across it.
Points box(const Arguments& arguments, Random& random) {
    return repeated(arguments.count(0), [&] {
        Position p = scaled(random.uniformPosition(), arguments.number(3));
        p[arguments.axis(1)] *= arguments.number(2) / arguments.number(3);
        return p;
    });
}

/// COUNT, DISTANCE, SORTED: the unit cube and one point far outside, which takes almost all of the
/// bounding box; in random or in lexicographic order.
Points outlier(const Arguments& arguments, Random& random) {
    Points points = repeated(arguments.count(0) - 1, [&] { return random.uniformPosition(); });
    const double far = arguments.number(1);
    points.push_back({far, far, far});
    random.shuffle(points);
    if (arguments.count(2) != 0) std::sort(points.begin(), points.end());
    return points;
}

/// COUNT, CUBES, DISTANCE, GROWTH: unit cubes one after the other, each farther from the origin by
/// a factor than the one before.
Points farCubes(const Arguments& arguments, Random& random) {
    const std::size_t cubes = arguments.count(1);
    double offset = 0.0;
    Points points;
    for (std::size_t i = 0; i < cubes; ++i) {
        for (std::size_t k = 0; k < arguments.count(0) / cubes; ++k)
            points.push_back(sum(random.uniformPosition(), {offset, offset, offset}));
        offset = i == 0 ? arguments.number(2) : offset * arguments.number(3);
    }
    return points;
}

Points shuffledFarCubes(const Arguments& arguments, Random& random) {
    Points points = farCubes(arguments, random);
    random.shuffle(points);
    return points;
}

/// COUNT: points of the curve (t, t^2, t^3) in order; the mesh is quadratic.
Points momentCurve(const Arguments& arguments, Random&) {
    const std::size_t count = arguments.count(0);
    Points points;
    for (std::size_t i = 0; i < count; ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(count);
        points.push_back({t, t * t, t * t * t});
    }
    return points;
}

/// COUNT, DISTINCT: points drawn from a few positions of the unit cube.
Points duplicates(const Arguments& arguments, Random& random) {
    const Points positions = repeated(arguments.count(1), [&] { return random.uniformPosition(); });
    return repeated(arguments.count(0), [&] { return positions[random.below(positions.size())]; });
}

/// PATH: the points of a text file; lines that don't begin with three numbers, such as comments and
/// the header of a text PLY, say something else.
Points textFile(const Arguments& arguments, Random&) {
    std::ifstream file(arguments.values.at(0));
    if (!file) throw std::runtime_error("cannot read " + arguments.values[0]);
    Points points;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        Position p;
        if (words >> p[0] >> p[1] >> p[2]) points.push_back(p);
    }
    return points;
}

using Shape = Points (*)(const Arguments&, Random&);

const std::map<std::string, Shape> SHAPES = {
    {"cube", cube},
    {"placed_cube", placedCube},
    {"placed_cube_on_curve", placedCubeOnCurve},
    {"gauss", gauss},
    {"clusters", clusters},
    {"sphere", sphere},
    {"grid", grid},
    {"sorted_grid", sortedGrid},
    {"plane_apex", planeAndApex},
    {"line_apex", lineAndApex},
    {"segments", skewSegments},
    {"helix", helix},
    {"box", box},
    {"outlier", outlier},
    {"far_cubes", farCubes},
    {"shuffled_far_cubes", shuffledFarCubes},
    {"moment", momentCurve},
    {"duplicates", duplicates},
    {"text", textFile},
};

void write(const Points& points, const std::string& path) {
    static_assert(sizeof(Position) == 3 * sizeof(double));
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(points.data()),
               static_cast<std::streamsize>(points.size() * sizeof(Position)));
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const auto shape = argc < 4 ? SHAPES.end() : SHAPES.find(argv[1]);
        if (shape == SHAPES.end())
            throw std::runtime_error("usage: SHAPE FILE SEED [PARAMETER]...");
        Random random(std::strtoull(argv[3], nullptr, 10));
        write(shape->second({{argv + 4, argv + argc}}, random), argv[2]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
