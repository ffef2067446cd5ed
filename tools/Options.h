#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/ClipPlane.h"
#include "tools/ReadingOptions.h"

namespace tool {

/// What the command line asks for. An empty name means that the file is not wanted.
struct Options {
    /// Null when the command line was answered already (help or version): nothing is left to do.
    /// Throws InputError for a command line that makes no sense.
    static std::optional<Options> parse(int argc, const char* const* argv);

    std::string input;
    ReadingOptions reading;
    std::string vtk;
    std::string geomview;
    std::string medit;
    /// The name that TetGen's files have in common.
    std::string tetgen;
    std::string hull;
    std::string duplicates;
    std::vector<ClipPlane> clipPlanes;
    bool bAscii = false;
    bool bCheck = false;
    bool bStatistics = false;
    bool bQuiet = false;

  private:
    void refuseSenseless() const;
};

}  // namespace tool
