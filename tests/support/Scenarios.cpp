#include "tests/support/Scenarios.h"

#include <algorithm>

namespace support {

using namespace VARN3D;

namespace {

const Point3& pick(Random& random, const Points& points) {
    return points[static_cast<std::size_t>(random.below(static_cast<int>(points.size())))];
}

double sign(Random& random) {
    return random.below(2) == 0 ? -1.0 : 1.0;
}

/// Up to 2^maxExponent.
double anySize(Random& random, int maxExponent) {
    const double significand = 1.0 + random.unit();
    return std::ldexp(significand, random.below(maxExponent));
}

Points cells(Random& random, int maxPoints) {
    const int n = 5 + random.below(maxPoints - 4);
    const int sideX = 2 + random.below(5);
    const int sideY = 2 + random.below(5);
    const int sideZ = 2 + random.below(5);
    return lattice(static_cast<std::size_t>(n), sideX, sideY, sideZ, random.bits());
}

Points anyPoints(Random& random) {
    const auto n = static_cast<std::size_t>(5 + random.below(56));
    switch (random.below(5)) {
        case 0:
            return uniform(n, random.bits());
        case 1:
            return gaussian(n, random.bits());
        case 2: {
            const Points points = integerSphere(9 + 8 * random.below(5));
            return shuffled(points, random.bits());
        }
        default:
            return cells(random, 60);
    }
}

/// Each axis multiplied and then moved; the sums are rounded.
Points mapped(Points points, const Point3& factor, const Point3& offset) {
    for (Point3& p : points)
        p.exchange(p.x() * factor.x() + offset.x(), p.y() * factor.y() + offset.y(),
                   p.z() * factor.z() + offset.z());
    return points;
}

/// New points in planes and on lines through others, on edges and beyond them, just beside others,
/// and others again.
Points derived(Random& random, const Points& from, int n) {
    static constexpr double WEIGHTS[][3] = {
        {1.0, 0.0, 0.0}, {-1.0, 2.0, 0.0}, {0.5, 0.5, 0.0}, {1.0, 1.0, -1.0}, {0.25, 0.25, 0.5}};
    return generate(static_cast<std::size_t>(n), [&] {
        const Point3& a = pick(random, from);
        const Point3& b = pick(random, from);
        const Point3& c = pick(random, from);
        const double(&w)[3] = WEIGHTS[random.below(5)];
        const double beside = random.below(4) == 0 ? sign(random) * 0x1p-45 : 0.0;
        return Point3(a.x() * w[0] + b.x() * w[1] + c.x() * w[2] + beside,
                      a.y() * w[0] + b.y() * w[1] + c.y() * w[2] - beside,
                      a.z() * w[0] + b.z() * w[1] + c.z() * w[2]);
    });
}

/// The points in parts of random size, each a batch or one by one.
Scenario inRandomSteps(Random& random, const Points& points) {
    Scenario scenario;
    for (auto first = points.begin(); first != points.end();) {
        const auto left = static_cast<int>(points.end() - first);
        const int size = 1 + random.below(random.below(2) == 0 ? left : std::min(left, 8));
        scenario.push_back({random.below(3) > 0, {first, first + size}});
        first += size;
    }
    return scenario;
}

}  // namespace

Scenario lattices(Random& random) {
    Points points = cells(random, 60);
    const double step = random.below(2) == 0 ? 1.0 : 0.1;
    return {{true, mapped(points, {step, step, step}, {0, 0, 0})}};
}

Scenario onTheHull(Random& random) {
    const Points points = cells(random, 30);
    const Points more = derived(random, points, 1 + random.below(30));
    if (random.below(3) == 0) return {{true, points + more}};
    return {{true, points}, {random.below(2) == 0, more}};
}

Scenario extremes(Random& random) {
    Points points = anyPoints(random);
    const double squeezed = std::ldexp(1.0, -20 - random.below(980));
    const int axis = random.below(6);
    points = mapped(points, {1.0, axis == 1 ? squeezed : 1.0, axis == 2 ? squeezed : 1.0},
                    {0.0, 0.0, 0.0});
    if (random.below(3) == 0) {
        const double far = anySize(random, 55);
        points = mapped(points, {1, 1, 1}, {far, far * 3, -far / 7});
    }
    const double scale = std::ldexp(1.0, random.below(3) == 0 ? 0 : -1070 + random.below(2030));
    points = mapped(points, {scale, scale, scale}, {0.0, 0.0, 0.0});
    return random.below(2) == 0 ? Scenario{{true, points}} : inRandomSteps(random, points);
}

Scenario mixed(Random& random) {
    Scenario scenario;
    for (int parts = 1 + random.below(4); parts > 0; --parts) {
        const double size = std::ldexp(1.0, random.below(5) - 2);
        const auto far = static_cast<double>(random.below(9) - 4);
        const double aside = far * sign(random);
        const Points part = mapped(anyPoints(random), {size, size, size}, {far, aside, 0.5 * far});
        for (Step& step : inRandomSteps(random, part)) scenario.push_back(std::move(step));
    }
    return scenario;
}

Scenario waiting(Random& random) {
    const int dimension = random.below(3);
    const auto n = static_cast<std::size_t>(1 + random.below(9));
    const Points flat = dimension == 2 ? planar(n, 4, random.bits())
                                       : lattice(n, 1 + 5 * dimension, 1, 1, random.bits());
    Scenario scenario = inRandomSteps(random, flat);
    Points rest = derived(random, flat, random.below(4));
    rest = std::move(rest) + cells(random, 30);
    rest = shuffled(rest + Points{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, 0}}, random.bits());
    const auto first = rest.begin() + 1 + random.below(static_cast<int>(rest.size()));
    scenario.push_back({random.below(4) > 0, {rest.begin(), first}});
    scenario.push_back({true, {first, rest.end()}});
    return scenario;
}

Scenario crowded(Random& random) {
    Points points = anyPoints(random);
    points = points + derived(random, points, 10);
    if (random.below(3) == 0) {
        const double far = anySize(random, 20);
        points = std::move(points) + mapped(anyPoints(random), {1, 1, 1}, {far, 0.0, -far});
    }
    const double side = sign(random);
    const double far = side * anySize(random, 300);
    points.emplace_back(far, 1.0, -far / 3);
    points = shuffled(std::move(points), random.bits());
    return random.below(3) > 0 ? Scenario{{true, points}} : inRandomSteps(random, points);
}

}  // namespace support
