#include "tools/ClipPlane.h"

#include <string_view>

#include "tools/InputError.h"
#include "tools/parsing.h"

namespace tool {

namespace {

const std::string_view AXIS_NAMES = "xyzXYZ";

}  // namespace

ClipPlane ClipPlane::parse(const std::string& text) {
    std::string_view rest = trimmed(text);
    ClipPlane plane;
    const std::size_t axis = rest.empty() ? std::string_view::npos : AXIS_NAMES.find(rest[0]);
    bool bWellFormed = axis != std::string_view::npos;
    if (bWellFormed) {
        plane.axis = AXIS_NAMES[axis % 3];
        rest = trimmed(rest.substr(1));
        const std::size_t length = rest.find_first_not_of("<=>");
        const std::string_view comparison = rest.substr(0, length);
        plane.bKeepsLarger = comparison == ">" || comparison == ">=";
        bWellFormed =
            length != std::string_view::npos &&
            (plane.bKeepsLarger || comparison == "<" || comparison == "<=" || comparison == "=") &&
            !parseNumber(trimmed(rest.substr(length)), plane.value);
    }
    if (!bWellFormed) throw InputError("--clip: " + quoted(text) + " is not like x<=0.5 or x>=0.5");
    return plane;
}

bool ClipPlane::contains(const VARN3D::Point3& point) const {
    const double coordinate = axis == 'x' ? point.x() : axis == 'y' ? point.y() : point.z();
    return bKeepsLarger ? coordinate >= value : coordinate <= value;
}

}  // namespace tool
