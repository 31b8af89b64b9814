#pragma once

#include "Kit/RenderScheduler.h"

#include <QWidget>

class QProgressBar;

namespace vantrel {

class AppState;
class Card;
class IconButton;
class QueueListView;
class TextButton;
class TextLabel;
class TransferRunner;

/// The panel of all copies: waiting, running and done. It asks for the height of all its rows; in less they
/// scroll inside its card.
class TransferQueueView : public QWidget {
    Q_OBJECT

public:
    /// The model must outlive the view.
    explicit TransferQueueView(AppState *state, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    /// With at least one row in view.
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    [[nodiscard]] IconButton *makeButton(const char *name, const QString &symbol, const QString &help);
    void render();
    void renderFigures();
    /// The panel's height when its body is that high.
    [[nodiscard]] int heightAround(int bodyHeight) const;

    AppState *m_state;
    TransferRunner *m_transfers;
    QWidget *m_header;
    TextLabel *m_figures;
    QProgressBar *m_bar;
    TextLabel *m_note;
    TextButton *m_tryAll;
    TextButton *m_keepAll;
    IconButton *m_pause;
    IconButton *m_resume;
    IconButton *m_clear;
    Card *m_card;
    QWidget *m_hint;
    QueueListView *m_list;
    qsizetype m_shownCount = -1; ///< of entries, when the layout was last asked for
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
