#include "dt3Library/Bbox3.h"

#include <algorithm>
#include <cfloat>

#include "dt3Library/base/messages.h"

namespace VARN3D {

namespace {

void growAxis(double& min, double& max, double coordinate) {
    if (min > coordinate)
        min = coordinate;
    else if (max < coordinate)
        max = coordinate;
}

void widenAxis(double& min, double& max, double factor) {
    const double d = (max - min) * factor * 0.5;
    min -= d;
    max += d;
}

}  // namespace

Bbox3::Bbox3()
    : minX(DBL_MAX), minY(DBL_MAX), minZ(DBL_MAX), maxX(-DBL_MAX), maxY(-DBL_MAX), maxZ(-DBL_MAX) {}

Bbox3::Bbox3(const std::vector<Point3>& points) : Bbox3() {
    add(points);
}

bool Bbox3::isValid() const {
    return minX < DBL_MAX;
}

bool Bbox3::hasBoundsOf(const Bbox3& other) const {
    return minX == other.minX && minY == other.minY && minZ == other.minZ && maxX == other.maxX &&
           maxY == other.maxY && maxZ == other.maxZ;
}

bool Bbox3::add(const Point3& p) {
    if (!isValid()) {
        p.xyz(minX, minY, minZ);
        p.xyz(maxX, maxY, maxZ);
        return true;
    }
    const Bbox3 before(*this);
    treatPointForValidBox(p);
    return !hasBoundsOf(before);
}

bool Bbox3::add(const std::vector<Point3>& v) {
    if (v.empty()) return false;
    const bool bWasValid = isValid();
    const Bbox3 before(*this);
    if (!bWasValid) add(v.front());
    for (const Point3& p : v) treatPointForValidBox(p);
    return !bWasValid || !hasBoundsOf(before);
}

void Bbox3::treatPointForValidBox(const Point3& p) {
    growAxis(minX, maxX, p.x());
    growAxis(minY, maxY, p.y());
    growAxis(minZ, maxZ, p.z());
}

void Bbox3::enlargeBounds(double factor) {
    widenAxis(minX, maxX, factor);
    widenAxis(minY, maxY, factor);
    widenAxis(minZ, maxZ, factor);
}

Bbox3 Bbox3::operator+(Bbox3& other) {
    minX = std::min(minX, other.minX);
    minY = std::min(minY, other.minY);
    minZ = std::min(minZ, other.minZ);
    maxX = std::max(maxX, other.maxX);
    maxY = std::max(maxY, other.maxY);
    maxZ = std::max(maxZ, other.maxZ);
    return *this;
}

Point3 Bbox3::getMinPoint() const {
    return Point3(minX, minY, minZ);
}

Point3 Bbox3::getMaxPoint() const {
    return Point3(maxX, maxY, maxZ);
}

double Bbox3::getMinCoord() const {
    return std::min({minX, minY, minZ});
}

double Bbox3::getMaxCoord() const {
    return std::max({maxX, maxY, maxZ});
}

double Bbox3::getMaxRange() const {
    return std::max({getRangeX(), getRangeY(), getRangeZ()});
}

void Bbox3::debug() const {
    messageStream() << "Bbox3: (" << minX << "," << minY << "," << minZ << ") -> (" << maxX << ","
                    << maxY << "," << maxZ << ")" << std::endl;
}

}  // namespace VARN3D
