#include "App/Window/WindowMargins.h"

#include <QGuiApplication>
#include <QMargins>
#include <QWindow>

#ifdef VANTREL_HAS_QPA
#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformwindow.h>
#endif

namespace vantrel {

namespace {

using SetMargins = void (*)(QWindow *, const QMargins &);

SetMargins toolkitsWay() {
#ifdef VANTREL_HAS_QPA
    QPlatformNativeInterface *native = QGuiApplication::platformNativeInterface();
    if (native && QGuiApplication::platformName().startsWith(QLatin1StringView("wayland")) &&
        qstrcmp(qVersion(), QT_VERSION_STR) == 0) {
        // It gives functions of any kind as one kind.
        return reinterpret_cast<SetMargins>(
            reinterpret_cast<void (*)()>(native->nativeResourceFunctionForWindow("setmargins")));
    }
#endif
    return nullptr;
}

} // namespace

bool mayHaveWindowMargins() {
    return toolkitsWay();
}

void setWindowMargins(QWindow *window, const QMargins &margins) {
    if (const SetMargins set = toolkitsWay())
        set(window, margins);
}

QSize nativeSize(const QWindow *window) {
#ifdef VANTREL_HAS_QPA
    if (window->handle())
        return window->handle()->geometry().size();
#endif
    return window->size();
}

} // namespace vantrel
