#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

namespace vantrel {

/// What a picture's file says of it.
struct PhotoFacts {
    QSize size;     ///< pixels, as it is seen upright; empty where not known
    QString camera; ///< empty where not known
};

/// Reads them from the first bytes of a file, or all, of that name. Any bytes are borne; blocks.
using ReadPhotoFacts = PhotoFacts (*)(const QByteArray &beginning, const QString &name);

} // namespace vantrel
