// A plug-in that any program of the toolkit loads when QT_QPA_GENERIC_PLUGINS names it, so that the program
// under test is the one that users get. After the first painted frame it writes "SECONDS\n", the monotonic
// clock, into the file that VANTREL_FIRST_FRAME names; with VANTREL_QUIT_AFTER set to milliseconds it then
// quits the program.

#include <QEvent>
#include <QFile>
#include <QGenericPlugin>
#include <QGuiApplication>
#include <QTimer>

#include <ctime>
#include <limits>

namespace {

class FirstFrame : public QObject {
public:
    FirstFrame() { qGuiApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (!m_seen && event->type() == QEvent::Paint && watched->isWidgetType()) {
            m_seen = true;
            // The frame is on its way to the screen when the event loop gets to this, ahead of all that
            // waits.
            QCoreApplication::postEvent(this, new QEvent(QEvent::User), std::numeric_limits<int>::max());
        }
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
        if (file.open(QIODevice::WriteOnly))
            file.write(QByteArray::number(double(now.tv_sec) + double(now.tv_nsec) / 1e9, 'f', 6) + '\n');
        file.close();
        if (qEnvironmentVariableIsSet("VANTREL_QUIT_AFTER"))
            QTimer::singleShot(qEnvironmentVariableIntValue("VANTREL_QUIT_AFTER"), qGuiApp,
                               &QGuiApplication::quit);
    }

    bool m_seen = false;
};

class FirstFramePlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "FirstFrame.json")

public:
    QObject *create(const QString &, const QString &) override { return new FirstFrame; }
};

} // namespace

#include "FirstFrame.moc"
