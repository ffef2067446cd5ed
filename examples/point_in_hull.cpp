// How much of a box lies in the convex hull of some points: every thread asks the same mesh, by a
// locator of its own.
//
// Output:
//   numPoints=6
//   an octahedron fills 0.1665 of its box

#include <dt3Library/Varn_3D.h>

#include <iomanip>
#include <iostream>
#include <thread>
#include <vector>

using namespace VARN3D;

namespace {

constexpr int SIDE = 60;

// Of the centres of the box's cells in these layers, how many lie in the hull or on it.
int countInside(const Varn_3D& mesh, int firstLayer, int lastLayer) {
    PointLocator locator(mesh);
    const auto coordinate = [](int i) { return (2 * i + 1.0) / SIDE - 1.0; };
    int count = 0;
    for (int x = firstLayer; x < lastLayer; ++x)
        for (int y = 0; y < SIDE; ++y)
            for (int z = 0; z < SIDE; ++z) {
                const Location place =
                    locator.locate({coordinate(x), coordinate(y), coordinate(z)});
                count += place.kind == LocationKind::OUTSIDE ? 0 : 1;
            }
    return count;
}

}  // namespace

int main() {
    Varn_3D mesh;
    mesh.insert({{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}});

    constexpr int NUM_THREADS = 4;
    int counts[NUM_THREADS];
    std::vector<std::thread> threads;
    for (int i = 0; i < NUM_THREADS; ++i)
        threads.emplace_back([&mesh, &counts, i] {
            counts[i] = countInside(mesh, SIDE * i / NUM_THREADS, SIDE * (i + 1) / NUM_THREADS);
        });
    int total = 0;
    for (int i = 0; i < NUM_THREADS; ++i) {
        threads[static_cast<std::size_t>(i)].join();
        total += counts[i];
    }
    std::cout << "an octahedron fills " << std::fixed << std::setprecision(4)
              << static_cast<double>(total) / (SIDE * SIDE * SIDE) << " of its box\n";
}
