#include "support/Files.h"
#include "support/Printers.h"

#include "MacFiles/MacFileClient.h"

#include <QtTest>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace vantrel;

TEST(MacFilesTests, pathsAreStandardized) {
    const QString home = QDir::homePath();
    const std::tuple<QString, QString, QString> cases[] = {
        {u"/"_s, u"/"_s, u"/"_s},
        {u"/a"_s, u"/a"_s, u"/"_s},
        {u"/a//b/./c/"_s, u"/a/b/c"_s, u"/a/b"_s},
        {u"~/Documents/../Desktop"_s, home + u"/Desktop"_s, home},
        {u"~"_s, home, QFileInfo(home).path()},
        {u"~other/x"_s, u"~other/x"_s, u"~other"_s},
        {u"/../.."_s, u"/"_s, u"/"_s},
        {u"relative"_s, u"relative"_s, u"relative"_s},
        {QString(), QString(), QString()},
    };
    for (const auto &[path, standardized, parent] : cases) {
        EXPECT_EQ(MacFileClient::standardizedPath(path), standardized);
        EXPECT_EQ(MacFileClient::parentPath(path), parent) << path.toStdString();
    }
}

TEST(MacFilesTests, visibleEntriesAreListedByTheirOwnProperties) {
    QTemporaryDir folder;
    QDir directory(folder.path());
    write(folder.filePath(u"zeta.txt"_s), "12345");
    write(folder.filePath(u"beta.txt"_s), "");
    write(folder.filePath(u".hidden"_s), "x");
    directory.mkdir(u"Gamma"_s);
    directory.mkdir(u"Alpha"_s);
    directory.mkdir(u".cache"_s);
    ASSERT_TRUE(QFile::link(u"Gamma"_s, folder.filePath(u"link"_s)));
    ASSERT_TRUE(QFile::link(u"nowhere"_s, folder.filePath(u"dangling"_s)));

    const auto items = MacFileClient::listDirectory(folder.path() + u"/."_s);
    ASSERT_TRUE(items.has_value());
    QStringList described;
    for (const FileItem &item : *items)
        described.append(item.name + QLatin1Char(item.isDirectory ? '/' : ' ') +
                         QString::number(item.sizeBytes.value_or(-1)));
    EXPECT_EQ(described.join(u','), u"Alpha/-1,Gamma/-1,beta.txt 0,dangling 7,link 5,zeta.txt 5"_s);
    EXPECT_EQ(items->last().path, folder.filePath(u"zeta.txt"_s));

    const QDateTime time(QDate(2024, 5, 1), QTime(12, 51, 30, 987));
    QFile zeta(items->last().path);
    ASSERT_TRUE(zeta.open(QIODevice::ReadWrite) && zeta.setFileTime(time, QFileDevice::FileModificationTime));
    const timespec early[] = {{-2, 250'000'000}, {-2, 250'000'000}}; // 1.75 seconds before 1970
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(items->at(2).path).constData(), early, 0), 0);
    const auto dated = MacFileClient::listDirectory(folder.path());
    EXPECT_EQ(dated->last().modifiedAt, time) << "to the millisecond";
    EXPECT_EQ(dated->at(2).modifiedAt->toMSecsSinceEpoch(), -1750);
}

TEST(MacFilesTests, aListingFailsInWords) {
    QTemporaryDir folder;
    const QString file = folder.filePath(u"file"_s);
    write(file, "x");
    const auto error = [](const QString &path) {
        return MacFileClient::listDirectory(path).error().errorDescription();
    };
    EXPECT_EQ(error(folder.path() + u"/gone/"_s), u"Folder not found: "_s + folder.filePath(u"gone"_s));
    EXPECT_EQ(error(file), u"Not a folder: "_s + file);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const auto unread = MacFileClient::listDirectory(folder.path());
    ::setrlimit(RLIMIT_NOFILE, &before);
    ASSERT_FALSE(unread.has_value());
    EXPECT_EQ(unread.error().errorDescription(), u"Too many open files"_s);
}

TEST(MacFilesTests, foldersAreCreatedAndNothingIsTouched) {
    QTemporaryDir folder;
    const auto created = MacFileClient::createFolder(u"New Folder"_s, folder.path() + u'/');
    EXPECT_EQ(created, folder.filePath(u"New Folder"_s));
    EXPECT_TRUE(QFileInfo(*created).isDir());
    write(*created + u"/kept"_s, "x");
    EXPECT_EQ(MacFileClient::createFolder(u"New Folder"_s, folder.path()).error(), u"File exists"_s);
    EXPECT_TRUE(QFile::exists(*created + u"/kept"_s));
    EXPECT_EQ(MacFileClient::createFolder(u"a"_s, folder.filePath(u"gone"_s)).error(),
              u"No such file or directory"_s);
}

TEST(MacFilesTests, aFoldersNameIsOneComponent) {
    QTemporaryDir folder;
    const QString parent = folder.filePath(u"parent"_s);
    ASSERT_TRUE(QDir().mkpath(parent + u"/a"_s));
    const QString slash = u"A folder’s name can’t contain “/”."_s;
    const QString noName = u"This can’t be a folder’s name. Choose another one."_s;
    const QString tooLong = u"This name is too long for a folder here. Choose a shorter one."_s;
    const std::pair<QString, QStringList> cases[] = {
        {slash, {u"a/b"_s, u"../x"_s, folder.filePath(u"absolute"_s), u"x/"_s}},
        {noName, {QString(), u"."_s, u".."_s, u"nul%1x"_s.arg(QChar(u'\0'))}},
        {tooLong, {QString(256, u'n'), QString(128, QChar(u'\u00fc'))}}};
    for (const auto &[reason, names] : cases)
        for (const QString &name : names) {
            const auto created = MacFileClient::createFolder(name, parent);
            EXPECT_EQ(created ? u"(created)"_s : created.error(), reason) << name.toStdString();
        }
    QStringList names;
    QDirIterator all(folder.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext())
        names.append(QDir(folder.path()).relativeFilePath(all.next()));
    names.sort();
    EXPECT_EQ(names, (QStringList{u"parent"_s, u"parent/a"_s}));
    for (const QString &name : {QString(255, u'n'), u"..."_s, u"a b "_s, u"~"_s, u"~root"_s})
        EXPECT_EQ(MacFileClient::createFolder(name, parent).value_or(QString()), parent + u'/' + name);
}

TEST(MacFilesTests, aDanglingLinkExistsAndAVolumeHasRoom) {
    QTemporaryDir folder;
    const QString link = folder.filePath(u"dangling"_s);
    ASSERT_TRUE(QFile::link(u"nowhere"_s, link));
    EXPECT_TRUE(MacFileClient::exists(folder.path()));
    EXPECT_TRUE(MacFileClient::exists(link)) << "writing there would replace the link's target";
    EXPECT_FALSE(MacFileClient::exists(folder.filePath(u"gone"_s)));
    EXPECT_GT(MacFileClient::availableBytes(folder.path()).value_or(0), 0);
    EXPECT_EQ(MacFileClient::availableBytes(u"/nowhere/at/all"_s), std::nullopt);
}
