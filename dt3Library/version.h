#pragma once

/// The first number of the library's version, for hosts that tell versions apart when they are
/// compiled. The version stands here and nowhere else.
#define VARN3D_VERSION_MAJOR 0
/// The second number.
#define VARN3D_VERSION_MINOR 99
/// The third number.
#define VARN3D_VERSION_REVISION 0

/// All three as one number that grows from version to version: 9900 for 0.99.0, 10000 for 1.0.0.
#define VARN3D_VERSION \
    (VARN3D_VERSION_MAJOR * 10000 + VARN3D_VERSION_MINOR * 100 + VARN3D_VERSION_REVISION)
