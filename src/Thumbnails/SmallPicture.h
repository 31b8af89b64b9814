#pragma once

#include "Thumbnails/MediaKind.h"

#include <QByteArray>
#include <QImage>

namespace vantrel {

/// Whether bytes are all that a file holds.
enum class Extent { beginning, whole };

/// A picture of a file, upright and at most so many pixels wide and high; null when its bytes hold none, when
/// they are damaged, or when more would have to be worked on than any photo needs. Of a file's beginning only
/// what is embedded there can be had. Any bytes are borne, from whatever phone or web page they come: no
/// more than some 300 MB and a few seconds are spent on them. Any thread but the main one.
[[nodiscard]] QImage smallPicture(const QByteArray &bytes, Extent extent, MediaKind kind, int edge);

} // namespace vantrel
