// Data of your own for each point: handles come in input order, so the number of a point leads to
// its vertex, and a map leads back. Here: the mesh as triples of the host's own labels, in the
// host's own order.
//
// Output:
//   numPoints=5
//   Ash Elm Fir Oak
//   Ash Elm Fir Yew
//   Elm Fir Oak Yew

#include <dt3Library/Varn_3D.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <string>
#include <unordered_map>
#include <vector>

using namespace VARN3D;

namespace {

struct Station {
    std::string name;
    double longitude, latitude, height;
};

}  // namespace

int main() {
    const std::vector<Station> stations = {
        {"Elm", 4, 1, 2}, {"Ash", 0, 0, 0}, {"Oak", 5, 5, 1}, {"Fir", 1, 6, 3}, {"Yew", 3, 3, 9}};

    std::vector<Point3> points;
    points.reserve(stations.size());
    for (const Station& s : stations) points.emplace_back(s.longitude, s.latitude, s.height);

    Varn_3D mesh;
    std::vector<Point3*> handles;
    mesh.insert(points, handles);

    std::unordered_map<const Point3*, std::size_t> numberOf;
    for (std::size_t i = 0; i < handles.size(); ++i) numberOf[handles[i]] = i;

    std::vector<Tet3*> tets;
    mesh.getTetrahedra(tets);
    std::vector<std::array<std::string, 4>> named;
    for (const Tet3* tet : tets) {
        std::array<std::string, 4> names;
        for (int i = 0; i < 4; ++i)
            names[static_cast<std::size_t>(i)] = stations[numberOf[tet->getCorner(i)]].name;
        std::sort(names.begin(), names.end());
        named.push_back(names);
    }
    std::sort(named.begin(), named.end());
    for (const auto& names : named)
        std::cout << names[0] << " " << names[1] << " " << names[2] << " " << names[3] << "\n";
}
