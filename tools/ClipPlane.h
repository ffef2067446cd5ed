#pragma once

#include <dt3Library/Varn_3D.h>
#include <string>

namespace tool {

/// One side of a plane across a coordinate axis, the plane included.
struct ClipPlane {
    /// Reads "x<=0.5" (the side of the smaller x), for which "x=0.5" and "x<0.5" are other words,
    /// or "x>=0.5", "x>0.5"; y and z likewise, in either case, with blanks between. Throws
    /// InputError for anything else.
    static ClipPlane parse(const std::string& text);

    bool contains(const VARN3D::Point3& point) const;

    char axis = 'x';
    bool bKeepsLarger = false;
    double value = 0;
};

}  // namespace tool
