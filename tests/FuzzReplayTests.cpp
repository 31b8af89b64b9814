#include "Target.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace vantrel {

/// Every input that is kept for the fuzzer's targets, what it has found included, goes through its target
/// once. A target stops the process when something does not hold; the trace names the file.
class FuzzReplay : public testing::TestWithParam<fuzz::Target> {};

TEST_P(FuzzReplay, everyKeptInputHolds) {
    const QDir folder(QStringLiteral(VANTREL_TEST_DATA "/") + QLatin1String(GetParam().name));
    const QStringList names = folder.entryList(QDir::Files);
    ASSERT_FALSE(names.isEmpty()) << "no inputs in " << qPrintable(folder.path());
    for (const QString &name : names) {
        SCOPED_TRACE(qPrintable(name));
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray input = file.readAll();
        GetParam().run(input);
        // Text that stops in the middle is what a pulled cable leaves.
        GetParam().run(input.left(input.size() / 2));
        GetParam().run(input.mid(input.size() / 2));
    }
    GetParam().run({});
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzReplay, testing::ValuesIn(fuzz::targets()), [](const auto &instance) {
    return QByteArray(instance.param.name).replace('-', '_').toStdString();
});

} // namespace vantrel
