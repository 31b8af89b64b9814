#pragma once

#include "Hand.h"
#include "Pictures.h"

#include <QHash>
#include <QString>
#include <QUuid>

namespace vantrel {
class AppState;
class MainWindow;
} // namespace vantrel

namespace vantrel::tour {

class TourPhone;

/// Everything that a person does with the window on one day, from the first start to a queue that scrolls.
/// After each step it says what was seen and takes pictures.
class Tour {
public:
    /// The window has just been shown. `folder`: of this computer, for the copies; empty.
    Tour(MainWindow &window, TourPhone &phone, const Hand &hand, const Pictures &pictures, QString folder);

    /// Takes the whole tour; TourError when something is not as it should be.
    void take();

private:
    void startWithoutPhone();
    void connectPhone();
    void readToolTip();
    void showAbout();
    void showMenuAndKeys();
    void selectFiles();
    void showDetails();
    void dragOver();
    void connectOverWifi();
    void readLargeTextsFromTheRight();
    void watchCopy();
    void finishCopies();
    void copyToPhone();
    void failCopy();
    void filter();
    void searchEverywhere();
    void showEmptyFolder();
    void showGrid();
    void goDark();
    void fillQueue();
    void copyFolders();

    // -- What happens to copies in real life
    void pauseAndResume();
    void copyAgain();
    void keepBoth();
    void failInFolder();
    void verify();
    void interrupt();
    void askAtClosing();
    void openHere(const QString &name);
    /// Copies the folder of copyFolders() into the one that is shown here; how its entry ended.
    QString copyTheFolder();

    void openPhoneFolder(const QStringList &way);
    void clearSearch();
    void waitForSheet();
    void watchRows();
    void waitForQueue();
    void compare(const QString &phonePath, const QString &path);
    void tell(const QString &name, const QString &text);
    [[nodiscard]] AppState &state() const;

    MainWindow &m_window;
    TourPhone &m_phone;
    const Hand &m_hand;
    const Pictures &m_pictures;
    QString m_folder;
    QString m_folderName;             ///< of the phone, that was copied whole
    QHash<QUuid, int> m_quartersTold; ///< of each copy, 4 and its end being 5
    int m_step = 0;
    qint64 m_comparedBytes = 0;
    int m_comparedFiles = 0;
};

} // namespace vantrel::tour
