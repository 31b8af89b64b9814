#include "App/Sheets/DetailsView.h"

#include "Kit/Boxes.h"
#include "Kit/Canvas.h"
#include "Kit/Focus.h"
#include "Kit/ReadOnlyText.h"
#include "Kit/Symbol.h"
#include "Kit/TextLabel.h"
#include "MacFiles/Desktop.h"
#include "State/Details.h"
#include "Theme/AppTheme.h"

#include <QGridLayout>
#include <QPushButton>

namespace vantrel {

namespace {

constexpr int padding = 24;
constexpr int viewWidth = 440;
constexpr int labelWidth = 78;
constexpr int symbolWidth = 34;
constexpr TextStyle valueStyle{12, Weight::medium};

QWidget *symbolFor(const QList<FileItem> &items) {
    const bool isFolder = items.size() == 1 && items.first().isDirectory;
    const QString name = items.size() > 1 ? QStringLiteral("doc.on.doc")
                         : isFolder       ? QStringLiteral("folder.fill")
                                          : QStringLiteral("doc.fill");
    auto *canvas = new Canvas([=](QPainter &painter, const QRectF &rect) {
        Symbol{name, 26, Weight::semibold}.paint(
            painter, rect, isFolder ? AppTheme::folderBlue() : AppTheme::inkSecondary());
    });
    canvas->setFixedSize(symbolWidth, symbolWidth);
    return canvas;
}

} // namespace

DetailsView::DetailsView(QWidget *window, std::unique_ptr<Details> details, Desktop &desktop)
    : Sheet(QStringLiteral("Details"), viewWidth, window), m_details(std::move(details)),
      m_problem(
          named(QStringLiteral("details.problem"), new TextLabel({11, Weight::medium}, AppTheme::danger()))) {
    setObjectName(QStringLiteral("details"));
    auto *title = named(QStringLiteral("details.title"),
                        new ReadOnlyText(QStringLiteral("Name"), {15, Weight::semibold}));
    title->setText(m_details->title());
    m_problem->setMaximumLines(4);

    auto *rows = new QGridLayout;
    rows->setHorizontalSpacing(12);
    rows->setVerticalSpacing(8);
    rows->setColumnMinimumWidth(0, labelWidth);
    rows->setColumnStretch(1, 1);
    for (const Details::Fact &fact : m_details->facts()) {
        auto *label = new TextLabel({11, Weight::semibold}, AppTheme::inkTertiary());
        label->setText(fact.label);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        auto *value =
            named(QStringLiteral("details.") + fact.label, new ReadOnlyText(fact.label, valueStyle));
        label->setFixedHeight(value->minimumSizeHint().height());
        const int row = rows->rowCount();
        rows->addWidget(label, row, 0, Qt::AlignTop);
        rows->addWidget(value, row, 1);
        m_rows.insert(fact.label, {label, value});
    }
    content()->addLayout(columnOf(
        0, {rowOf(10, {symbolFor(m_details->items()), {title, 1}}), BoxItem::gap(12), rows, m_problem},
        {padding, 22, padding, 18}));
    // After the texts, where Tab comes to them.
    QPushButton *copy = makeButton(QStringLiteral("Copy"), QStringLiteral("details.copy"));
    copy->setAccessibleDescription(QStringLiteral("Copy all of this as text"));
    QPushButton *close = makeButton(QStringLiteral("Close"), QStringLiteral("details.close"));
    close->setDefault(true);
    connect(copy, &QAbstractButton::clicked, this, [this, &desktop] { desktop.copyText(m_details->text()); });
    connect(close, &QAbstractButton::clicked, this, &QDialog::accept);

    footer()->addLayout(
        rowOf(8, {BoxItem::room(1), copy, close, BoxItem::room(1)}, {padding, 14, padding, 14}));
    connect(m_details.get(), &Details::changed, this, &DetailsView::render);
    render();
}

DetailsView::~DetailsView() = default;

void DetailsView::render() {
    for (const Details::Fact &fact : m_details->facts()) {
        const Row &row = m_rows[fact.label];
        row.value->setText(fact.value);
        row.label->setVisible(!fact.value.isEmpty());
        showWithHeir(row.value, !fact.value.isEmpty(), [this] { setFocus(Qt::OtherFocusReason); });
    }
    m_problem->setText(m_details->problem());
    m_problem->setVisible(!m_details->problem().isEmpty());
    fitCard();
}

} // namespace vantrel
