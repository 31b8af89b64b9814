#include <QCoreApplication>

#include <gtest/gtest.h>

#ifdef __SANITIZE_THREAD__
#include <cstdarg>
#include <dlfcn.h>
#include <sched.h>

/// The toolkit starts tools by a clone that borrows this process's memory, and with it ThreadSanitizer's
/// notes on the thread: it would not be watched any more. Here the child gets a copy.
extern "C" int clone(int (*function)(void *), void *stack, int flags, void *argument, ...) {
    va_list rest;
    va_start(rest, argument);
    auto *const parentId = va_arg(rest, pid_t *);
    va_end(rest);
    using Clone = int (*)(int (*)(void *), void *, int, void *, ...);
    static const auto next = reinterpret_cast<Clone>(dlsym(RTLD_NEXT, "clone"));
    return next(function, stack, flags & ~(CLONE_VM | CLONE_VFORK), argument, parentId);
}
#endif

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
