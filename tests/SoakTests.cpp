// Thousands of copies while the phone comes and goes and the user does everything at once. Every file must
// end once, in a state that the disk bears out, and nothing may be left over. VANTREL_SOAK_FILES and
// VANTREL_SOAK_SEED choose how many files and which run; ./test --soak is the long one.

#include "support/ModelTest.h"
#include "support/Processes.h"

#include "Transfers/StagedName.h"

#ifdef __SANITIZE_ADDRESS__
extern "C" size_t __sanitizer_get_current_allocated_bytes(); // gcc brings no header for it
#endif

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

/// What is allocated; 0 without the sanitizer, since nobody else counts exactly. (The resident size is that
/// of the sanitizer, which keeps what was freed.)
size_t allocatedBytes() {
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    return 0;
#endif
}

enum class Ending { waiting, running, completed, failed };

/// One copy and what the queue has said of it.
struct Copy {
    QueueItem item;
    Ending ending = Ending::waiting;
    int endings = 0;
    bool isRemoved = false;
};

class Soak : public ModelTest {
protected:
    Soak() {
        for (const QString &name : {u"kept/a.txt"_s, u"kept/b.txt"_s}) {
            phone.write(name, "kept");
            write(mac.filePath(name), "kept");
        }
        QObject::connect(state.get(), &AppState::queueChanged, state.get(), [this] { followQueue(); });
        const auto onRow = [this](const QModelIndex &changed) {
            follow(state->queue().at(changed.row()));
            constexpr quint32 oneIn = 6;
            if (m_isRestless && random.bounded(oneIn) == 0)
                QTimer::singleShot(0, state.get(), [this] { doSomething(); });
        };
        QObject::connect(state->transfers().queueModel(), &QAbstractItemModel::dataChanged, state.get(),
                         onRow);
    }

    [[nodiscard]] QString here(const QString &name) const { return mac.filePath(name); }

    /// Mostly small, sometimes empty, sometimes long enough to be interrupted.
    static QByteArray contentsOf(const QString &name) {
        QRandomGenerator generator(quint32(qHash(name, 1)));
        const quint32 sizes[] = {0, 100, 5000, 20'000, 300'000};
        QByteArray bytes(qsizetype(generator.bounded(sizes[generator.bounded(5U)] + 1)), '\0');
        for (char &byte : bytes)
            byte = char(generator.bounded(256));
        return bytes;
    }

    void show(const QString &phoneFolder, const QString &macFolder) {
        browsePhone(phoneFolder);
        browseMac(macFolder);
        ASSERT_EQ(state->androidBrowseError(), std::nullopt);
    }
    void connectPhone() {
        phone.plug();
        while (!state->device().isConnected)
            refresh();
    }
    void rest() {
        ASSERT_TRUE(waitFor([&] {
            return !state->isTransferring() && !state->isSearchingAndroid() &&
                   Background::workers().activeThreadCount() == 0;
        }));
        Background::finish(); // ends the idle threads, too, whose number is not to be counted
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // -- What the queue says

    void follow(const QueueItem &item) {
        Copy &copy = copies[item.id];
        copy.item = item;
        const Ending now = item.status.is<QueueItemStatus::Waiting>()     ? Ending::waiting
                           : item.status.is<QueueItemStatus::Completed>() ? Ending::completed
                           : item.status.is<QueueItemStatus::Failed>()    ? Ending::failed
                                                                          : Ending::running;
        EXPECT_TRUE(copy.endings == 0 || copy.ending == now) << "it had ended: " << item.name.toStdString();
        if (copy.ending != now && now >= Ending::completed)
            ++copy.endings;
        copy.ending = now;
    }
    void followQueue() {
        for (const QueueItem &item : state->queue())
            follow(item);
    }

    // -- The user and the phone

    void doSomething() {
        if (!m_isRestless)
            return;
        const auto one = [&](const QStringList &choices) {
            return choices.at(random.bounded(choices.size()));
        };
        if (m_isUnplugged)
            return plugAgain();
        const quint32 action = random.bounded(100U);
        if (action < 3) {
            phone.unplug();
            m_isUnplugged = true;
            // All copies wait then, and nothing changes any more until it is back.
            constexpr int away = 300;
            QTimer::singleShot(away, state.get(), [this] { plugAgain(); });
        } else if (action < 13) {
            state->refreshDevice(action % 2 == 0 ? PhoneWatch::Spinner::shown : PhoneWatch::Spinner::hidden);
        } else if (action < 38) {
            state->browseAndroid(one({u"/sdcard"_s, u"/sdcard/out"_s, u"/sdcard/in"_s, u"/sdcard/nope"_s}));
        } else if (action < 58) {
            state->browseMac(one({here(u"in"_s), here(u"out"_s), u"/nope"_s}));
        } else if (action < 78) {
            state->setAndroidSearchScope(AndroidSearchScope::everywhere);
            state->setAndroidSearchText(one({u"1"_s, u"file 1"_s, QString()}));
            state->scheduleAndroidSearch();
        } else if (action < 98) {
            const auto &queue = state->queue();
            if (!queue.isEmpty())
                remove(queue.at(random.bounded(queue.size())).id);
        } else {
            const QList<QueueItem> before = state->queue();
            state->clearQueue();
            for (const QueueItem &item : before)
                copies[item.id].isRemoved = !item.status.is<QueueItemStatus::Transferring>();
        }
    }
    void plugAgain() {
        phone.plug();
        m_isUnplugged = false;
        constexpr int soon = 50;
        if (state->isRefreshingDevice()) // and may have seen it away: then nobody would look again
            QTimer::singleShot(soon, state.get(), [this] { plugAgain(); });
        else
            state->refreshDevice(PhoneWatch::Spinner::shown);
    }
    void remove(QUuid id) {
        state->removeQueueItem(id);
        copies[id].isRemoved = true;
    }

    // -- One round: as many files each way

    void copyBothWays(int round, int filesEachWay) {
        for (const QString &folder : {u"in"_s, u"out"_s}) {
            QDir(here(folder)).removeRecursively();
            QDir(phone.hostPath(folder)).removeRecursively();
            QDir().mkpath(here(folder));
            phone.makeFolder(folder);
        }
        for (int i = 0; i < filesEachWay; ++i) {
            const QString name = u"out/%1 file %2"_s.arg(round).arg(i);
            phone.write(name, contentsOf(u"pull "_s + name));
            write(here(name), contentsOf(u"push "_s + name));
        }
        show(u"/sdcard/out"_s, here(u"in"_s));
        state->selectAllVisible(BrowserSide::android);
        state->transferAndroidToMac();
        show(u"/sdcard/in"_s, here(u"out"_s));
        state->selectAllVisible(BrowserSide::mac);
        state->transferMacToAndroid();
        ASSERT_EQ(copies.size(), 2 * filesEachWay);

        m_isRestless = true;
        EXPECT_TRUE(waitFor([&] { return !state->isTransferring() && state->waitingCount() == 0; }));
        m_isRestless = false;
        m_isUnplugged = false;
        state->clearAndroidSearch();
        rest();
    }

    void compareWithDisk() {
        qsizetype arrived = 0;
        for (const Copy &copy : std::as_const(copies)) {
            SCOPED_TRACE(
                QString(copy.item.destinationPath() % u": "_s % copy.item.progressLabel()).toStdString());
            const bool isPull = copy.item.direction == TransferDirection::androidToMac;
            const QByteArray wanted = contentsOf((isPull ? u"pull out/"_s : u"push out/"_s) + copy.item.name);
            const QString path =
                isPull ? copy.item.destinationPath() : phone.hostPath(copy.item.destinationPath());
            const bool isThere = QFile::exists(path);
            const QByteArray found = processes::contentsOf(path);
            arrived += isThere ? 1 : 0;
            EXPECT_EQ(
                processes::contentsOf(isPull ? phone.hostPath(copy.item.sourcePath) : copy.item.sourcePath),
                wanted)
                << "the original is untouched";
            EXPECT_EQ(copy.endings, copy.isRemoved && copy.ending <= Ending::running ? 0 : 1);
            // What was removed while it ran may have taken its name just then. Nothing is ever there in part.
            if (copy.ending == Ending::completed)
                EXPECT_TRUE(isThere && found == wanted);
            else
                EXPECT_TRUE(!isThere || (copy.isRemoved && found == wanted));
            ++outcomes[copy.isRemoved && copy.ending <= Ending::running ? u"removed"_s
                       : copy.ending == Ending::completed               ? u"done"_s
                                                                        : u"failed"_s];
        }
        const auto filesIn = [](const QString &folder) {
            QStringList names =
                QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
            names.removeIf(
                &StagedName::isStaged); // a phone that was unplugged keeps it for the next copy to sweep
            return names.size();
        };
        EXPECT_EQ(filesIn(here(u"in"_s)) + filesIn(phone.hostPath(u"in"_s)), arrived)
            << "nothing else was written";
    }

    QHash<QUuid, Copy> copies;
    QMap<QString, int> outcomes;
    QRandomGenerator random;

private:
    bool m_isRestless = false;
    bool m_isUnplugged = false;
};

TEST_F(Soak, everyFileEndsOnceAsTheDiskSaysAndNothingIsLeftOver) {
    constexpr int filesEachWay = 50;
    const int files = std::max(qEnvironmentVariableIntValue("VANTREL_SOAK_FILES"), 16 * filesEachWay);
    const quint32 seed = qEnvironmentVariableIsSet("VANTREL_SOAK_SEED")
                             ? qEnvironmentVariable("VANTREL_SOAK_SEED").toUInt()
                             : QRandomGenerator::global()->generate();
    random.seed(seed);
    std::printf("VANTREL_SOAK_SEED=%u\n", seed);
    std::fflush(stdout);

    QElapsedTimer clock;
    clock.start();
    const int rounds = (files + 2 * filesEachWay - 1) / (2 * filesEachWay);
    QList<size_t> memory; // of each round, at rest
    QList<qsizetype> descriptors;
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        phone.resetAll();
        phone.set(u"stderr-progress"_s, "off");
        phone.set(u"bandwidth"_s, "20");
        connectPhone();
        copyBothWays(round, filesEachWay);
        compareWithDisk();
        EXPECT_TRUE(processes::children().isEmpty());

        connectPhone();
        copies.clear();
        copies.squeeze();
        state->clearQueue();
        show(u"/sdcard/kept"_s, here(u"kept"_s));
        rest();
        memory.append(allocatedBytes());
        descriptors.append(processes::openDescriptors());
        if (round + 1 == rounds || (round + 1) % 10 == 0) {
            std::printf("%5d files, %3lld s: %d done, %d failed, %d removed; %zu bytes, %lld descriptors\n",
                        (round + 1) * 2 * filesEachWay, clock.elapsed() / 1000, outcomes[u"done"_s],
                        outcomes[u"failed"_s], outcomes[u"removed"_s], memory.last(),
                        static_cast<long long>(descriptors.last()));
            std::fflush(stdout);
        }
    }
    memory.removeFirst(); // the round that starts the threads
    // The least of several rounds: a round may happen to hold something, a leak stays.
    const qsizetype third = memory.size() / 3;
    const auto least = [](const QList<size_t> &values) {
        return double(*std::min_element(values.cbegin(), values.cend()));
    };
    const double early = least(memory.mid(0, third));
    const double late = least(memory.mid(memory.size() - third));
    std::printf("allocated at rest: %.0f bytes in the first third, %.0f in the last\n", early, late);
    // How many threads the busiest moment took is chance, and each keeps some memory.
    constexpr double ofThreads = 64 << 10;
    EXPECT_LE(late, 1.05 * early + ofThreads);
    EXPECT_EQ(descriptors.last(), descriptors.first());
    EXPECT_GT(outcomes[u"done"_s], files / 4) << "most of it must have been work";
}

} // namespace
} // namespace vantrel
