#pragma once

#include "App/Sheets/Sheet.h"
#include "Kit/RenderScheduler.h"

#include <QStringList>

class QLineEdit;
class QPushButton;

namespace vantrel {

class Spinner;
class TextLabel;
class WirelessPhones;

/// Asks for a phone's address and connects to it over the network; closes when the connection stands, and
/// gives up what is under way when it is closed before. Lists the phones that the program comes back to.
class WirelessView : public Sheet {
    Q_OBJECT

public:
    /// `phones` must outlive the view.
    WirelessView(QWidget *window, WirelessPhones &phones);

private:
    QWidget *makeRemembered();
    void connectNow();
    void render();

    WirelessPhones &m_phones;
    QLineEdit *m_address;
    QLineEdit *m_pairingPort;
    QLineEdit *m_code;
    TextLabel *m_pairingHint;
    Spinner *m_spinner;
    TextLabel *m_message;
    QWidget *m_remembered;
    QStringList m_shown; ///< of the remembered ones
    QPushButton *m_connect;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
