#pragma once

/// The version of the library, for hosts that must tell versions apart when they are compiled. This
/// is the one place where it stands.
#define VARN3D_VERSION_MAJOR 0
#define VARN3D_VERSION_MINOR 99
#define VARN3D_VERSION_REVISION 0

/// The same as one number that grows from version to version: 9900 for 0.99.0, 10000 for 1.0.0.
#define VARN3D_VERSION \
    (VARN3D_VERSION_MAJOR * 10000 + VARN3D_VERSION_MINOR * 100 + VARN3D_VERSION_REVISION)
