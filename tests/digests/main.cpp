// A host that compares the meshes of the fixed inputs with their recorded digests. It is compiled
// in many ways, also in such that change the host's own floating-point results.

#include <cfenv>
#include <cstdio>
#include <vector>

#include "dt3Library/Varn_3D.h"
#include "tests/support/DigestInputs.h"
#include "tests/support/MeshDigest.h"

int main() {
    support::takeFirstMargin();
#if defined(__FAST_MATH__)
    std::fesetround(FE_UPWARD);  // as hosts that do interval arithmetic
#endif
    int numWrong = 0;
    for (auto& [name, points, expected] : support::digestInputs()) {
        VARN3D::Varn_3D mesh;
        std::vector<VARN3D::Point3*> handles;
        mesh.insert(points, handles);
        const std::uint64_t digest = support::meshDigest(mesh, handles);
        std::printf("%s: %016llx, %s\n", name, static_cast<unsigned long long>(digest),
                    digest == expected ? "as recorded" : "WRONG");
        numWrong += digest == expected ? 0 : 1;
    }
    std::printf("%d wrong digests\n", numWrong);
    return numWrong == 0 ? 0 : 1;
}
