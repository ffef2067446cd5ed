#include <tetgen.h>

#include "driver.h"

namespace bench {

const char* const ENGINE_NAME = "tetgen";

void triangulate(Job& job, Report& report) {
    if (job.batches != 1) return report.reject("takes one batch only");
    tetgenio in;
    in.numberofpoints = static_cast<int>(job.points.size());
    in.pointlist = new REAL[job.points.size() * 3];
    REAL* next = in.pointlist;
    for (const Position& position : job.points)
        for (const double value : position) *next++ = value;
    job.points.release();

    // Q: quiet; N, F: no lists of nodes and hull facets. The list of tetrahedra is the result.
    char switches[] = "QNF";
    tetgenio out;
    const Measurement measurement;
    try {
        tetrahedralize(switches, &in, &out);
    } catch (int code) {
        return report.reject("error " + std::to_string(code));
    }
    measurement.stop(report);

    std::vector<bool> used(static_cast<std::size_t>(in.numberofpoints), false);
    for (int i = 0; i < out.numberoftetrahedra; ++i) {
        const double* corners[4];
        for (int k = 0; k < 4; ++k) {
            const int index =
                out.tetrahedronlist[4 * static_cast<std::size_t>(i) + static_cast<std::size_t>(k)];
            used[static_cast<std::size_t>(index)] = true;
            corners[k] = in.pointlist + 3 * static_cast<std::size_t>(index);
        }
        report.addTetrahedron(corners[0], corners[1], corners[2], corners[3]);
    }
    for (const bool isUsed : used) report.vertices += isUsed;
}

}  // namespace bench
