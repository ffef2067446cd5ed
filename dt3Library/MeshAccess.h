#pragma once

#include "dt3Library/Point3.h"
#include "dt3Library/Tet3.h"

namespace VARN3D {

/// The engine's unchecked way to the fields of its own records. Hosts use the checked accessors of
/// `Point3` and `Tet3`; here an index outside 0..3 is the engine's fault and undefined.
struct MeshAccess {
    static bool& visited(Tet3* t) { return t->hasBeenVisited; }
    static bool visited(const Tet3* t) { return t->hasBeenVisited; }
    static std::int32_t& label(Tet3* t) { return t->label; }
    static std::int32_t label(const Tet3* t) { return t->label; }
    static Point3*& corner(Tet3* t, int i) { return t->aVertexPointer[i]; }
    static Point3* corner(const Tet3* t, int i) { return t->aVertexPointer[i]; }
    static Tet3*& neighbour(Tet3* t, int i) { return t->aOppTets[i]; }
    static Tet3* neighbour(const Tet3* t, int i) { return t->aOppTets[i]; }
    static std::int32_t& customIndex(Tet3* t) { return t->customIndex; }
    static std::int32_t& cavityNumber(Point3* p) { return p->cavityNumber; }
};

}  // namespace VARN3D
