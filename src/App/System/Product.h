#pragma once

#include <QString>

/// What this product is called, and where it lives: the one place for names, addresses and the copyright
/// line.
namespace vantrel::product {

inline QString name() {
    return QStringLiteral("Vantrel");
}

/// The reverse domain name that desktops know the program by: desktop file, metainfo, bundle.
inline QString identifier() {
    return QStringLiteral("com.vantrelapp.Vantrel");
}

inline QString website() {
    return QStringLiteral("https://vantrelapp.com");
}

/// The web site as it is shown.
inline QString websiteDomain() {
    return QStringLiteral("vantrelapp.com");
}

inline QString feedbackAddress() {
    return QStringLiteral("feedback@vantrelapp.com");
}

inline QString copyright() {
    return QStringLiteral("Copyright © 2026 The Vantrel authors");
}

} // namespace vantrel::product
