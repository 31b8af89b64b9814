#include "State/PhoneWatch.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "Worker/Worker.h"

#include <algorithm>
#include <utility>

namespace vantrel {

PhoneWatch::PhoneWatch(std::function<QCoro::Task<>()> open) : m_open(std::move(open)) {
    m_timer.setObjectName(QStringLiteral("devicePoll"));
    m_timer.setParent(this);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &PhoneWatch::tick);
    connect(&m_tracker, &DeviceTracker::changed, this, &PhoneWatch::follow);
    connect(&m_tracker, &DeviceTracker::ended, this, &PhoneWatch::schedule);
}

QList<StorageShortcut> PhoneWatch::cards() const {
    QList<StorageShortcut> list;
    for (const StorageCard &card : device().cards)
        list.append({QUuid::createUuidV5(QUuid(), card.path), AndroidPath::lastComponent(card.path),
                     card.path, QStringLiteral("sdcard")});
    return list;
}

void PhoneWatch::start() {
    m_isWatching = true;
    m_tracker.start();
    schedule();
}

void PhoneWatch::stop() {
    m_isWatching = false;
    m_tracker.stop();
    m_timer.stop();
}

/// Decides when to ask again: the storage while adb tells of the phones, else the phones. Nothing is asked
/// while something is.
void PhoneWatch::schedule() {
    m_timer.stop();
    if (!m_isWatching || m_asked)
        return;
    const bool isAnyReady = std::any_of(phones().begin(), phones().end(),
                                        [](const ListedPhone &phone) { return phone.isReady(); });
    if (m_isInDoubt || !m_tracker.isTracking() || (isAnyReady && !device().isConnected))
        m_timer.start(lookInterval);
    else if (device().isConnected)
        m_timer.start(storageInterval);
}

void PhoneWatch::doubt() {
    m_isInDoubt = true;
    schedule();
}

QCoro::Task<> PhoneWatch::tick() {
    if (!m_isInDoubt && m_tracker.isTracking() && device().isConnected) {
        co_await refreshStorage();
        co_return;
    }
    // An adb that cannot track is asked to once a minute, one whose server was restarted with the next look.
    constexpr int looksInAMinute = storageInterval / lookInterval;
    if (!m_tracker.isRunning() && m_looksWithoutTracking++ % looksInAMinute == 0)
        m_tracker.start();
    co_await refresh(Spinner::hidden);
}

/// Takes what adb tells of itself.
void PhoneWatch::follow(const QList<ListedPhone> &phones) {
    m_looksWithoutTracking = 0;
    setPhones(phones);
    const QString serial = ADBClient::chosenPhone(phones, device().id);
    if (serial.isNull()) {
        ++m_token;
        m_asked = std::nullopt;
        showNone(ADBError::noDevice(), ADBClient::troubleOf(phones));
    } else if (m_asked ? *m_asked != serial : device().id != serial) {
        show(serial);
    }
    showWanted();
    schedule();
}

void PhoneWatch::showWhenReady(const QString &serial) {
    m_wanted = serial;
    showWanted();
}

void PhoneWatch::showWanted() {
    const bool isReady = std::any_of(phones().begin(), phones().end(), [this](const ListedPhone &phone) {
        return phone.isReady() && phone.serial == m_wanted;
    });
    if (isReady)
        show(std::exchange(m_wanted, QString()), Spinner::shown);
}

QCoro::Task<> PhoneWatch::refresh(Spinner spinner) {
    const bool isShown = spinner == Spinner::shown;
    if (isShown ? isRefreshing() : m_asked.has_value())
        co_return;
    if (isShown)
        m_isRefreshing = true;
    const quint64 token = ++m_token;
    m_isInDoubt = false;
    m_asked = QString();
    m_timer.stop();
    const auto look = co_await Background::run(this, &ADBClient::lookForPhones, device().id);
    if (token == m_token) {
        m_asked = std::nullopt;
        setPhones(look.phones);
        co_await apply(look.phone, look.trouble);
    }
    if (isShown)
        m_isRefreshing = false;
    showWanted();
    schedule();
}

QCoro::Task<> PhoneWatch::show(QString serial, Spinner spinner) {
    const bool isShown = spinner == Spinner::shown;
    if (isShown) { // the user's choice
        m_isRefreshing = true;
        m_wanted = QString();
    }
    const quint64 token = ++m_token;
    m_asked = serial;
    m_timer.stop();
    const auto found = co_await Background::run(this, &ADBClient::fetchDevice, serial);
    if (token == m_token) {
        m_asked = std::nullopt;
        co_await apply(found, found ? PhoneTrouble::none : ADBClient::troubleOf(found.error()));
    }
    if (isShown)
        m_isRefreshing = false;
    schedule();
}

QCoro::Task<> PhoneWatch::refreshStorage() {
    const QString serial = device().id;
    if (!device().isConnected || m_asked)
        co_return;
    const auto storage = co_await Background::run(this, &ADBClient::fetchStorage, serial);
    if (storage && device().isConnected && device().id == serial) {
        AndroidDevice known = device();
        known.usedBytes = storage->shared.used;
        known.totalBytes = storage->shared.total;
        known.cards = storage->cards;
        m_device = known;
        m_message = std::nullopt;
        Q_EMIT storageWasTold();
    }
    schedule();
}

QCoro::Task<> PhoneWatch::apply(ADBResult<AndroidDevice> found, PhoneTrouble trouble) {
    if (!found) {
        showNone(found.error(), trouble);
        co_return;
    }
    // Another phone in the old one's place is new, too: its folders are not those that the pane shows.
    const bool isNew = !device().isConnected || device().id != found->id;
    std::optional<QString> message;
    if (found->totalBytes < 0) {
        message = QStringLiteral("Its storage use could not be read. Copying still works.");
        found->usedBytes = isNew ? 0 : device().usedBytes;
        found->totalBytes = isNew ? 0 : device().totalBytes;
        found->cards = isNew ? QList<StorageCard>() : device().cards;
    }
    if (found->name != found->id)
        m_models.insert(found->id, found->name);
    m_device = *found;
    m_message = message;
    m_trouble = PhoneTrouble::none;
    setPhones(phones());
    Q_EMIT wasAsked();
    if (isNew)
        co_await m_open();
    else
        Q_EMIT storageWasTold();
}

void PhoneWatch::showNone(const ADBError &reason, PhoneTrouble trouble) {
    m_device = AndroidDevice();
    m_message = reason.errorDescription();
    m_trouble = trouble;
    Q_EMIT wasAsked();
    Q_EMIT wasLost();
}

void PhoneWatch::setPhones(const QList<ListedPhone> &phones) {
    QList<ListedPhone> named = phones;
    for (ListedPhone &phone : named)
        phone.model = m_models.value(phone.serial);
    m_phones = named;
    learnModels();
}

/// Asks for the names of phones between which there is a choice.
QCoro::Task<> PhoneWatch::learnModels() {
    const auto isReady = [](const ListedPhone &phone) { return phone.isReady(); };
    if (m_isLearningModels || std::count_if(phones().begin(), phones().end(), isReady) < 2)
        co_return;
    m_isLearningModels = true;
    for (;;) {
        const auto unknown = std::find_if(phones().begin(), phones().end(), [this](const ListedPhone &phone) {
            return phone.isReady() && !m_models.contains(phone.serial);
        });
        if (unknown == phones().end())
            break;
        const QString serial = unknown->serial;
        const auto model = co_await Background::run(this, &ADBClient::fetchModel, serial);
        m_models.insert(serial, model.value_or(QString()));
        QList<ListedPhone> named = phones();
        for (ListedPhone &phone : named)
            phone.model = m_models.value(phone.serial);
        m_phones = named;
    }
    m_isLearningModels = false;
}

} // namespace vantrel
