#include "ADB/ADBError.h"

namespace vantrel {

QString ADBError::errorDescription() const {
    switch (m_kind) {
    case Kind::adbNotFound:
        return QStringLiteral("Vantrel’s Android tools are missing. Please reinstall the app.");
    case Kind::noDevice:
        return QStringLiteral("No Android device connected. Plug in your phone and turn on USB debugging.");
    case Kind::noAnswer:
        return QStringLiteral("The phone does not answer.");
    case Kind::executionFailed:
    case Kind::parseFailed:
        break;
    }
    return m_message;
}

} // namespace vantrel
