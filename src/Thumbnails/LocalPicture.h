#pragma once

#include <QImage>
#include <QString>

namespace vantrel {

/// The picture of a file of this computer, its longest side at least `edge` pixels where it has them: the
/// desktop's thumbnail of it, or one that is made of the file and kept there. Null when there is none. Blocks
/// as long as the disk and the decoder do; not on the main thread.
[[nodiscard]] QImage localPicture(const QString &path, int edge);

} // namespace vantrel
