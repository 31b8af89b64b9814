#include "Views/PathBar.h"

#include "Kit/Boxes.h"
#include "Kit/TextLabel.h"
#include "Theme/AppTheme.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QStringListModel>

#include <algorithm>

namespace vantrel {

namespace {

constexpr TextStyle pathStyle{11, Weight::medium};

} // namespace

/// A path whose names can be clicked.
class PathLabel : public TextLabel {
public:
    PathLabel() : TextLabel(pathStyle, AppTheme::inkTertiary()) { setMouseTracking(true); }

    void setPath(const PanePath &path) {
        m_path = path;
        m_hovered.reset();
        update();
    }

protected:
    void mouseMoveEvent(QMouseEvent *event) override { hover(segmentAt(event->position().x())); }
    void leaveEvent(QEvent *) override { hover(std::nullopt); }
    void mousePressEvent(QMouseEvent *event) override {
        // A click beside the names is the pane's.
        event->setAccepted(event->button() == Qt::LeftButton && m_path.onGoTo &&
                           segmentAt(event->position().x()));
    }
    void mouseReleaseEvent(QMouseEvent *event) override {
        const auto segment = segmentAt(event->position().x());
        if (event->button() == Qt::LeftButton && segment && rect().contains(event->pos()) && m_path.onGoTo)
            m_path.onGoTo(m_path.segments.at(*segment).path);
    }
    void paintEvent(QPaintEvent *event) override {
        TextLabel::paintEvent(event);
        if (!m_hovered)
            return;
        QPainter painter(this);
        const double top = (height() + pathStyle.lineHeight()) / 2.0 - 1;
        const double left = startOf(*m_hovered);
        painter.fillRect(QRectF(left, top, std::min<double>(endOf(*m_hovered), width()) - left, 1),
                         QColor(AppTheme::inkTertiary()));
    }

private:
    /// Where the text begins: it reads from left to right, but may stand at the right.
    [[nodiscard]] double textLeft() const {
        return isRightToLeft() ? std::max(0.0, width() - pathStyle.width(text())) : 0;
    }
    [[nodiscard]] double startOf(qsizetype segment) const {
        return textLeft() + pathStyle.width(text().left(m_path.segments.at(segment).start));
    }
    [[nodiscard]] double endOf(qsizetype segment) const {
        return textLeft() + pathStyle.width(text().left(m_path.segments.at(segment).end));
    }
    [[nodiscard]] std::optional<qsizetype> segmentAt(double x) const {
        for (qsizetype segment = 0; segment < m_path.segments.size(); ++segment) {
            if (x >= startOf(segment) && x < endOf(segment))
                return segment;
        }
        return std::nullopt;
    }
    void hover(std::optional<qsizetype> segment) {
        if (std::exchange(m_hovered, segment) == segment)
            return;
        setCursor(segment ? Qt::PointingHandCursor : Qt::ArrowCursor);
        update();
    }

    PanePath m_path;
    std::optional<qsizetype> m_hovered;
};

PathBar::PathBar(QWidget *parent)
    : QWidget(parent), m_label(named(QStringLiteral("path"), new PathLabel)),
      m_field(named(QStringLiteral("pathField"), new QLineEdit)), m_completions(new QStringListModel(this)) {
    setLayout(columnOf(0, {m_label, m_field}));
    auto *completer = new QCompleter(m_completions, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->popup()->setAccessibleName(QStringLiteral("Folders"));
    m_field->setCompleter(completer);
    setTextStyle(m_field, pathStyle);
    m_field->setFrame(false);
    m_field->setTextMargins(-2, 0, 0, 0); // what the toolkit keeps free before the first letter
    m_field->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_field->setFixedHeight(pathStyle.lineHeight());
    m_field->setAccessibleName(QStringLiteral("Folder"));
    m_field->hide();
    m_field->installEventFilter(this);
    connect(m_field, &QLineEdit::textEdited, this, &PathBar::complete);
    connect(m_field, &QLineEdit::returnPressed, this, [this] { finish(true); });
}

void PathBar::show(const QString &label, const PanePath &path) {
    m_path = path;
    m_label->setText(label);
    m_label->setPath(path);
}

void PathBar::edit() {
    if (!m_path.onGoTo)
        return;
    m_isEdited = true;
    m_label->hide();
    m_field->setText(m_path.folder);
    m_field->selectAll();
    m_field->show();
    m_field->setFocus(Qt::ShortcutFocusReason);
}

void PathBar::complete(const QString &text) {
    const QString folder = text.left(text.lastIndexOf(QLatin1Char('/')) + 1);
    if (folder.isEmpty() || !m_path.foldersIn || std::exchange(m_completedFolder, folder) == folder)
        return;
    m_completions->setStringList({});
    m_path.foldersIn(folder, [bar = QPointer(this), folder](const QStringList &paths) {
        if (!bar || !bar->m_isEdited || bar->m_completedFolder != folder)
            return;
        bar->m_completions->setStringList(paths);
        if (!paths.isEmpty())
            bar->m_field->completer()->complete();
    });
}

void PathBar::finish(bool goesThere) {
    if (!std::exchange(m_isEdited, false))
        return;
    const QString path = m_field->text();
    m_completedFolder.clear();
    if (m_field->hasFocus())
        Q_EMIT edited();
    m_label->show();
    m_field->hide();
    if (goesThere && m_path.onGoTo && !path.isEmpty())
        m_path.onGoTo(path);
}

void PathBar::changeEvent(QEvent *event) {
    if (event->type() == QEvent::FontChange && m_field) // texts appear in another size
        m_field->setFixedHeight(pathStyle.lineHeight());
    QWidget::changeEvent(event);
}

bool PathBar::eventFilter(QObject *watched, QEvent *event) {
    const bool isEscape =
        event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape;
    const bool isLeft = event->type() == QEvent::FocusOut &&
                        static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason &&
                        static_cast<QFocusEvent *>(event)->reason() != Qt::ActiveWindowFocusReason;
    if (isEscape || isLeft) {
        finish(false);
        return isEscape;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace vantrel
