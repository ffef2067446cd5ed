#include "dt3Library/VarnException.h"

namespace VARN3D {

const char* VarnException::what() const noexcept {
    return "\n  VARN EXCEPTION due to a bug _or_ wrong usage of Varn. If you think it is a \n"
           "  bug then please report this incident and it will be fixed quickly: "
           "varn3d@example.org";
}

}  // namespace VARN3D
