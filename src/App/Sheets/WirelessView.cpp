#include "App/Sheets/WirelessView.h"

#include "Kit/Accessibility.h"
#include "Kit/Boxes.h"
#include "Kit/Focus.h"
#include "Kit/Spinner.h"
#include "Kit/TextButton.h"
#include "Kit/TextLabel.h"
#include "State/WirelessPhones.h"
#include "Theme/AppTheme.h"

#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int padding = 24;
constexpr int viewWidth = 380;

TextLabel *words(const TextStyle &style, const ThemeColor &color, int lines, const QString &text = {}) {
    auto *label = new TextLabel(style, color);
    label->setText(text);
    label->setMaximumLines(lines);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setFixedSize(withTexts(viewWidth) - 2 * padding, lines * style.lineHeight());
    return label;
}

QLineEdit *field(const QString &name, const QString &title, const QString &example = {}) {
    auto *edit = named(name, new QLineEdit);
    edit->setAccessibleName(title);
    edit->setPlaceholderText(example);
    edit->setFixedHeight(withTexts(26));
    edit->setTextMargins(4, 0, 4, 0);
    setTextStyle(edit, {13});
    return edit;
}

QLayout *titled(const QString &title, QLineEdit *edit) {
    auto *label = new TextLabel({11, Weight::semibold}, AppTheme::inkSecondary());
    label->setText(title);
    return columnOf(4, {label, edit});
}

} // namespace

WirelessView::WirelessView(QWidget *window, WirelessPhones &phones)
    : Sheet(QStringLiteral("Connect over Wi-Fi"), viewWidth, window), m_phones(phones) {
    setObjectName(QStringLiteral("wireless"));
    constexpr TextStyle small{11, Weight::medium};
    const QString addressTitle = QStringLiteral("Address and port");
    const QString portTitle = QStringLiteral("Pairing port");
    const QString codeTitle = QStringLiteral("Pairing code");
    m_address = field(QStringLiteral("wireless.address"), addressTitle, QStringLiteral("192.168.1.20:37123"));
    m_pairingPort = field(QStringLiteral("wireless.pairingPort"), portTitle);
    m_code = field(QStringLiteral("wireless.code"), codeTitle);
    m_pairingHint = words(small, AppTheme::inkTertiary(), 2);
    m_spinner = new Spinner(Spinner::Size::mini, QStringLiteral("Connecting"));
    m_message = named(QStringLiteral("wireless.message"), words(small, AppTheme::danger(), 2));
    m_remembered = makeRemembered();
    m_remembered->hide();
    setFirstFocus(m_address);

    QPushButton *cancel = makeButton(QStringLiteral("Cancel"), QStringLiteral("wireless.cancel"));
    m_connect = makeButton(QStringLiteral("Connect"), QStringLiteral("wireless.connect"));
    m_connect->setDefault(true);
    connect(cancel, &QAbstractButton::clicked, this, &QDialog::reject);
    connect(m_connect, &QAbstractButton::clicked, this, &WirelessView::connectNow);
    connect(this, &QDialog::finished, &phones, &WirelessPhones::cancel);
    connect(&phones, &WirelessPhones::connected, this, &QDialog::accept);

    const QString explanation = QStringLiteral("On the phone, open Settings, Developer options, and turn on "
                                               "Wireless debugging. It shows the address.");
    setLine(Line::whenScrolled);
    content()->setContentsMargins(padding, 22, padding, 10);
    footer()->setContentsMargins(padding, 0, padding, 18);
    content()->addLayout(
        columnOf(0, {words({15, Weight::semibold}, AppTheme::ink(), 1, QStringLiteral("Connect over Wi-Fi")),
                     BoxItem::gap(6), words({12}, AppTheme::inkSecondary(), 2, explanation), BoxItem::gap(14),
                     titled(addressTitle, m_address), BoxItem::gap(12),
                     rowOf(12, {titled(portTitle, m_pairingPort), titled(codeTitle, m_code)}),
                     BoxItem::gap(6), m_pairingHint, BoxItem::gap(8), m_remembered,
                     rowOf(6, {columnOf(0, {m_spinner, BoxItem::room()}), {m_message, 1}})}));
    footer()->addLayout(rowOf(8, {BoxItem::room(), cancel, m_connect}));
    m_rendering.watch(&phones, &WirelessPhones::rememberedChanged, &WirelessPhones::isConnectingChanged,
                      &WirelessPhones::messageChanged, &WirelessPhones::versionChanged);
    m_phones.cancel(); // what an earlier one had to say
    m_rendering.renderNow();
    m_phones.learnVersion();
}

void WirelessView::connectNow() {
    m_phones.connectTo(m_address->text(), m_pairingPort->text(), m_code->text());
}

/// A row for each phone, in a new widget.
QWidget *WirelessView::makeRemembered() {
    constexpr qsizetype most = 4; // the newest
    auto *list = new QWidget;
    auto *rows = columnOf(2, {});
    for (const QString &address : m_shown.mid(std::max<qsizetype>(0, m_shown.size() - most))) {
        auto *use = new TextButton(address, QStringLiteral("Use ") + address);
        auto *forget = new TextButton(QStringLiteral("Forget"), QStringLiteral("Forget ") + address);
        forget->setObjectName(QStringLiteral("wireless.forget"));
        connect(use, &QAbstractButton::clicked, this, [this, address] { m_address->setText(address); });
        connect(forget, &QAbstractButton::clicked, this, [this, address] { m_phones.forget(address); });
        rows->addLayout(rowOf(8, {use, BoxItem::room(), forget}));
    }
    rows->setContentsMargins(0, 0, 0, 8);
    list->setLayout(rows);
    describe(list, QAccessible::Grouping, QStringLiteral("Phones that were connected before"));
    return list;
}

void WirelessView::render() {
    const int version = m_phones.version();
    const bool canPair = version == 0 || version >= WirelessPhones::pairingVersion;
    m_pairingHint->setText(
        canPair
            ? QStringLiteral("Only the first time: tap “Pair device with pairing code” on the phone.")
            : QStringLiteral("Pairing needs adb %1 or later, this one is %2. A phone that has allowed this "
                             "computer by cable needs no pairing.")
                  .arg(WirelessPhones::pairingVersion)
                  .arg(version));
    const auto heir = [this] { m_address->setFocus(Qt::OtherFocusReason); };
    m_pairingPort->setPlaceholderText(canPair ? QStringLiteral("41234") : QString());
    m_code->setPlaceholderText(canPair ? QStringLiteral("123456") : QString());
    enableWithHeir(m_pairingPort, canPair, heir);
    enableWithHeir(m_code, canPair, heir);
    const bool isConnecting = m_phones.isConnecting();
    m_spinner->setVisible(isConnecting);
    m_message->setText(isConnecting ? QStringLiteral("Connecting…") : m_phones.message());
    m_message->setColor(isConnecting ? AppTheme::inkSecondary() : AppTheme::danger());
    enableWithHeir(m_connect, !isConnecting, heir);
    if (m_phones.remembered() != m_shown) {
        m_shown = m_phones.remembered();
        QWidget *list = makeRemembered();
        heir(); // a button that is pressed goes with its row
        delete content()->replaceWidget(m_remembered, list);
        delete std::exchange(m_remembered, list);
        list->setVisible(!m_shown.isEmpty());
        fitCard();
    }
}

} // namespace vantrel
