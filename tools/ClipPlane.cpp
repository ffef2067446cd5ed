#include "ClipPlane.h"

#include <string_view>

#include "InputError.h"
#include "parsing.h"

namespace tool {

ClipPlane ClipPlane::parse(const std::string& text) {
    ClipPlane plane;
    const bool bWellFormed = text.size() > 2 &&
                             std::string_view("xyz").find(text[0]) != std::string_view::npos &&
                             std::string_view("=<>").find(text[1]) != std::string_view::npos &&
                             !parseNumber(std::string_view(text).substr(2), plane.value);
    if (!bWellFormed) {
        throw InputError("--clip: " + quoted(text) + " is not like x=0.5, x<0.5 or x>0.5");
    }
    plane.axis = text[0];
    plane.bKeepsLarger = text[1] == '>';
    return plane;
}

bool ClipPlane::contains(const VARN3D::Point3& point) const {
    const double coordinate = axis == 'x' ? point.x() : axis == 'y' ? point.y() : point.z();
    return bKeepsLarger ? coordinate >= value : coordinate <= value;
}

}  // namespace tool
