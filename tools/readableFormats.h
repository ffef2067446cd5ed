#pragma once

namespace tool {

/// For messages about what can't be read.
const char* const READABLE_FORMATS =
    "varn3d reads text (.xyz .txt .csv .pts), PLY, OBJ, OFF and TetGen's .node";

}  // namespace tool
