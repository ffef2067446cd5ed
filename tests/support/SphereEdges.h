#pragma once

#include <algorithm>
#include <cmath>

#include "dt3Library/kernel/BatchState.h"
#include "dt3Library/kernel/CertifiedSphere.h"
#include "dt3Library/kernel/ExactFrame.h"
#include "tests/support/Exact.h"

/// Tetrahedra whose circumsphere is only just certified, and the points that such a sphere is most
/// likely to be wrong about.
namespace support {

struct Coordinates {
    double xyz[3];
};

inline VARN3D::Point3 pointAt(const Coordinates& c) {
    return VARN3D::Point3(c.xyz[0], c.xyz[1], c.xyz[2]);
}

/// About 2^exponent; correctly rounded, so the same everywhere.
inline double powerNear(double exponent) {
    const double whole = std::floor(exponent);
    return std::ldexp(1.0 + (exponent - whole), static_cast<int>(whole));
}

/// A family of tetrahedra that grow flatter, or smaller, while `edge` goes from 0 to -80: slivers
/// near a circle, flat ones with a far larger sphere, needles of rows down to 2^-170, compact ones
/// that become small beside their distance from the origin. All lie in a cube of half side `scale`
/// around (middle, middle, middle), somewhere in it, at its centre or in a corner.
class EdgeFamily {
  public:
    /// `unit` gives numbers in [0, 1).
    template <class Unit>
    explicit EdgeFamily(Unit& unit) {
        const double range = unit() < 0.7 ? 29.0 : 900.0;
        scale = std::ldexp(1.0, static_cast<int>(range * (2 * unit() - 1)));
        middle = scale * (unit() < 0.5 ? 0.0 : unit() < 0.5 ? 1.0 : powerNear(2 + 18 * unit()));
        const double kind = unit();
        bNeedle = kind < 0.2 && middle == 0.0;
        bOnSphere = kind > 0.5;
        bShrinks = kind > 0.8;
        size = powerNear(-20 * unit());
        stretch = unit() < 0.7 ? 1.0 : powerNear(-20 * unit());
        const double place = unit();
        const double distance = bNeedle ? 0.0 : place < 0.5 ? 1.0 - 0.004 * place : place - 0.5;
        for (double& c : origin.xyz) c = unit() < 0.5 ? -distance : distance;
        turnAxes(unit);
        for (Coordinates& corner : shape) {
            const double s = 2 * unit() - 1;
            const double turn = unit() < 0.5 ? -1.0 : 1.0;
            corner = {{2 * unit() - 1, s, 2 * unit() - 1}};
            if (bOnSphere)
                corner = {{turn * (1 - s * s) / (1 + s * s), 2 * s / (1 + s * s), corner.xyz[2]}};
            const double length = bNeedle ? powerNear(-170 * unit()) : 1.0;
            for (double& c : corner.xyz) c *= length;
        }
        if (bNeedle) shape[0] = {};
    }

    void corners(double edge, Coordinates (&corner)[4]) const {
        const double flatness = bShrinks ? 0.5 : powerNear(edge);
        const double length = bShrinks ? powerNear(edge) : size;
        for (int i = 0; i < 4; ++i) {
            const double z = flatness * shape[i].xyz[2];
            const double belt = bOnSphere ? std::sqrt(1 - z * z) : 1.0;
            const double local[3] = {belt * shape[i].xyz[0], stretch * belt * shape[i].xyz[1],
                                     stretch * z};
            for (int k = 0; k < 3; ++k) {
                const double turned = axes[0].xyz[k] * local[0] + axes[1].xyz[k] * local[1] +
                                      axes[2].xyz[k] * local[2];
                corner[i].xyz[k] = (middle + scale * origin.xyz[k]) + scale * length * turned;
            }
        }
    }

    double scale, middle;

  private:
    /// The rotation of a random quaternion.
    template <class Unit>
    void turnAxes(Unit& unit) {
        const double a = unit() + 0.01, b = 2 * unit() - 1, c = 2 * unit() - 1, d = 2 * unit() - 1;
        const double n = a * a + b * b + c * c + d * d, aa = a * a, bb = b * b, cc = c * c,
                     dd = d * d;
        axes[0] = {{(aa + bb - cc - dd) / n, 2 * (b * c + a * d) / n, 2 * (b * d - a * c) / n}};
        axes[1] = {{2 * (b * c - a * d) / n, (aa - bb + cc - dd) / n, 2 * (c * d + a * b) / n}};
        axes[2] = {{2 * (b * d + a * c) / n, 2 * (c * d - a * b) / n, (aa - bb - cc + dd) / n}};
    }

    bool bNeedle, bOnSphere, bShrinks;
    double size, stretch;
    Coordinates origin, axes[3], shape[4];
};

/// One implementation of cached spheres.
struct Spheres {
    const char* name;
    VARN3D::CachedSphere (*make)(const double (&)[3], const double (&)[3], const double (&)[3],
                                 const double (&)[3], double);
    int (*side)(const VARN3D::CachedSphere&, const double (&)[3]);
    /// Of the kernel's determinants.
    int (*sign)(const VARN3D::BatchState&, VARN3D::Slot, VARN3D::VertexNumber);
    /// What its undecided band is meant to be.
    double eta;
    /// Whether the points are moved by the frame, or by the middle of their cube come what may.
    bool bMovedExactly = true;
};

template <class Certificate>
constexpr Spheres scalarSpheres(const char* name) {
    return {name, &VARN3D::makeSphere<Certificate>, &VARN3D::sideOfSphere<Certificate>, nullptr,
            Certificate::ETA};
}

/// One tetrahedron at the edge of the certificate, asked about points just beyond the undecided
/// band, above all where the error of the sphere helps to a wrong answer, and about its corners.
template <class Unit>
class SphereAttack {
  public:
    /// `source` gives numbers in [0, 1).
    SphereAttack(const Spheres& attacked, Unit& source)
        : spheres(attacked), unit(source), family(source) {
        const double low = family.middle - family.scale, high = family.middle + family.scale;
        frame = VARN3D::ExactFrame({low, low, low}, {high, high, high});
        const double atLow = moved({{low, low, low}}).xyz[0];
        scaleBack = (high - low) / (moved({{high, high, high}}).xyz[0] - atLow);
    }

    /// Calls `judge(corners, query, answer)` with each certain answer, in given coordinates.
    /// Returns false if the family has no certified sphere.
    template <class Judge>
    bool run(Judge judge) {
        if (!goToEdge()) return false;
        const VARN3D::CachedSphere sphere = sphereOf();
        const Coordinates centre{{sphere.x, sphere.y, sphere.z}};
        const Coordinates worst = directionOfError(centre);
        const auto ask = [&](const Coordinates& query) {
            if (!isUsable(query)) return;
            const int answer = spheres.side(sphere, moved(query).xyz);
            if (answer != 0) judge(corner, query, answer);
        };
        for (int i = 0; i < 16; ++i) {
            const double outwards = i % 2 == 0 ? 1.0 : -1.0;
            const double towards = i % 4 < 2 ? -outwards : outwards;
            const double blur = i < 8 ? 0.02 * (i / 4) : 9.0;
            Coordinates direction = worst;
            double square = 0.0;
            for (double& c : direction.xyz) {
                c = towards * c + blur * (unit() - 0.5);
                square += c * c;
            }
            const double margin = outwards * spheres.eta * (0.5 + 0.1 * unit() * (i % 3));
            const double step = std::sqrt(sphere.squaredRadius / square) * (1 + margin);
            ask(backFrom(centre, step, direction));
        }
        for (const Coordinates& query : corner) ask(query);
        return true;
    }

  private:
    /// The flattest or smallest of the family whose sphere is certified.
    bool goToEdge() {
        const auto isCertified = [this](double edge) {
            family.corners(edge, corner);
            for (const Coordinates& c : corner)
                if (!isUsable(c)) return false;
            return !std::isnan(sphereOf().squaredRadius);
        };
        double inside = 0.0, beyond = -80.0;
        if (!isCertified(inside)) return false;
        for (int i = 0; i < 18; ++i) {
            const double edge = (inside + beyond) / 2;
            (isCertified(edge) ? inside : beyond) = edge;
        }
        return isCertified(inside);
    }

    bool isUsable(const Coordinates& q) const {
        return !spheres.bMovedExactly || frame.isExactFor(q.xyz);
    }

    Coordinates moved(const Coordinates& given) const {
        Coordinates result;
        frame.apply(given.xyz, result.xyz);
        if (!spheres.bMovedExactly)
            for (int k = 0; k < 3; ++k) result.xyz[k] = given.xyz[k] - family.middle;
        return result;
    }

    /// The point at centre + step * direction in given coordinates, rounded.
    Coordinates backFrom(const Coordinates& centre, double step, const Coordinates& direction) {
        const Coordinates p = moved(corner[0]);
        Coordinates result;
        for (int k = 0; k < 3; ++k) {
            const double away = (centre.xyz[k] - p.xyz[k]) + step * direction.xyz[k];
            result.xyz[k] = corner[0].xyz[k] + scaleBack * away;
        }
        return result;
    }

    VARN3D::CachedSphere sphereOf() const {
        const Coordinates p = moved(corner[0]);
        double reach = VARN3D::ProvedCertificate::LEAST_REACH;
        for (const double c : p.xyz) reach = std::max(reach, std::fabs(c));
        return spheres.make(p.xyz, moved(corner[1]).xyz, moved(corner[2]).xyz, moved(corner[3]).xyz,
                            reach);
    }

    /// The direction in which a computed centre is off, with a largest component of 1: there the
    /// sphere reaches farthest out of the true one, and on the other side falls farthest behind it.
    Coordinates directionOfError(const Coordinates& centre) const {
        const VARN3D::Point3 p = pointAt(moved(corner[0])), a = pointAt(moved(corner[1])),
                             b = pointAt(moved(corner[2])), c = pointAt(moved(corner[3])),
                             computed = pointAt(centre);
        const auto [u, v, w, o] = exactDifferences({&p, &a, &b, &c, &computed});
        const ExactVector vw = exactCross(v, w), wu = exactCross(w, u), uv = exactCross(u, v);
        const mpz_class uu = exactDot(u, u), vv = exactDot(v, v), ww = exactDot(w, w);
        const mpz_class volume = exactDot(u, vw);
        ExactVector error;
        mpz_class largest = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            error[k] = (2 * volume * o[k] - uu * vw[k] - vv * wu[k] - ww * uv[k]) * sgn(volume);
            largest = std::max<mpz_class>(largest, abs(error[k]));
        }
        if (largest == 0) return {{1.0, 0.0, 0.0}};
        const auto component = [&](std::size_t k) { return mpq_class(error[k], largest).get_d(); };
        return {{component(0), component(1), component(2)}};
    }

    const Spheres& spheres;
    Unit& unit;
    EdgeFamily family;
    VARN3D::ExactFrame frame;
    double scaleBack;
    Coordinates corner[4];
};

}  // namespace support
