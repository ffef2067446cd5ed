// Any bytes as a file of points: either finite points come out, or a one-line error.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "InputError.h"
#include "PointFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view content(reinterpret_cast<const char*>(data), size);
    for (const char* name : {"points", "points.ply", "points.xyz", "points.csv"}) {
        try {
            const auto points = tool::parsePoints(content, name, tool::PointFormat::automatic);
            if (points.empty()) std::abort();
            for (const VARN3D::Point3& p : points)
                if (!std::isfinite(p.x()) || !std::isfinite(p.y()) || !std::isfinite(p.z()))
                    std::abort();
        } catch (const tool::InputError& error) {
            for (const char* c = error.what(); *c != '\0'; ++c)
                if (static_cast<unsigned char>(*c) < ' ') std::abort();
        }
    }
    return 0;
}
