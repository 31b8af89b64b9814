#pragma once

#include <QDBusConnection>
#include <QString>

#include <functional>

class QObject;

namespace vantrel {

/// Asks the desktop's file manager over D-Bus to show a file, selected, in its folder. When there is none
/// that can, or it does not answer for a few seconds, `onFailure` is called, unless the context is gone by
/// then. Returns at once.
void showInFileManager(const QDBusConnection &bus, const QString &path, QObject *context,
                       const std::function<void()> &onFailure);

} // namespace vantrel
