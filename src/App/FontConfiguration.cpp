#include "App/FontConfiguration.h"

#ifdef VANTREL_HAS_FONTCONFIG
#include <fontconfig/fontconfig.h>
#endif

namespace vantrel {

std::jthread readFontConfiguration() {
#ifdef VANTREL_HAS_FONTCONFIG
    return std::jthread([] { FcInit(); });
#else
    return {};
#endif
}

} // namespace vantrel
