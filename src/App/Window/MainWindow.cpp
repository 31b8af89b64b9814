#include "App/Window/MainWindow.h"

#include "App/Sheets/AboutView.h"
#include "App/Sheets/DetailsView.h"
#include "App/Sheets/KeyboardView.h"
#include "App/Sheets/MessageSheet.h"
#include "App/Sheets/WirelessView.h"
#include "App/System/FontConfiguration.h"
#include "App/System/Product.h"
#include "App/System/Settings.h"
#include "App/Window/Activation.h"
#include "App/Window/ApplicationMenu.h"
#include "App/Window/ContentView.h"
#include "App/Window/TitleBar.h"
#include "App/Window/ToolbarButton.h"
#include "App/Window/WindowChrome.h"
#include "App/Window/WindowCommands.h"
#include "Kit/TextStyle.h"
#include "Records/TransferFormat.h"
#include "State/AppState.h"
#include "State/Details.h"
#include "State/WirelessPhones.h"
#include "Thumbnails/PhotoFactsReader.h"
#include "Thumbnails/ThumbnailStore.h"
#include "Transfers/QueueFile.h"

#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace vantrel {

/// Notes that the whole application is told to quit, ahead of its windows.
class QuitWatch : public QObject {
public:
    explicit QuitWatch(QObject *parent) : QObject(parent) { qApp->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override {
        m_hasSeen = m_hasSeen || (event->type() == QEvent::Quit && watched == qApp);
        return false;
    }
    [[nodiscard]] bool hasSeen() const { return m_hasSeen; }

private:
    bool m_hasSeen = false;
};

namespace {

/// Opens a sheet of this kind, unless one is open or will be when another sheet is closed.
template <class View, class... Arguments>
void openOnce(QWidget *window, Arguments &...arguments) {
    if (window->findChild<View *>())
        return;
    auto *view = new View(window, arguments...);
    view->setAttribute(Qt::WA_DeleteOnClose);
    view->open();
}

} // namespace

MainWindow::MainWindow(Desktop &desktop, Settings &settings, Updater &updater, QWidget *parent)
    : QMainWindow(parent), m_settings(settings), m_updater(updater),
      m_state(AppState::designPreview(desktop)), m_pictures(new ThumbnailStore(this)),
      m_wireless(new WirelessPhones(settings.wirelessPhones(), this)), m_quitWatch(new QuitWatch(this)) {
    for (const BrowserSide side : {BrowserSide::android, BrowserSide::mac})
        connect(&m_state->pane(side), &PaneState::detailsRequested, this,
                [this, side](const QList<FileItem> &items) { showDetails(side, items); });
    connect(m_wireless, &WirelessPhones::rememberedChanged, this,
            [this] { m_settings.setWirelessPhones(m_wireless->remembered()); });
    connect(m_wireless, &WirelessPhones::connected, m_state.get(),
            [this](const QString &serial) { m_state->phones().showWhenReady(serial); });
    AppTheme::setScheme(settings.appearancePreference());
    setObjectName(QStringLiteral("mainWindow"));
    m_state->transfers().setVerifies(settings.verifiesCopies());
    connect(&settings, &Settings::verifiesCopiesChanged, this,
            [this](bool verifies) { m_state->transfers().setVerifies(verifies); });
    connect(m_state.get(), &AppState::isTransferringChanged, m_pictures,
            [this] { m_pictures->setCopying(m_state->isTransferring()); });
    m_state->setTileSize(settings.tileSize());
    connect(m_state.get(), &AppState::tileSizeChanged, this,
            [this] { m_settings.setTileSize(m_state->tileSize()); });
    m_chrome = new WindowChrome(this, [&settings] { return settings.doubleClickAction(); });
    fitMinimum();
    m_chrome->restore(settings.windowGeometry(), standard);
    setCentralWidget(new ContentGround(this));
    for (const BrowserSide side : {BrowserSide::android, BrowserSide::mac}) {
        PaneState *pane = &m_state->pane(side);
        pane->setOrder(settings.fileOrder(side));
        connect(pane, &PaneState::orderChanged, this,
                [&settings, side, pane] { settings.setFileOrder(side, pane->order()); });
    }
}

MainWindow::~MainWindow() {
    // The views hold on to the model and go first.
    delete takeCentralWidget();
}

void MainWindow::furnish() {
    if (std::exchange(m_isFurnished, true))
        return;
    awaitFontConfiguration();
    m_openedWith = m_chrome->geometry();
    setWindowTitle(product::name());
    addToolbarButtons();
    setCentralWidget(new ContentView(m_state.get(), m_settings, m_pictures, this));
    centralWidget()->installEventFilter(this);
}

void MainWindow::addToolbarButtons() {
    TitleBar *bar = m_chrome->titleBar();
    m_appearance = new ToolbarButton(bar);
    m_appearance->setObjectName(QStringLiteral("toolbar.appearance"));
    connect(m_appearance, &QAbstractButton::clicked, this, [this] {
        setAppearancePreference(AppTheme::scheme() == ColorScheme::dark ? ColorScheme::light
                                                                        : ColorScheme::dark);
    });
    renderAppearanceButton();

    auto *about = new ToolbarButton(bar);
    about->setObjectName(QStringLiteral("toolbar.about"));
    about->setContent(QStringLiteral("info.circle"), QStringLiteral("About"),
                      QStringLiteral("About Vantrel"));
    connect(about, &QAbstractButton::clicked, this, &MainWindow::showAbout);

    bar->addToolbarWidget(m_appearance);
    bar->addToolbarWidget(about);
    auto *menu = new ApplicationMenu(this, &m_updater, &m_settings);
    connect(menu, &ApplicationMenu::aboutRequested, this, &MainWindow::showAbout);
    connect(menu, &ApplicationMenu::wirelessRequested, this, &MainWindow::showWireless);
    if (QWidget *button = menu->createButton(bar))
        bar->addToolbarWidget(button);
    auto *commands = new WindowCommands(this, m_state.get());
    connect(menu, &ApplicationMenu::keyboardRequested, this, &MainWindow::showKeyboard);
    connect(commands, &WindowCommands::keyboardRequested, this, &MainWindow::showKeyboard);
    connect(commands, &WindowCommands::menuRequested, menu, &ApplicationMenu::popup);
}

void MainWindow::fitMinimum() {
    constexpr double moreWidth = 200; // for texts of twice the size
    m_chrome->setMinimumSize(minimum + QSize(std::max(0, qRound(moreWidth * (textScale() - 1))), 0));
}

void MainWindow::renderAppearanceButton() {
    if (AppTheme::scheme() == ColorScheme::dark)
        m_appearance->setContent(QStringLiteral("sun.max"), QStringLiteral("Light"),
                                 QStringLiteral("Switch to Light mode"));
    else
        m_appearance->setContent(QStringLiteral("moon"), QStringLiteral("Dark"),
                                 QStringLiteral("Switch to Dark mode"));
}

void MainWindow::setAppearancePreference(ColorScheme scheme) {
    m_settings.setAppearancePreference(scheme);
    AppTheme::setScheme(scheme);
}

void MainWindow::followDesktop(ColorScheme preferred) {
    if (!m_settings.hasAppearancePreference())
        AppTheme::setScheme(preferred);
}

void MainWindow::setTitleButtons(const QString &layout) {
    m_chrome->titleBar()->setButtonLayout(layout);
}

void MainWindow::showAbout() {
    openOnce<AboutView>(this);
}

void MainWindow::showKeyboard() {
    openOnce<KeyboardView>(this);
}

void MainWindow::showWireless() {
    openOnce<WirelessView>(this, *m_wireless);
}

void MainWindow::showDetails(BrowserSide side, const QList<FileItem> &items) {
    if (items.isEmpty() || findChild<DetailsView *>())
        return;
    const AndroidDevice &device = m_state->device();
    const auto phone =
        side == BrowserSide::android ? std::optional(Details::Phone{device.id, device.name}) : std::nullopt;
    auto *view =
        new DetailsView(this, std::make_unique<Details>(items, phone, &photoFactsOf), m_state->desktop());
    view->setAttribute(Qt::WA_DeleteOnClose);
    view->open();
}

bool MainWindow::event(QEvent *event) {
    // When nothing has the keyboard the toolkit gives it to the first control, and the focus ring would be
    // the first thing that is seen. Tab begins there all the same.
    if (event->type() == QEvent::WindowActivate && !focusWidget()) {
        QTimer::singleShot(0, this, [this] {
            if (QWidget *first = focusWidget())
                first->clearFocus();
        });
    }
    if (event->type() == QEvent::PaletteChange && m_appearance)
        renderAppearanceButton();
    if (event->type() == QEvent::FontChange && m_chrome) // texts appear in another size
        fitMinimum();
    return QMainWindow::event(event);
}

void MainWindow::showEvent(QShowEvent *event) {
    QMainWindow::showEvent(event);
    centralWidget()->installEventFilter(this);
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Paint && watched == centralWidget()) {
        // Each step comes when the frame before it is on the screen.
        watched->removeEventFilter(this);
        if (!m_isFurnished)
            QTimer::singleShot(0, this, &MainWindow::furnish);
        else if (!std::exchange(m_isStarted, true))
            QTimer::singleShot(0, this, &MainWindow::runStartUp); // the first tool
    }
    return QMainWindow::eventFilter(watched, event);
}

bool MainWindow::asksBeforeClosing() {
    const TransferRunner &transfers = m_state->transfers();
    if (m_quitWatch->hasSeen() || transfers.unfinishedCount() == 0)
        return false;
    if (!m_question || m_question->isHidden()) { // there is none, or it has been answered
        for (Sheet *sheet : findChildren<Sheet *>(QString(), Qt::FindDirectChildrenOnly))
            sheet->reject(); // it would hide the question
        const QString stay =
            m_state->isTransferring() ? QStringLiteral("Keep Copying") : QStringLiteral("Don’t Quit");
        m_question = new MessageSheet(QStringLiteral("Quit ") + product::name(), QStringLiteral("quit"),
                                      {{}, {}, stay, QStringLiteral("Quit")}, this);
        m_question->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_question, &QDialog::accepted, this, [this] {
            m_mayClose = true;
            close();
        });
        connect(m_state.get(), &AppState::queueChanged, m_question, [this] { renderQuestion(); });
        renderQuestion();
        m_question->open();
    }
    bringToFront(this, {});
    return true;
}

void MainWindow::renderQuestion() {
    const TransferRunner &transfers = m_state->transfers();
    const int count = transfers.unfinishedCount();
    if (count == 0) // then nothing is in the way any more
        return m_question->accept();
    const bool isOne = count == 1;
    const QString &reason = transfers.forgetReason();
    m_question->setTexts(isOne ? QStringLiteral("1 copy is not finished.")
                               : formatCount(count) + QStringLiteral(" copies are not finished."),
                         !reason.isEmpty() ? reason
                         : isOne           ? QStringLiteral("It is kept and can go on at the next start.")
                                 : QStringLiteral("They are kept and can go on at the next start."));
}

void MainWindow::closeEvent(QCloseEvent *event) {
    if (!std::exchange(m_mayClose, false) && asksBeforeClosing())
        return event->ignore();
    QMainWindow::closeEvent(event);
    if (event->isAccepted()) {
        // A window that was only looked at stays what it is on a larger screen, which may come back.
        if (m_openedWith && m_chrome->geometry() != *m_openedWith)
            m_settings.setWindowGeometry(m_chrome->geometry());
        m_state->phones().stop();
        m_isStarted = false;
    }
}

QCoro::Task<> MainWindow::runStartUp() {
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon/vantrel.svg")));
    m_state->transfers().remember(QueueFile::userFolder());
    // The model ends before this window does, and with it whatever is awaited here.
    co_await m_state->browseMac(m_state->macPath());
    co_await m_state->refreshDevice(PhoneWatch::Spinner::shown);
    if (m_isStarted)
        m_state->phones().start();
    co_await m_wireless->reconnect();
}

} // namespace vantrel
