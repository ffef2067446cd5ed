extern "C" {
#include <libqhull_r/qhull_ra.h>
}

#include "driver.h"

namespace bench {

const char* const ENGINE_NAME = "qhull";

void triangulate(Job& job, Report& report) {
    if (job.batches != 1) return report.reject("takes one batch only");
    std::vector<double> input;
    input.reserve(job.points.size() * 3);
    for (const Position& position : job.points)
        input.insert(input.end(), position.begin(), position.end());
    const int count = static_cast<int>(job.points.size());
    job.points.release();

    FILE* nowhere = std::fopen("/dev/null", "w");
    qhT state;
    qhT* qh = &state;
    qh_zero(qh, nowhere);
    // d: Delaunay; Qbb: scales the lifted coordinate; Qt: tetrahedra in place of merged cells;
    // Qz: a point at infinity, which cospherical input needs.
    char command[] = "qhull d Qbb Qt Qz";
    const Measurement measurement;
    const int code = qh_new_qhull(qh, 3, count, input.data(), False, command, nullptr, nowhere);
    measurement.stop(report);
    if (code != 0) return report.reject("exit code " + std::to_string(code));

    std::vector<bool> used(static_cast<std::size_t>(count), false);
    for (facetT* facet = qh->facet_list; facet != nullptr && facet->next; facet = facet->next) {
        if (facet->upperdelaunay || qh_setsize(qh, facet->vertices) != 4) continue;
        const double* corners[4];
        for (int k = 0; k < 4; ++k) {
            const auto* vertex = static_cast<vertexT*>(facet->vertices->e[k].p);
            const auto index = static_cast<std::size_t>(qh_pointid(qh, vertex->point));
            used[index] = true;
            corners[k] = input.data() + 3 * index;
        }
        report.addTetrahedron(corners[0], corners[1], corners[2], corners[3]);
    }
    for (const bool isUsed : used) report.vertices += isUsed;
}

}  // namespace bench
