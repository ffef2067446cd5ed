// Any bytes as a file of points: either finite points come out, or a one-line error.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tools/InputError.h"
#include "tools/PointFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view content(reinterpret_cast<const char*>(data), size);
    tool::ReadingOptions options;
    options.bAttributes = true;
    for (const char* name : {"points", "points.ply", "points.obj", "points.off", "points.node"}) {
        try {
            const tool::PointSet set = tool::parsePoints(content, name, options);
            if (set.points.empty()) std::abort();
            for (const VARN3D::Point3& p : set.points)
                if (!std::isfinite(p.x()) || !std::isfinite(p.y()) || !std::isfinite(p.z()))
                    std::abort();
            for (const tool::Attribute& attribute : set.attributes)
                if (attribute.values.size() != set.points.size()) std::abort();
        } catch (const tool::InputError& error) {
            for (const char* c = error.what(); *c != '\0'; ++c)
                if (static_cast<unsigned char>(*c) < ' ') std::abort();
        }
    }
    return 0;
}
