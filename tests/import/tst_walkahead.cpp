#include "import/importrun.h"
#include "import/walkahead.h"
#include "testrunner.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <dirent.h>
#include <set>
#include <sys/stat.h>

namespace {

constexpr int kConvention = 2;

// One file as the walk met it.
struct Met {
    QString path;
    bool song = false;
    QByteArrayList values;
    bool operator==(const Met&) const = default;
};

QByteArrayList valuesOf(const NameCut& cut) {
    QByteArrayList out;
    for (const QByteArrayView v : cut.values())
        out << v.toByteArray();
    return out;
}

using Visited = std::set<std::pair<quint64, quint64>>;

// Goes through the tree the way the import's walk does, taking everything
// from `ahead`; a folder named `skip` is passed over, as a cancelled walk
// that a second run resumed passes over the rest of a folder.
void walkWith(WalkAhead& ahead, const QString& folder, const QByteArray& bytes, Visited& visited,
              QList<Met>& met, const QString& skip) {
    DIR* dir = ::opendir(bytes.constData());
    if (!dir) {
        ahead.open(folder, bytes, nullptr, nullptr, false);
        return;
    }
    struct stat self;
    const bool identified = ::fstat(::dirfd(dir), &self) == 0;
    const bool seen = identified && !visited.emplace(self.st_dev, self.st_ino).second;
    const auto listing = ahead.open(folder, bytes, dir, identified ? &self : nullptr, seen);
    ::closedir(dir);
    for (size_t i = 0; i < WalkAhead::size(*listing); ++i) {
        WalkAhead::Entry& e = ahead.take(*listing, i);
        const QByteArray child = bytes + e.bytes;
        const bool isFolder = IsFolderEntry(child, e.type);
        ahead.settle(*listing, e, isFolder);
        if (isFolder) {
            const QString sub = folder + e.name + QLatin1Char('/');
            if (sub != skip)
                walkWith(ahead, sub, child + '/', visited, met, skip);
            continue;
        }
        QCOMPARE(e.pathOpensIt, e.song);
        met << Met{folder + e.name, e.song, e.song ? valuesOf(e.cut) : QByteArrayList()};
    }
    ahead.done(listing);
}

// The same tree gone through with Qt's own listing, each folder's entries
// by their names' bytes, every folder once, and each name cut on the spot.
void expectedWalk(const QString& folder, std::set<QString>& folders, QList<Met>& met, const QString& skip) {
    if (!folders.insert(QFileInfo(folder).canonicalFilePath()).second)
        return;
    const FilePatternMatcher matcher(ImportRun::kSongFilePattern);
    QStringList names = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System);
    std::sort(names.begin(), names.end(),
              [](const QString& a, const QString& b) { return QFile::encodeName(a) < QFile::encodeName(b); });
    for (const QString& name : names) {
        const QString path = folder + name;
        if (QFileInfo(path).isDir()) {
            if (path + QLatin1Char('/') != skip)
                expectedWalk(path + QLatin1Char('/'), folders, met, skip);
            continue;
        }
        Met m{path, matcher.matches(name), {}};
        if (m.song)
            m.values = valuesOf(CutFileName(path, kConvention));
        met << m;
    }
}

void touch(const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    QVERIFY2(f.open(QIODevice::WriteOnly), qPrintable(path));
}

} // namespace

class TestWalkAhead : public QObject {
    Q_OBJECT

private slots:
    // What the walk takes from the helper is what it would have read and cut
    // itself, in the same order, across trees of every shape; a walk that
    // keeps to the helper's way keeps it following, and one that goes
    // another way still gets every entry right.
    void sameAsReadOnTheSpot_data() {
        QTest::addColumn<int>("folders");
        QTest::addColumn<int>("filesEach");
        QTest::addColumn<bool>("nested");
        QTest::addColumn<bool>("loopLink");
        QTest::addColumn<QString>("skip");
        QTest::addColumn<bool>("following");
        QTest::newRow("empty tree") << 0 << 0 << false << false << QString() << true;
        QTest::newRow("one folder far larger than the work ahead")
            << 1 << 9000 << false << false << QString() << true;
        QTest::newRow("subfolders between files") << 6 << 300 << true << false << QString() << true;
        QTest::newRow("a link back up the tree") << 3 << 50 << true << true << QString() << true;
        QTest::newRow("a folder passed over, then the next opened")
            << 6 << 300 << false << false << QStringLiteral("d2/") << false;
        QTest::newRow("a subtree larger than the work ahead passed over")
            << 6 << 2000 << true << false << QStringLiteral("d0/d1/") << true;
    }
    void sameAsReadOnTheSpot() {
        QFETCH(int, folders);
        QFETCH(int, filesEach);
        QFETCH(bool, nested);
        QFETCH(bool, loopLink);
        QFETCH(QString, skip);
        QFETCH(bool, following);
        QTemporaryDir tmp;
        const QString root = tmp.path() + QLatin1Char('/');
        for (int d = 0; d < folders; ++d) {
            // Nested: each folder inside the one before, between its files.
            QString folder = root;
            for (int up = nested ? 0 : d; up <= d; ++up)
                folder += QStringLiteral("d%1/").arg(up);
            for (int i = 0; i < filesEach; ++i)
                touch(folder + (i % 4 == 3 ? QStringLiteral("notes %1.txt").arg(i)
                                           : QStringLiteral("SC%1-%2 - Ärtist %3 - Tïtle %4.zip")
                                                 .arg(d)
                                                 .arg(i % 100)
                                                 .arg(i % 7)
                                                 .arg(i)));
            touch(folder + QStringLiteral(".hidden - x.zip"));
        }
        if (loopLink)
            QVERIFY(QFile::link(root, root + QStringLiteral("d0/d1/back")));
        const QString skipped = skip.isEmpty() ? QString() : root + skip;

        QList<Met> expected;
        std::set<QString> seenFolders;
        expectedWalk(root, seenFolders, expected, skipped);

        QList<Met> met;
        Visited visited;
        const QByteArray rootBytes = QFile::encodeName(root);
        WalkAhead ahead(root, rootBytes, FilePatternMatcher(ImportRun::kSongFilePattern), kConvention);
        walkWith(ahead, root, rootBytes, visited, met, skipped);
        QCOMPARE(met.size(), expected.size());
        for (qsizetype i = 0; i < met.size(); ++i) {
            QCOMPARE(met[i].path, expected[i].path);
            QVERIFY(met[i] == expected[i]);
        }
        QCOMPARE(ahead.following(), following);
    }

    // A folder that changes after the helper read it, and a link that
    // becomes a folder after the helper passed it by, are read by the walk
    // as they are when it gets there; the helper stops following.
    void changesAfterTheReadingAhead_data() {
        QTest::addColumn<bool>("linkBecomesFolder");
        QTest::newRow("a song added to a folder read ahead") << false;
        QTest::newRow("a dangling link whose folder appears") << true;
    }
    void changesAfterTheReadingAhead() {
        QFETCH(bool, linkBecomesFolder);
        QTemporaryDir tmp;
        QTemporaryDir outside;
        const QString root = tmp.path() + QLatin1Char('/');
        const QString elsewhere = outside.path() + QStringLiteral("/elsewhere");
        touch(root + QStringLiteral("a/A - First.zip"));
        touch(root + QStringLiteral("z/Z - Last.zip"));
        if (linkBecomesFolder)
            QVERIFY(QFile::link(elsewhere, root + QStringLiteral("m")));
        const QByteArray rootBytes = QFile::encodeName(root);
        WalkAhead ahead(root, rootBytes, FilePatternMatcher(ImportRun::kSongFilePattern), kConvention);
        Visited visited;
        DIR* dir = ::opendir(rootBytes.constData());
        struct stat self;
        QVERIFY(dir && ::fstat(::dirfd(dir), &self) == 0);
        visited.emplace(self.st_dev, self.st_ino);
        const auto listing = ahead.open(root, rootBytes, dir, &self, false);
        ::closedir(dir);
        // Once the last entry is ready, the helper is past everything before it.
        QCOMPARE(WalkAhead::size(*listing), size_t(linkBecomesFolder ? 3 : 2));
        ahead.take(*listing, WalkAhead::size(*listing) - 1);
        if (linkBecomesFolder)
            touch(elsewhere + QStringLiteral("/M - Middle.zip"));
        else
            touch(root + QStringLiteral("a/A - Second.zip"));

        QList<Met> met;
        for (size_t i = 0; i < WalkAhead::size(*listing); ++i) {
            WalkAhead::Entry& e = ahead.take(*listing, i);
            const QByteArray child = rootBytes + e.bytes;
            const bool isFolder = IsFolderEntry(child, e.type);
            ahead.settle(*listing, e, isFolder);
            QVERIFY(isFolder);
            walkWith(ahead, root + e.name + QLatin1Char('/'), child + '/', visited, met, {});
        }
        ahead.done(listing);
        QList<Met> expected;
        std::set<QString> seenFolders;
        expectedWalk(root, seenFolders, expected, {});
        QVERIFY(met == expected);
        QCOMPARE(met.size(), 3);
        QVERIFY(!ahead.following());
    }

    // Dropped with folders read ahead and never taken (a walk cut short):
    // it stops without waiting for the walk or reading the rest.
    void droppedWithWorkLeft() {
        QTemporaryDir tmp;
        for (int i = 0; i < 3000; ++i)
            touch(tmp.filePath(QStringLiteral("a/A - Song %1.zip").arg(i)));
        const QString root = tmp.path() + QLatin1Char('/');
        auto ahead = std::make_unique<WalkAhead>(
            root, QFile::encodeName(root), FilePatternMatcher(ImportRun::kSongFilePattern), kConvention);
        DIR* dir = ::opendir(QFile::encodeName(root).constData());
        struct stat self;
        QVERIFY(dir && ::fstat(::dirfd(dir), &self) == 0);
        const auto listing = ahead->open(root, QFile::encodeName(root), dir, &self, false);
        ::closedir(dir);
        QCOMPARE(WalkAhead::size(*listing), size_t(1));
        QCOMPARE(ahead->take(*listing, 0).name, QStringLiteral("a"));
        ahead.reset();
    }
};

KV_TEST_CLASS(TestWalkAhead)
#include "tst_walkahead.moc"
