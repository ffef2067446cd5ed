#include <sstream>
#include <string>

#include "dt3Library/Varn_3D.h"
#include "dt3Library/version.h"

namespace VARN3D {

namespace {

std::string buildVersionString() {
    std::ostringstream text;
    text << "Varn3D, DEBUG, v" << getMajorVersionNumber() << "." << getMinorVersionNumber() << "."
         << getRevisionNumber();
    return text.str();
}

}  // namespace

bool isRelease() {
    return false;
}

int getMajorVersionNumber() {
    return VARN3D_VERSION_MAJOR;
}

int getMinorVersionNumber() {
    return VARN3D_VERSION_MINOR;
}

int getRevisionNumber() {
    return VARN3D_VERSION_REVISION;
}

std::string getVarn3DVersion() {
    static const std::string version = buildVersionString();
    return version;
}

}  // namespace VARN3D
