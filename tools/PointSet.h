#pragma once

#include <dt3Library/Varn_3D.h>
#include <string>
#include <vector>

namespace tool {

/// A number that a file gives for each of its points besides the coordinates: an intensity, a
/// channel of a colour. NaN where the file gives none.
struct Attribute {
    std::string name;
    std::vector<double> values;
};

/// What is read from a file of points. The attributes are as long as the points, or left out.
struct PointSet {
    std::vector<VARN3D::Point3> points;
    std::vector<Attribute> attributes;
    /// The names of columns that are no attributes, since they don't hold numbers only.
    std::vector<std::string> textColumns;
};

}  // namespace tool
