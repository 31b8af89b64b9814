#include "App/Sheets/UpdateView.h"

#include <QDesktopServices>

namespace vantrel {

namespace {

MessageSheet::Message messageOf(const UpdateResult &result, const AppVersion &installed) {
    const UpdateMessage message = describe(result, installed);
    return {.heading = message.heading,
            .detail = message.detail,
            .rejectLabel = message.actionLabel.isEmpty() ? QStringLiteral("OK") : QStringLiteral("Later"),
            .acceptLabel = message.actionLabel};
}

} // namespace

UpdateView::UpdateView(QWidget *window, const UpdateResult &result, const AppVersion &installed)
    : MessageSheet(QStringLiteral("Software Update"), QStringLiteral("update"), messageOf(result, installed),
                   window) {
    connect(this, &QDialog::accepted, this,
            [page = result.downloadPage] { QDesktopServices::openUrl(page); });
}

} // namespace vantrel
