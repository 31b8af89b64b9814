#include "App/System/FontConfiguration.h"

#ifdef VANTREL_HAS_FONTCONFIG
#include <fontconfig/fontconfig.h>
#endif

#include <thread>

namespace vantrel {

namespace {

std::jthread reader;

} // namespace

void readFontConfiguration() {
#ifdef VANTREL_HAS_FONTCONFIG
    reader = std::jthread([] { FcInit(); });
#endif
}

void awaitFontConfiguration() {
    if (reader.joinable())
        reader.join();
}

} // namespace vantrel
