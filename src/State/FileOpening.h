#pragma once

#include "State/FilePreview.h"

#include <QCoroTask>
#include <QObject>
#include <QProperty>

namespace vantrel {

/// The file of the phone that is being fetched for the user to look at; one at a time. Main thread only.
class FileOpening : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~FileOpening() override { stop(); }

    [[nodiscard]] bool isUnderWay() const { return m_isUnderWay; }
    /// How much of the file has come, of 100; 0 as long as that is not known.
    [[nodiscard]] int percent() const { return m_percent; }

    /// What became of it: where the file lies now, or why not, as the user reads it. Neither when it was
    /// given up.
    struct Outcome {
        QString path = {};
        QString reason = {};
    };
    /// Fetches the file. Not to be called while another one is.
    QCoro::Task<Outcome> fetch(FilePreview::Request request);
    /// Gives it up, if it is under way. Nothing of the file is left.
    void stop() { m_stop.request_stop(); }

Q_SIGNALS:
    void isUnderWayChanged();
    void percentChanged();

private:
    std::stop_source m_stop;
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(FileOpening, bool, m_isUnderWay, false,
                                         &FileOpening::isUnderWayChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(FileOpening, int, m_percent, 0, &FileOpening::percentChanged)
};

} // namespace vantrel
