#pragma once

#include "ADB/DeviceTracker.h"
#include "Records/AndroidDevice.h"
#include "Records/StorageShortcut.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>
#include <QProperty>
#include <QTimer>

#include <functional>
#include <optional>

namespace vantrel {

/// Which phones there are, and the one whose storage is shown: it stays shown while it is ready, whatever
/// else is plugged in; then the first one that is ready takes its place.
///
/// While it watches, adb itself tells of every phone that comes and goes, and nothing is asked but the
/// storage in use, once a minute. When adb does not tell, phones are looked for every three seconds. Main
/// thread only.
class PhoneWatch : public QObject {
    Q_OBJECT

public:
    /// How loudly a refresh goes about its work: a visible one sets isRefreshing.
    enum class Spinner { hidden, shown };
    /// From the end of one look to the next, while adb does not tell.
    static constexpr std::chrono::seconds lookInterval{3};
    static constexpr std::chrono::seconds storageInterval{60};

    /// `open` is called, and awaited by a refresh, when another phone is shown than before.
    explicit PhoneWatch(std::function<QCoro::Task<>()> open);

    /// The phone that is shown, or the absent one.
    [[nodiscard]] const AndroidDevice &device() const { return m_device.value(); }
    /// All that adb lists, in its order. Models are known where more than one phone is ready.
    [[nodiscard]] const QList<ListedPhone> &phones() const { return m_phones.value(); }
    /// The cards and sticks in the phone that is shown; each keeps its identity while the program runs.
    [[nodiscard]] QList<StorageShortcut> cards() const;
    /// The last problem with the phone, in words.
    [[nodiscard]] const std::optional<QString> &message() const { return m_message.value(); }
    void setMessage(const std::optional<QString> &message) { m_message = message; }
    /// Why no phone is shown; none while one is, and before the first look.
    [[nodiscard]] PhoneTrouble trouble() const { return m_trouble; }
    [[nodiscard]] bool isRefreshing() const { return m_isRefreshing; }

    /// Looks for phones. A hidden refresh does nothing while another is asking, a shown one supersedes it.
    QCoro::Task<> refresh(Spinner spinner);
    /// Shows one of the phones that are ready.
    QCoro::Task<> show(QString serial, Spinner spinner = Spinner::hidden);
    /// Shows the phone as soon as adb lists it as ready.
    void showWhenReady(const QString &serial);
    /// Asks how much of the storage is in use; a phone that does not say keeps what is known of it.
    QCoro::Task<> refreshStorage();
    /// To be called when the phone that is shown seemed to have left: it is looked for a little later,
    /// whatever adb tells.
    void doubt();
    /// Follows the phones from now on, and no longer.
    void start();
    void stop();

Q_SIGNALS:
    void deviceChanged();
    void phonesChanged();
    void messageChanged();
    void troubleChanged();
    void isRefreshingChanged();
    /// It is known anew which phone is shown, or that there is none.
    void wasAsked();
    /// There is none.
    void wasLost();
    /// It is known anew what storage the phone has, the same phone as before.
    void storageWasTold();

private:
    void follow(const QList<ListedPhone> &phones);
    void showWanted();
    void schedule();
    QCoro::Task<> tick();
    QCoro::Task<> apply(ADBResult<AndroidDevice> found, PhoneTrouble trouble);
    QCoro::Task<> learnModels();
    void setPhones(const QList<ListedPhone> &phones);
    void showNone(const ADBError &reason, PhoneTrouble trouble);

    const std::function<QCoro::Task<>()> m_open;
    DeviceTracker m_tracker;
    QTimer m_timer;
    bool m_isWatching = false;
    bool m_isInDoubt = false;       ///< whether the phone that is shown is there
    int m_looksWithoutTracking = 0; ///< since the tracker was last tried
    quint64 m_token = 0;            ///< of the newest question; what an older one learns is dropped
    QString m_wanted;               ///< to be shown once it is ready; empty for none
    std::optional<QString> m_asked; ///< the phone that is asked about now; empty where any will do
    bool m_isLearningModels = false;
    QHash<QString, QString> m_models; ///< by serial
    Q_OBJECT_BINDABLE_PROPERTY(PhoneWatch, AndroidDevice, m_device, &PhoneWatch::deviceChanged)
    Q_OBJECT_BINDABLE_PROPERTY(PhoneWatch, QList<ListedPhone>, m_phones, &PhoneWatch::phonesChanged)
    Q_OBJECT_BINDABLE_PROPERTY(PhoneWatch, std::optional<QString>, m_message, &PhoneWatch::messageChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PhoneWatch, PhoneTrouble, m_trouble, PhoneTrouble::none,
                                         &PhoneWatch::troubleChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PhoneWatch, bool, m_isRefreshing, false,
                                         &PhoneWatch::isRefreshingChanged)
};

} // namespace vantrel
