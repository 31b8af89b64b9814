#include "App/System/RunSummary.h"

#include "Records/TransferFormat.h"

#include <QStringList>

namespace vantrel {

namespace {

QString counted(int count, const QString &one, const QString &several) {
    return count == 1 ? one : QString(several).replace(QStringLiteral("%1"), formatCount(count));
}

} // namespace

QString RunSummary::heading() const {
    if (copied > 0 && failed > 0)
        return QStringLiteral("%1 copied, %2 could not be").arg(formatCount(copied), formatCount(failed));
    if (copied > 0)
        return formatCount(copied) + QStringLiteral(" copied");
    if (failed > 0)
        return formatCount(failed) + QStringLiteral(" could not be copied");
    if (undecided > 0)
        return counted(undecided, QStringLiteral("1 copy waits for you to decide"),
                       QStringLiteral("%1 copies wait for you to decide"));
    if (waiting > 0)
        return counted(waiting, QStringLiteral("1 copy waits for the phone"),
                       QStringLiteral("%1 copies wait for the phone"));
    return {};
}

QString RunSummary::detail() const {
    const bool isAboutEnds = copied > 0 || failed > 0;
    QStringList sentences;
    if (undecided > 0)
        sentences += isAboutEnds
                         ? counted(undecided,
                                   QStringLiteral("1 waits for you to decide: another content has its name."),
                                   QStringLiteral("%1 wait for you to decide: other contents have their "
                                                  "names."))
                         : counted(undecided, QStringLiteral("Another content has its name."),
                                   QStringLiteral("Other contents have their names."));
    if (waiting > 0 && (isAboutEnds || undecided > 0))
        sentences += counted(waiting, QStringLiteral("1 waits for the phone."),
                             QStringLiteral("%1 wait for the phone."));
    return sentences.join(QLatin1Char('\n'));
}

} // namespace vantrel
