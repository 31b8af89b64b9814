#include "Tour.h"

#include "TourError.h"
#include "TourPhone.h"

#include "App/Window/MainWindow.h"
#include "Kit/AppStyle.h"
#include "Kit/ToolTips.h"
#include "Records/FileSizeFormat.h"
#include "State/AppState.h"
#include "Views/FileDrag.h"
#include "Views/FileItemsModel.h"
#include "Views/FileItemsView.h"
#include "Views/FilePaneView.h"
#include "Views/QueueListView.h"

#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QScrollBar>
#include <QTest>

#include <algorithm>
#include <cstdio>

namespace vantrel::tour {

namespace {

const QString android = QStringLiteral("androidPane");
const QString mac = QStringLiteral("macPane");

bool shows(const QList<FileItem> &items, const QString &name) {
    return std::any_of(items.begin(), items.end(), [&](const FileItem &item) { return item.name == name; });
}

/// What hangs on the pointer, which a picture of the window does not hold.
class PictureOfDrag : public QWidget {
public:
    PictureOfDrag(const QList<FileItem> &items, QPoint pointer, QWidget *window)
        : QWidget(window), m_items(items) {
        const QPixmap picture = dragPicture(items, 1);
        setGeometry(QRect(pointer + QPoint(12, 8), picture.size()));
        show();
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.drawPixmap(0, 0, dragPicture(m_items, painter.device()->devicePixelRatioF()));
    }

private:
    QList<FileItem> m_items;
};

} // namespace

Tour::Tour(MainWindow &window, TourPhone &phone, const Hand &hand, const Pictures &pictures, QString folder)
    : m_window(window), m_phone(phone), m_hand(hand), m_pictures(pictures), m_folder(std::move(folder)) {}

AppState &Tour::state() const {
    return m_window.state();
}

void Tour::tell(const QString &name, const QString &text) {
    m_pictures.take(m_window, QStringLiteral("%1-%2").arg(++m_step, 2, 10, QLatin1Char('0')).arg(name));
    std::printf("%2d  %-16s %s\n", m_step, qPrintable(name), qPrintable(text));
    std::fflush(stdout);
}

/// Prints the rows of the queue as they move on, a line for each quarter of a copy.
void Tour::watchRows() {
    const auto onRow = [this](const QModelIndex &changed) {
        const QueueItem &item = state().queue().at(changed.row());
        constexpr int end = 5;
        const auto *progress = item.status.progress();
        const int quarter = progress ? int(progress->fraction * 4) : end;
        if (item.status.is<QueueItemStatus::Waiting>() || m_quartersTold.value(item.id, -1) >= quarter)
            return;
        m_quartersTold.insert(item.id, quarter);
        std::printf("      %-5s %-28s %s\n", qPrintable(item.percentLabel()), qPrintable(item.name),
                    qPrintable(item.progressLabel()));
    };
    QObject::connect(state().transfers().queueModel(), &QAbstractItemModel::dataChanged, &m_window, onRow);
}

void Tour::take() {
    watchRows();
    startWithoutPhone();
    connectPhone();
    readToolTip();
    showAbout();
    showMenuAndKeys();
    connectOverWifi();
    selectFiles();
    showDetails();
    dragOver();
    watchCopy();
    finishCopies();
    copyToPhone();
    failCopy();
    filter();
    searchEverywhere();
    showEmptyFolder();
    showGrid();
    readLargeTextsFromTheRight();
    goDark();
    fillQueue();
    copyFolders();
    copyAgain();
    keepBoth();
    failInFolder();
    verify();
    interrupt();
    std::printf("    %d files compared, %s, all equal\n", m_comparedFiles,
                qPrintable(formatFileSize(m_comparedBytes)));
}

void Tour::startWithoutPhone() {
    m_hand.waitUntil(QStringLiteral("the first look for a phone"), [this] {
        return state().deviceStatusMessage() && !state().isRefreshingDevice() && !state().isLoadingMac();
    });
    if (state().device().isConnected)
        throw TourError(QStringLiteral("a phone was found before one was plugged in"));
    tell(QStringLiteral("no-phone"), *state().deviceStatusMessage());
    PhoneTrouble before = state().phones().trouble();
    for (const char *name :
         {"unauthorized", "offline", "no permissions (user is not in the group)", "recovery"}) {
        if (!m_phone.beInTrouble(QLatin1String(name)))
            return;
        m_hand.click(QStringLiteral("sidebar.refresh"));
        m_hand.waitUntil(QLatin1String(name), [&] {
            return state().phones().trouble() != before && !state().isRefreshingDevice();
        });
        before = state().phones().trouble();
        tell(QStringLiteral("phone-") + QString(QLatin1String(name))
                                            .section(QLatin1String(" ("), 0, 0)
                                            .replace(QLatin1Char(' '), QLatin1Char('-')),
             *state().deviceStatusMessage());
    }
}

void Tour::connectPhone() {
    m_phone.plug();
    m_hand.click(QStringLiteral("sidebar.refresh"));
    m_hand.waitUntil(QStringLiteral("the phone"), [this] {
        return state().device().isConnected && !state().isLoadingAndroid() && !state().isRefreshingDevice() &&
               !state().androidItems().isEmpty();
    });
    const AndroidDevice &device = state().device();
    tell(QStringLiteral("connected"),
         QStringLiteral("%1 (%2), %3 of %4 used, %5 entries")
             .arg(device.name, device.id, formatFileSize(device.usedBytes), formatFileSize(device.totalBytes),
                  QString::number(state().androidItems().size())));
}

void Tour::readToolTip() {
    m_window.setAttribute(Qt::WA_AlwaysShowToolTips); // where no window manager makes it the active one
    m_hand.pointAt(QStringLiteral("transferToMac"));
    m_hand.waitUntil(QStringLiteral("the tool tip"), [] { return !ToolTips::text().isEmpty(); });
    tell(QStringLiteral("tool-tip"), ToolTips::text());
}

void Tour::waitForSheet() {
    const QWidget *card = m_hand.control(QStringLiteral("sheet.card"));
    m_hand.waitUntil(QStringLiteral("the end of its slide"), [&] { return card->y() > 0; });
}

void Tour::showMenuAndKeys() {
    m_hand.click(QStringLiteral("applicationMenu"));
    (void)m_hand.shownMenu();
    tell(QStringLiteral("menu"), QStringLiteral("the menu is open"));
    m_hand.chooseShown(QStringLiteral("Keyboard\tF1"));
    waitForSheet();
    tell(QStringLiteral("keys"), QStringLiteral("what the keys do"));
    m_hand.click(QStringLiteral("keyboard.close"));
}

void Tour::connectOverWifi() {
    m_hand.choose(QStringLiteral("Connect over Wi-Fi…"));
    waitForSheet();
    tell(QStringLiteral("wifi"), QStringLiteral("a phone on the network is asked for"));
    m_hand.click(QStringLiteral("wireless.cancel"));
}

/// As those see the window who have told the desktop how they read.
void Tour::readLargeTextsFromTheRight() {
    AppStyle::setTextScale(1.5);
    tell(QStringLiteral("large-texts"), QStringLiteral("texts are half as large again"));
    AppTheme::setContrast(Contrast::high);
    tell(QStringLiteral("contrast"), QStringLiteral("inks and lines are strong"));
    AppStyle::setTextScale(1);
    AppTheme::setContrast(Contrast::normal);
    QApplication::setLayoutDirection(Qt::RightToLeft);
    tell(QStringLiteral("from-the-right"), QStringLiteral("everything is mirrored"));
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

void Tour::showDetails() {
    FileItemsView *list = m_hand.entries(android);
    list->setFocus(Qt::TabFocusReason);
    m_hand.press(list, Qt::Key_F10, Qt::ShiftModifier);
    (void)m_hand.shownMenu();
    tell(QStringLiteral("entry-menu"), QStringLiteral("the menu of an entry is open"));
    m_hand.chooseShown(QStringLiteral("Details…"));
    waitForSheet();
    m_hand.waitUntil(QStringLiteral("the kind or the number"), [this] {
        const auto isSeen = [this](const char *name) {
            return m_window.findChild<QWidget *>(QLatin1String(name))->isVisible();
        };
        return isSeen("details.Kind") || isSeen("details.Selected");
    });
    tell(QStringLiteral("details"), QStringLiteral("the details are open"));
    m_hand.click(QStringLiteral("details.close"));
    list->clearFocus();
}

/// What the pane says while entries of the other one are above it.
void Tour::dragOver() {
    auto *pane = m_hand.control(mac)->findChild<FilePaneView *>();
    const DraggedEntries dragged(BrowserSide::android, state().device().id,
                                 state().pane(BrowserSide::android).selectedItems());
    QDragEnterEvent enter(pane->rect().center(), Qt::CopyAction, &dragged, Qt::LeftButton, {});
    QApplication::sendEvent(pane, &enter);
    if (!enter.isAccepted())
        throw TourError(QStringLiteral("what is dragged is not taken"));
    {
        const PictureOfDrag picture(dragged.items(), pane->mapTo(&m_window, pane->rect().center()),
                                    &m_window);
        tell(QStringLiteral("drag"), QStringLiteral("a selection is dragged over the other pane"));
    }
    QDragLeaveEvent leave;
    QApplication::sendEvent(pane, &leave);
}

void Tour::showEmptyFolder() {
    m_hand.type(QStringLiteral("searchField"), QStringLiteral("nothing is called this"));
    m_hand.waitUntil(QStringLiteral("no hit"), [this] { return state().displayedAndroidItems().isEmpty(); });
    const QString name = QStringLiteral("Nothing yet");
    QDir(QFileInfo(m_folder).path()).mkdir(name);
    openHere(name);
    tell(QStringLiteral("empty"), QStringLiteral("nothing found, and an empty folder"));
    clearSearch();
    m_hand.click(QStringLiteral("home"), mac);
    m_hand.waitUntil(QStringLiteral("the home folder"), [this] {
        return state().macPath() == QFileInfo(m_folder).path() && !state().isLoadingMac();
    });
}

void Tour::showAbout() {
    m_hand.click(QStringLiteral("toolbar.about"));
    waitForSheet();
    tell(QStringLiteral("about"), QStringLiteral("the About sheet is open"));
    m_hand.click(QStringLiteral("about.close"));
}

void Tour::openPhoneFolder(const QStringList &way) {
    m_hand.click(QStringLiteral("sidebar.shortcut.") + way.first());
    const auto loaded = [this] { return !state().isLoadingAndroid() && !state().androidItems().isEmpty(); };
    m_hand.waitUntil(way.first(), loaded);
    for (const QString &name : way.mid(1)) {
        m_hand.openEntry(android, name);
        m_hand.waitUntil(
            name, [&] { return loaded() && state().androidCurrentPath().endsWith(QLatin1Char('/') + name); });
    }
}

void Tour::selectFiles() {
    openPhoneFolder(m_phone.folder());
    m_hand.openEntry(mac, QFileInfo(m_folder).fileName());
    m_hand.waitUntil(QStringLiteral("the folder of this computer"),
                     [this] { return state().macPath() == m_folder && !state().isLoadingMac(); });
    for (const QString &name : m_phone.files())
        m_hand.markEntry(android, name);
    if (state().androidSelectedIDs().size() != m_phone.files().size())
        throw TourError(QStringLiteral("not every marked file is selected"));
    tell(QStringLiteral("selection"), state().androidSelectionSummary());
}

void Tour::watchCopy() {
    m_phone.setSpeed(0.35);
    m_hand.click(QStringLiteral("transferToMac"));
    m_hand.waitUntil(QStringLiteral("a copy in the middle"), [this] {
        return std::any_of(state().queue().begin(), state().queue().end(), [](const QueueItem &item) {
            const auto *progress = item.status.progress();
            return progress && progress->fraction > 0.3 && progress->transferredBytes > 0;
        });
    });
    tell(QStringLiteral("copying"),
         state().transferSpeedLabel() + QStringLiteral(", remaining ") + state().remainingLabel());
    if (!ToolTips::text().isEmpty())
        throw TourError(QStringLiteral("the arrow that was pressed explains itself again"));
    pauseAndResume();
}

void Tour::waitForQueue() {
    m_hand.waitUntil(QStringLiteral("the end of the queue"), [this] {
        return !state().isTransferring() && !state().isLoadingMac() && !state().isLoadingAndroid();
    });
}

void Tour::finishCopies() {
    m_phone.setSpeed(0);
    waitForQueue();
    for (const QString &name : m_phone.files()) {
        compare(m_phone.folderPath() + QLatin1Char('/') + name, m_folder + QLatin1Char('/') + name);
        m_hand.waitUntil(QStringLiteral("the copy in the pane: ") + name,
                         [&] { return shows(state().macItems(), name); });
    }
    tell(QStringLiteral("copied"),
         QString::number(m_comparedFiles) + QStringLiteral(" files, every byte equal"));
}

void Tour::copyToPhone() {
    m_hand.click(QStringLiteral("back"), mac);
    m_hand.waitUntil(QStringLiteral("the home folder"), [this] {
        return state().macPath() == QFileInfo(m_folder).path() && !state().isLoadingMac();
    });
    const QStringList names{QStringLiteral("Invoice March.pdf"), QStringLiteral("Notes.txt")};
    for (const QString &name : names)
        m_hand.markEntry(mac, name);
    m_hand.click(QStringLiteral("transferToAndroid"));
    waitForQueue();
    for (const QString &name : names)
        compare(m_phone.folderPath() + QLatin1Char('/') + name, state().macPath() + QLatin1Char('/') + name);
    tell(QStringLiteral("to-phone"),
         QString::number(names.size()) + QStringLiteral(" files, every byte equal"));
}

void Tour::failCopy() {
    const QString name = m_phone.files().last();
    // Where a phone cannot be made to refuse, the file is there already.
    const bool isRefused = m_phone.refuse(m_phone.folderPath() + QLatin1Char('/') + name);
    if (!isRefused) {
        m_hand.openEntry(mac, QFileInfo(m_folder).fileName());
        m_hand.waitUntil(QStringLiteral("the folder of this computer"),
                         [this] { return state().macPath() == m_folder && !state().isLoadingMac(); });
    }
    m_hand.clickEntry(android, name);
    m_hand.click(QStringLiteral("transferToMac"));
    waitForQueue();
    const QueueItem &item = state().queue().first();
    if (item.status.is<QueueItemStatus::Failed>() != isRefused)
        throw TourError(QStringLiteral("a copy that was refused or is there already is ") +
                        item.progressLabel());
    tell(isRefused ? QStringLiteral("failed") : QStringLiteral("already-there"), item.progressLabel());
}

void Tour::filter() {
    const qsizetype all = state().androidItems().size();
    m_hand.type(QStringLiteral("searchField"), m_phone.word());
    m_hand.waitUntil(QStringLiteral("the filter"), [&] {
        const qsizetype shown = m_hand.entries(android)->model()->rowCount();
        return shown > 0 && shown < all;
    });
    tell(QStringLiteral("filter"), QString::number(m_hand.entries(android)->model()->rowCount()) +
                                       QStringLiteral(" of ") + QString::number(all) +
                                       QStringLiteral(" entries"));
}

void Tour::clearSearch() {
    m_hand.click(QStringLiteral("clearSearch"));
    m_hand.waitUntil(QStringLiteral("an empty search"),
                     [this] { return state().androidSearchText().isEmpty(); });
}

void Tour::searchEverywhere() {
    clearSearch();
    QWidget *picker = m_hand.control(QStringLiteral("scopePicker"));
    m_hand.press(picker, Qt::Key_Down);
    m_hand.waitUntil(QStringLiteral("the scope"),
                     [this] { return state().androidSearchScope() == AndroidSearchScope::everywhere; });
    m_hand.type(QStringLiteral("searchField"), m_phone.word());
    m_hand.waitUntil(QStringLiteral("the hits"), [this] {
        return !state().isSearchingAndroid() && !state().androidSearchResults().isEmpty();
    });
    tell(QStringLiteral("everywhere"),
         QStringLiteral("hits: ") + QString::number(state().androidSearchResults().size()));
    clearSearch();
    m_hand.press(picker, Qt::Key_Up);
}

void Tour::showGrid() {
    for (const QString &pane : {android, mac})
        m_hand.click(QStringLiteral("gridView"), pane);
    m_hand.waitUntil(QStringLiteral("both grids"), [this] {
        return state().androidViewMode() == PaneViewMode::grid &&
               state().macViewMode() == PaneViewMode::grid &&
               m_hand.entries(android)->objectName() == QStringLiteral("fileGrid") &&
               !state().isLoadingAndroid();
    });
    const QAbstractItemModel *entries = m_hand.entries(android)->model();
    constexpr int patience = 5000; // milliseconds; a phone's files may have no pictures
    static_cast<void>(QTest::qWaitFor(
        [entries] {
            return !entries->index(1, 0).data(FileItemsModel::pictureRole).value<QImage>().isNull();
        },
        patience));
    m_hand.clickEntry(android, entries->index(0, 0).data().toString());
    tell(QStringLiteral("grid"), state().androidSelectionSummary());
    for (const QString &pane : {android, mac})
        m_hand.click(QStringLiteral("listView"), pane);
}

void Tour::goDark() {
    m_hand.click(QStringLiteral("toolbar.appearance"));
    m_hand.waitUntil(QStringLiteral("the dark scheme"),
                     [] { return AppTheme::scheme() == ColorScheme::dark; });
    tell(QStringLiteral("dark"), QStringLiteral("the window is dark"));
}

void Tour::fillQueue() {
    m_hand.click(QStringLiteral("queue.clear"));
    m_hand.click(QStringLiteral("home"), mac);
    m_hand.waitUntil(QStringLiteral("the home folder"), [this] {
        return state().macPath() == QFileInfo(m_folder).path() && !state().isLoadingMac();
    });
    m_hand.openEntry(mac, QStringLiteral("Pictures"));
    m_hand.waitUntil(QStringLiteral("the folder Pictures"), [this] {
        return state().macPath().endsWith(QStringLiteral("/Pictures")) && !state().isLoadingMac();
    });
    QString source = m_phone.folderPath();
    if (!shows(state().androidItems(), m_phone.manyFiles().first())) {
        openPhoneFolder({m_phone.folder().first(), QStringLiteral("Burst")});
        source = state().androidCurrentPath();
    }
    m_hand.clickEntry(android, m_phone.manyFiles().first());
    m_hand.press(m_hand.entries(android), Qt::Key_A, Qt::ControlModifier);
    if (state().androidSelectedIDs().size() != state().androidItems().size())
        throw TourError(QStringLiteral("the keys did not select everything"));
    m_hand.click(QStringLiteral("transferToMac"));
    m_phone.setSpeed(0);
    waitForQueue();
    for (const QString &name : m_phone.manyFiles())
        compare(source + QLatin1Char('/') + name, state().macPath() + QLatin1Char('/') + name);

    auto *list = m_window.findChild<QueueListView *>();
    const auto lastIsInView = [&] {
        const QModelIndex last = list->model()->index(list->model()->rowCount() - 1, 0);
        return list->viewport()->rect().contains(list->visualRect(last));
    };
    if (list->verticalScrollBar()->maximum() == 0)
        throw TourError(QStringLiteral("the queue was meant to be too long for its panel"));
    m_hand.scrollUntil(list->viewport(), QStringLiteral("the last row of the queue"), lastIsInView);
    tell(QStringLiteral("long-queue"),
         QString::number(state().queue().size()) + QStringLiteral(" copies, scrolled to the last one"));
}

void Tour::copyFolders() {
    const auto compareFolders = [this](const QString &phoneFolder, const QString &folder) {
        for (const QString &name : m_phone.manyFiles())
            compare(phoneFolder + QLatin1Char('/') + name, folder + QLatin1Char('/') + name);
    };
    const QString source = state().androidCurrentPath();
    const QString home = QFileInfo(m_folder).path();
    const QString pictures = QStringLiteral("Pictures");
    m_hand.click(QStringLiteral("home"), mac);
    m_hand.waitUntil(QStringLiteral("the home folder"),
                     [&] { return state().macPath() == home && !state().isLoadingMac(); });
    m_hand.markEntry(mac, pictures);
    m_hand.click(QStringLiteral("transferToAndroid"));
    waitForQueue();
    compareFolders(source + QLatin1Char('/') + pictures, home + QLatin1Char('/') + pictures);

    m_hand.click(QStringLiteral("back"), android);
    m_hand.waitUntil(QStringLiteral("the folder above"), [&] {
        return state().androidCurrentPath() == QFileInfo(source).path() && !state().isLoadingAndroid();
    });
    m_hand.markEntry(android, QFileInfo(source).fileName());
    m_hand.click(QStringLiteral("transferToMac"));
    waitForQueue();
    m_folderName = QFileInfo(source).fileName();
    compareFolders(source, home + QLatin1Char('/') + m_folderName);
    tell(QStringLiteral("folders"), QStringLiteral("a folder each way, every byte equal"));
}

void Tour::compare(const QString &phonePath, const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw TourError(path + QStringLiteral(": ") + file.errorString());
    const QByteArray here = file.readAll();
    if (here != m_phone.read(phonePath))
        throw TourError(path + QStringLiteral(" differs from ") + phonePath);
    m_comparedBytes += here.size();
    ++m_comparedFiles;
}

} // namespace vantrel::tour
