#pragma once

#include <QString>

namespace vantrel {

/// A calculated number of bytes without its fraction; what 64 bits cannot hold becomes the nearest that they
/// can, and what is no number 0.
[[nodiscard]] qint64 wholeBytes(double bytes);

/// A number of things, such as "1,240": with separators of thousands in every locale, as it writes them.
[[nodiscard]] QString formatCount(qint64 count);

/// A speed as a file size for each second, such as "4.2 MB/s"; an em dash for what is no speed.
[[nodiscard]] QString formatTransferRate(double bytesPerSecond);

/// A time in seconds as "HH:MM:SS", rounded to nearest, with as many hours as it takes; "00:00:00" for what
/// is over. An em dash for 1,000 hours and more, which nobody waits for, and for what is no time.
[[nodiscard]] QString formatDuration(double seconds);

} // namespace vantrel
