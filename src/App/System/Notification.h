#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <optional>

namespace vantrel {

/// The program's one notification, shown by the desktop. What is shown anew takes the place of what is there.
/// Where the desktop shows none, nothing happens. It goes with this object, since nobody would hear a click
/// on it any more. Main thread; nothing here waits.
class Notification : public QObject {
    Q_OBJECT

public:
    explicit Notification(const QDBusConnection &bus, QObject *parent = nullptr);
    ~Notification() override;

    /// `heading` and `detail` are texts of the program's own: some desktops read markup in the detail.
    void show(const QString &heading, const QString &detail);
    void withdraw();

Q_SIGNALS:
    /// The user has clicked on it; with the desktop's token for bringing the window to the front, or an empty
    /// one.
    void clicked(const QByteArray &activationToken);

private:
    struct Text {
        QString heading;
        QString detail;
    };

    Q_SLOT void takeSignal(const QDBusMessage &message);
    void listen();
    void send();
    [[nodiscard]] static QDBusMessage call(const QString &method);

    QDBusConnection m_bus;
    std::optional<Text> m_text; ///< what should be there
    bool m_isNew = false;       ///< the desktop has not been told of it
    bool m_isAsking = false;    ///< and has not answered yet
    bool m_isListening = false;
    uint m_id = 0;    ///< the desktop's, of what is there; 0: nothing
    QString m_server; ///< who shows it
    QByteArray m_token;
};

} // namespace vantrel
