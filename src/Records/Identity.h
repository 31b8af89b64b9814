#pragma once

#include <QRandomGenerator>
#include <QUuid>

namespace vantrel {

/// A fresh random identity (version 4 UUID). Any thread. QUuid::createUuid() asks the operating system for
/// every one of them, which is felt in a listing of 100,000 entries; this draws from a generator per thread
/// that was seeded by the operating system once.
[[nodiscard]] inline QUuid newIdentity() {
    thread_local QRandomGenerator generator = QRandomGenerator::securelySeeded();
    const quint64 high = generator.generate64();
    const quint64 low = generator.generate64();
    // Version 4 in the upper half of data3, the RFC 4122 variant in the top bits of data4.
    return QUuid(static_cast<uint>(high >> 32), static_cast<ushort>(high >> 16),
                 static_cast<ushort>((high & 0x0fffU) | 0x4000U),
                 static_cast<uchar>(((low >> 56) & 0x3fU) | 0x80U), static_cast<uchar>(low >> 48),
                 static_cast<uchar>(low >> 40), static_cast<uchar>(low >> 32), static_cast<uchar>(low >> 24),
                 static_cast<uchar>(low >> 16), static_cast<uchar>(low >> 8), static_cast<uchar>(low));
}

} // namespace vantrel
