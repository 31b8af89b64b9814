// The steps of the tour in which copies do not simply run through.
#include "Tour.h"

#include "TourError.h"
#include "TourPhone.h"

#include "App/Window/MainWindow.h"
#include "Kit/ToolTips.h"
#include "State/AppState.h"
#include "Views/QueueListView.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace vantrel::tour {

namespace {

const QString android = QStringLiteral("androidPane");
const QString mac = QStringLiteral("macPane");
const QString verifyCopies = QStringLiteral("Verify Copies");

} // namespace

void Tour::pauseAndResume() {
    const TransferQueue &queue = state().transfers().queue();
    m_hand.click(QStringLiteral("queue.pause"));
    m_hand.waitUntil(QStringLiteral("the pause"),
                     [&] { return !state().isTransferring() && queue.pausedCount() > 0; });
    tell(QStringLiteral("paused"), QString::number(queue.pausedCount()) + QStringLiteral(" paused"));
    m_hand.click(QStringLiteral("queue.resume"));
    m_hand.waitUntil(QStringLiteral("copies that go on"), [&] { return queue.activeCount() > 0; });
}

void Tour::openHere(const QString &name) {
    m_hand.click(QStringLiteral("home"), mac);
    const QString home = QFileInfo(m_folder).path();
    m_hand.waitUntil(QStringLiteral("the home folder"),
                     [&] { return state().macPath() == home && !state().isLoadingMac(); });
    m_hand.openEntry(mac, name);
    m_hand.waitUntil(name, [&] { return state().macPath().endsWith(name) && !state().isLoadingMac(); });
}

QString Tour::copyTheFolder() {
    m_hand.markEntry(android, m_folderName);
    m_hand.click(QStringLiteral("transferToMac"));
    waitForQueue();
    return state().queue().first().progressLabel();
}

void Tour::copyAgain() {
    m_hand.click(QStringLiteral("queue.clear"));
    const QString end = copyTheFolder();
    if (!end.endsWith(QStringLiteral(" already there")))
        throw TourError(QStringLiteral("the second copy brings something: ") + end);
    tell(QStringLiteral("second-copy"), end);
}

void Tour::keepBoth() {
    const QString folder = state().macPath() + QLatin1Char('/') + m_folderName;
    const QString name = m_phone.manyFiles().first();
    const QByteArray mine = "an older picture of mine";
    QFile file(folder + QLatin1Char('/') + name);
    if (!file.open(QIODevice::WriteOnly) || file.write(mine) != mine.size())
        throw TourError(file.errorString());
    file.close();
    copyTheFolder();
    if (state().transfers().queue().nameTakenCount() != 1)
        throw TourError(QStringLiteral("another content was not noticed"));
    tell(QStringLiteral("name-taken"), state().queue().first().progressLabel());
    m_hand.pressFirstAction();
    waitForQueue();
    if (!file.open(QIODevice::ReadOnly) || file.readAll() != mine)
        throw TourError(QStringLiteral("what was there is not there any more"));
    const QString second =
        QFileInfo(name).completeBaseName() + QStringLiteral(" 2.") + QFileInfo(name).suffix();
    compare(state().androidCurrentPath() + QLatin1Char('/') + m_folderName + QLatin1Char('/') + name,
            folder + QLatin1Char('/') + second);
    tell(QStringLiteral("kept-both"), state().queue().first().progressLabel());
}

void Tour::failInFolder() {
    const QString bad = m_phone.manyFiles().at(2);
    if (!m_phone.refuse(state().androidCurrentPath() + QLatin1Char('/') + m_folderName + QLatin1Char('/') +
                        bad))
        return;
    openHere(QStringLiteral("Videos"));
    const QString end = copyTheFolder();
    auto *list = m_window.findChild<QueueListView *>();
    const QRect row = list->visualRect(list->model()->index(0, 0));
    QTest::mouseMove(list->viewport(), row.center());
    m_hand.waitUntil(QStringLiteral("the reason"), [&] { return ToolTips::text().contains(bad); });
    tell(QStringLiteral("folder-failed"), end);
    m_phone.allow();
    m_hand.pressFirstAction();
    waitForQueue();
    tell(QStringLiteral("tried-again"), state().queue().first().progressLabel());
}

void Tour::verify() {
    openHere(QStringLiteral("Music"));
    m_hand.choose(verifyCopies);
    const QString end = copyTheFolder();
    if (end != QStringLiteral("Verified"))
        throw TourError(QStringLiteral("a verified copy is ") + end);
    m_hand.choose(verifyCopies);
    tell(QStringLiteral("verified"), end);
}

void Tour::interrupt() {
    const QStringList film = m_phone.film();
    if (film.isEmpty())
        return;
    m_hand.click(QStringLiteral("queue.clear"));
    openHere(QStringLiteral("Documents"));
    openPhoneFolder({film.first()});
    m_hand.markEntry(android, film.last());
    const QString source = state().androidCurrentPath() + QLatin1Char('/') + film.last();
    m_phone.setSpeed(12);
    m_hand.click(QStringLiteral("transferToMac"));
    const auto fraction = [this] {
        const auto *progress = state().queue().first().status.progress();
        return progress ? progress->fraction : 0;
    };
    m_hand.waitUntil(QStringLiteral("the middle of the film"), [&] { return fraction() > 0.4; });
    m_phone.unplug();
    m_hand.waitUntil(QStringLiteral("the phone's absence"), [this] {
        const auto *waiting = state().queue().first().status.as<QueueItemStatus::Waiting>();
        return waiting && waiting->forPhone && !state().device().isConnected;
    });
    tell(QStringLiteral("interrupted"), state().queue().first().progressLabel());
    m_phone.setSpeed(2); // slow enough to be asked in the middle
    m_phone.plug();
    m_hand.waitUntil(QStringLiteral("the film going on"), [&] { return fraction() > 0; });
    if (fraction() < 0.3)
        throw TourError(QStringLiteral("the film begins again"));
    m_hand.waitUntil(QStringLiteral("a speed"), [&] { return fraction() > 0.5; });
    tell(QStringLiteral("continued"), state().queue().first().progressLabel());
    askAtClosing();
    m_phone.setSpeed(0);
    waitForQueue();
    compare(source, state().macPath() + QLatin1Char('/') + film.last());
}

void Tour::askAtClosing() {
    m_hand.click(QStringLiteral("window.close"));
    waitForSheet();
    tell(QStringLiteral("closing"), QStringLiteral("the window asks before it closes"));
    m_hand.click(QStringLiteral("quit.close"));
}

} // namespace vantrel::tour
