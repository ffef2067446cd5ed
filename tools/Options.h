#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ClipPlane.h"
#include "PointFile.h"

namespace tool {

/// What the command line asks for. An empty name means that the file is not wanted.
struct Options {
    /// Null when the command line was answered already (help or version): nothing is left to do.
    /// Throws InputError for a command line that makes no sense.
    static std::optional<Options> parse(int argc, const char* const* argv);

    bool needsIndexedMesh() const;

    std::string input;
    PointFormat format = PointFormat::automatic;
    std::string vtk;
    std::string geomview;
    std::string medit;
    std::string tetgenNodes;
    std::string tetgenElements;
    std::string duplicates;
    std::vector<ClipPlane> clipPlanes;
    bool bCheck = false;
    bool bStatistics = false;
};

}  // namespace tool
