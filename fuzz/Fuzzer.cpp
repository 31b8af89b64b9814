// The targets under libFuzzer: vantrel_fuzz --target=NAME [libFuzzer's own options and folders]

#include "Target.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace vantrel::fuzz;

namespace {

const Target *chosen = nullptr;

} // namespace

// libFuzzer passes over options that begin with two dashes.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
    static QCoreApplication application(*argc, *argv);
    constexpr const char *option = "--target=";
    for (int i = 1; i < *argc; ++i) {
        const char *argument = (*argv)[i];
        if (std::strncmp(argument, option, std::strlen(option)) != 0)
            continue;
        for (const Target &target : targets()) {
            if (std::strcmp(target.name, argument + std::strlen(option)) == 0)
                chosen = &target;
        }
    }
    if (!chosen) {
        std::fputs("vantrel_fuzz --target=NAME …, where NAME is one of:", stderr);
        for (const Target &target : targets())
            std::fprintf(stderr, " %s", target.name);
        std::fputs("\n", stderr);
        std::exit(2);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
    chosen->run(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    return 0;
}
