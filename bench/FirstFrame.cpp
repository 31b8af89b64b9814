// A plug-in that any program of the toolkit loads when QT_QPA_GENERIC_PLUGINS names it, so that the program
// under test is the one that users get. Into the file that VANTREL_FIRST_FRAME names it writes lines
// "SECONDS\n", the monotonic clock: after the first painted frame, and after the first one that shows the
// widget whose object name VANTREL_FULL_FRAME_SHOWS gives. With VANTREL_QUIT_AFTER set to milliseconds it
// quits the program that long after the first frame.

#include <QEvent>
#include <QFile>
#include <QGenericPlugin>
#include <QGuiApplication>
#include <QTimer>

#include <ctime>
#include <limits>
#include <utility>

namespace {

class FirstFrame : public QObject {
public:
    FirstFrame() { qGuiApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() != QEvent::Paint || !watched->isWidgetType())
            return false;
        const bool isFirst = !std::exchange(m_seenFirst, true);
        const bool isFull = !m_seenFull && !m_content.isEmpty() && watched->objectName() == m_content;
        m_seenFull |= isFull;
        // The frame is on its way to the screen when the event loop gets to this, ahead of all that waits.
        if (isFirst || isFull)
            QCoreApplication::postEvent(this, new QEvent(QEvent::User), std::numeric_limits<int>::max());
        if (isFirst && qEnvironmentVariableIsSet("VANTREL_QUIT_AFTER"))
            QTimer::singleShot(qEnvironmentVariableIntValue("VANTREL_QUIT_AFTER"), qGuiApp,
                               &QGuiApplication::quit);
        return false;
    }

    bool event(QEvent *event) override {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        write();
        return true;
    }

private:
    void write() {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        QFile file(qEnvironmentVariable("VANTREL_FIRST_FRAME"));
        if (file.open(QIODevice::Append))
            file.write(QByteArray::number(double(now.tv_sec) + double(now.tv_nsec) / 1e9, 'f', 6) + '\n');
    }

    const QString m_content = qEnvironmentVariable("VANTREL_FULL_FRAME_SHOWS");
    bool m_seenFirst = false;
    bool m_seenFull = false;
};

class FirstFramePlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "FirstFrame.json")

public:
    QObject *create(const QString &, const QString &) override { return new FirstFrame; }
};

} // namespace

#include "FirstFrame.moc"
