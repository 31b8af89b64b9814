#pragma once

#include <QString>

#include <stdexcept>

namespace vantrel::tour {

/// The tour cannot go on; what() says why.
class TourError : public std::runtime_error {
public:
    explicit TourError(const QString &reason) : std::runtime_error(reason.toStdString()) {}
};

} // namespace vantrel::tour
