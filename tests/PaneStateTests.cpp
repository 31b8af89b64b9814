// One file pane by itself: what it shows and what of that is selected.

#include "support/Files.h"
#include "support/Printers.h"

#include "State/PaneState.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace vantrel;

namespace {

/// Files of one letter each.
QList<FileItem> files(const char *names) {
    QList<FileItem> items;
    for (const char name : QByteArrayView(names))
        items.append({QUuid::createUuid(), QChar::fromLatin1(name), {}, false, {}, {}, {}});
    return items;
}

class PaneStateTests : public ::testing::Test {
protected:
    [[nodiscard]] QString shown() const { return namesOf(pane.visibleItems()).join(QString()); }

    PaneState pane{BrowserSide::android, u"/sdcard"_s};
};

} // namespace

TEST_F(PaneStateTests, identitiesThatAreGoneLeaveTheSelection) {
    const QList<FileItem> old = files("abc");
    pane.setItems(old);
    const quint64 listing = pane.open(u"/sdcard"_s);
    pane.selectAllVisible(); // while the listing loads
    ASSERT_EQ(pane.selectedIDs().size(), 3);
    QSignalSpy selection(&pane, &PaneState::selectedIDsChanged);
    QObject::connect(&pane, &PaneState::itemsChanged, &pane,
                     [&] { EXPECT_TRUE(pane.selectedIDs().isEmpty()) << "shown together with ghosts"; });
    ASSERT_TRUE(pane.isNewest(listing));
    pane.setItems(files("abc"));
    EXPECT_EQ(selection.count(), 1);

    // Those that are still there stay, shown or not.
    QList<FileItem> items = pane.items();
    pane.selectAllVisible();
    pane.setFilter(u"A"_s);
    EXPECT_EQ(shown(), u"a"_s);
    items.removeLast();
    QObject::disconnect(&pane, &PaneState::itemsChanged, &pane, nullptr);
    pane.setItems(items);
    EXPECT_EQ(pane.selectedIDs(), (QSet<QUuid>{items.at(0).id, items.at(1).id}));

    // Hits come and go in the same way; what is selected in the folder behind them stays.
    const QList<FileItem> hits = files("xy");
    pane.setHits(hits);
    pane.selectItem(hits.at(0));
    pane.selectItem(hits.at(1));
    pane.setHits(QList<FileItem>{hits.at(1)});
    EXPECT_EQ(pane.selectedIDs(), (QSet<QUuid>{items.at(0).id, items.at(1).id, hits.at(1).id}));
    pane.setHits(std::nullopt);
    EXPECT_EQ(pane.selectedIDs(), (QSet<QUuid>{items.at(0).id, items.at(1).id}));
    pane.empty();
    EXPECT_TRUE(pane.selectedIDs().isEmpty());
}

TEST_F(PaneStateTests, showsTheFolderWhatMatchesOrTheHitsAndSaysWhenThatChanges) {
    QSignalSpy changes(&pane, &PaneState::visibleItemsChanged);
    auto isTold = [&, told = 0](bool expected) mutable {
        const bool wasTold = changes.count() == told + (expected ? 1 : 0);
        told = int(changes.count());
        return wasTold;
    };
    pane.setItems(files("abA"));
    EXPECT_TRUE(isTold(true));
    pane.setFilter(u"a"_s);
    EXPECT_EQ(shown(), u"aA"_s);
    EXPECT_TRUE(isTold(true));
    pane.setFilter(u"a"_s);
    pane.setItems(pane.items());
    EXPECT_TRUE(isTold(false));
    pane.setHits(files("x"));
    EXPECT_EQ(shown(), u"x"_s);
    EXPECT_TRUE(isTold(true));
    pane.setItems(files("abc")); // behind the hits
    EXPECT_TRUE(isTold(false));
    pane.setHits(std::nullopt);
    EXPECT_EQ(shown(), u"a"_s);
    pane.setFilter({});
    EXPECT_EQ(shown(), u"abc"_s);
    EXPECT_TRUE(pane.visibleItems().isSharedWith(pane.items()));
}

TEST_F(PaneStateTests, filtersWhateverTheCase) {
    const std::pair<QString, QString> cases[] = {
        {u"_1.J"_s, u"IMG_1.jpg"_s},
        {u"[at]"_s, u"[AT]{at}.png"_s},
        {u"größe"_s, u"GRÖSSE-größe GRÖßE"_s},
        {u"zz"_s, QString()},
    };
    QList<FileItem> items;
    for (const QString &name :
         {u"IMG_1.jpg"_s, u"[AT]{at}.png"_s, u"`{.png"_s, u"GRÖSSE-größe"_s, u"GRÖßE"_s})
        items.append({QUuid::createUuid(), name, {}, false, {}, {}, {}});
    pane.setItems(items);
    for (const auto &[text, found] : cases) {
        pane.setFilter(text);
        EXPECT_EQ(namesOf(pane.visibleItems()).join(u' '), found) << qPrintable(text);
    }
}

TEST_F(PaneStateTests, aListingIsAwaitedUntilAnotherIsAskedForOrThePaneIsEmptied) {
    const quint64 first = pane.open(u"/sdcard"_s);
    const quint64 second = pane.open(u"/sdcard"_s);
    EXPECT_FALSE(pane.isNewest(first));
    EXPECT_TRUE(pane.isNewest(second));
    pane.setLoading(true);
    pane.empty(u"gone"_s);
    EXPECT_FALSE(pane.isNewest(second));
    EXPECT_FALSE(pane.isLoading());
    EXPECT_EQ(pane.browseError(), u"gone"_s);

    // Another folder begins without what was selected and said in this one.
    pane.setItems(files("ab"));
    pane.selectAllVisible();
    pane.open(u"/sdcard/DCIM"_s);
    EXPECT_TRUE(pane.selectedIDs().isEmpty());
    EXPECT_EQ(pane.browseError(), std::nullopt);
}

TEST_F(PaneStateTests, remembersHowFoldersWereLeftWithinBounds) {
    const auto list = [this](const QString &path, const QList<FileItem> &items, Arrival arrival) {
        pane.open(path, arrival);
        pane.setItems(items);
    };
    const auto leave = [&](const QString &path, const QString &top) {
        list(path, files("ab"), Arrival::anew);
        pane.selectAllVisible();
        pane.setPlace({top, 7, 3, u"b"_s});
    };
    leave(u"/s/first"_s, u"a"_s);
    const qint64 token = pane.placeToken();
    pane.open(u"/s/slow"_s);
    pane.setPlace({u"elsewhere"_s}); // of the entries that stand there still
    list(u"/s/first"_s, files("bc"), Arrival::back);
    EXPECT_NE(pane.placeToken(), token);
    EXPECT_EQ(pane.place(), (PanePlace{u"a"_s, 7, 3, u"b"_s}));
    EXPECT_EQ(namesOf(pane.selectedItems()), QStringList(u"b"_s));

    // Hits are not the folder's, and the folder is at its place when they are gone.
    pane.setHits(files("x"));
    pane.setPlace({u"x"_s});
    const qint64 tokenOfHits = pane.placeToken();
    pane.setHits(std::nullopt);
    EXPECT_NE(pane.placeToken(), tokenOfHits);
    EXPECT_EQ(pane.place().top, u"a");

    for (int i = 0; i < VisitedFolders::mostFolders; ++i)
        leave(u"/s/%1"_s.arg(i), u"a"_s);
    list(u"/s/first"_s, files("ab"), Arrival::back);
    EXPECT_TRUE(pane.selectedIDs().isEmpty()) << "the oldest is forgotten";
    list(u"/s/2"_s, files("ab"), Arrival::back);
    EXPECT_EQ(pane.selectedIDs().size(), 2);
    for (const bool isAnother : {true, false}) {
        pane.setOwner(u"phone"_s);
        list(u"/s/3"_s, files("ab"), Arrival::back);
        EXPECT_EQ(pane.selectedIDs().isEmpty(), isAnother);
        leave(u"/s/3"_s, u"a"_s);
        list(u"/s/4"_s, files("ab"), Arrival::anew);
    }
}
