#pragma once

namespace VARN3D {

/// The coordinates in which a batch is triangulated: a translation of each axis and one power of
/// two, chosen so that nothing is ever rounded. Moved points therefore have the same exact
/// predicates as the given ones, and certified spheres (`CertifiedSphere.h`) get coordinates of
/// their range, small beside the distances between points wherever that can be had exactly: data
/// far from the origin would otherwise leave most spheres uncertified.
///
/// An axis is moved by the middle of the box if all its coordinates lie within a factor of two of
/// that middle: then the difference of two doubles is a double (Sterbenz). Otherwise the axis stays
/// as it is, and its coordinates are at most 3 times half the box's longest side. The points are
/// scaled only if then the largest coordinate is outside [2^-30, 2^30], into [1/2, 1).
///
/// Scaling down can push the last bits of a coordinate near zero out of the range of doubles. Where
/// `mayLoseBits()`, the caller asks `isExactFor` of each point, and if one of them answers no,
/// falls back to `ExactFrame()` and does without certified spheres.
///
/// Denormal numbers must not be flushed to zero (`FloatingPointScope`).
class ExactFrame {
  public:
    /// The given coordinates as they are, of any size, and therefore not certifiable.
    ExactFrame() = default;
    /// The frame of the finite points with low <= q <= high on each axis.
    ExactFrame(const double (&low)[3], const double (&high)[3]);

    /// Takes a point of the box, or one for which `isExactFor` holds, to the kernel's coordinates.
    void apply(const double (&q)[3], double (&moved)[3]) const {
        for (int axis = 0; axis < 3; ++axis) moved[axis] = q[axis] - middle[axis];
        if (bScaled) scaleUpOrDown(moved);
    }

    /// Whether `isExactFor` can be false for a point of the box.
    bool mayLoseBits() const { return bScaled && factors[0] < 1.0; }

    /// Whether this frame, made for the point's box or earlier, serves a finite point: no bit is
    /// lost, and in a certifiable frame it stays in the certificate's range. Unless
    /// `mayLoseBits()`, what holds for the least and the greatest corner of a box holds for all
    /// points in it.
    bool isExactFor(const double (&q)[3]) const;

    /// Whether moved coordinates have the range that certified spheres need.
    bool isCertifiable() const { return bCertifiable; }

  private:
    void scaleUpOrDown(double (&moved)[3]) const;

    double middle[3] = {0.0, 0.0, 0.0};
    /// Two, since 2^1073, which brings the smallest doubles up, is no double itself.
    double factors[2] = {1.0, 1.0};
    bool bScaled = false;
    bool bCertifiable = false;
};

}  // namespace VARN3D
