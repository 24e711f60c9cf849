#include "import/cutahead.h"
#include "import/importrun.h"
#include "testrunner.h"

#include <QFile>
#include <QTest>

namespace {

constexpr int kConvention = 2;

// Names of every kind the walk meets: songs cut cleanly, songs that lack a
// piece, names that are not UTF-8, files of other kinds.
std::vector<QByteArray> namesOf(int count, int seed) {
    std::vector<QByteArray> names;
    for (int i = 0; i < count; ++i) {
        switch ((i + seed) % 5) {
        case 0:
            names.push_back(QStringLiteral("SC%1-%2 - Ärtist %3 - Title's %4.zip")
                                .arg(seed)
                                .arg(i % 100)
                                .arg(i % 7)
                                .arg(i)
                                .toUtf8());
            break;
        case 1:
            names.push_back(QByteArray("Only Title ") + QByteArray::number(i) + ".MP3");
            break;
        case 2:
            names.push_back(QByteArray("Caf\xe9 - ") + QByteArray::number(i) + ".mp3");
            break;
        case 3:
            names.push_back(QByteArray("notes ") + QByteArray::number(i) + ".txt");
            break;
        default:
            names.push_back(QByteArray("A_B - C_D - E ") + QByteArray::number(i) + ".avi");
        }
    }
    return names;
}

// What the walk would work out itself for entry `name` of `folder`.
void compareWithTheSpot(const CutAhead::Entry& e, const QString& folder, const QByteArray& name,
                        const FilePatternMatcher& matcher) {
    const QString text = QFile::decodeName(name);
    QCOMPARE(e.name, text);
    QCOMPARE(e.song, matcher.matches(text));
    if (!e.song)
        return;
    QCOMPARE(e.path, folder + text);
    QCOMPARE(e.pathOpensIt, QFile::encodeName(folder + text) == QFile::encodeName(folder) + name);
    if (!e.pathOpensIt)
        return;
    const NameCut spot = CutFileName(folder + text, kConvention);
    QCOMPARE(e.cut.values, spot.values);
    QCOMPARE(e.cut.missingPieces, spot.missingPieces);
    QCOMPARE(e.cut.shownName, spot.shownName);
    QCOMPARE(e.cut.convention, kConvention);
}

} // namespace

class TestCutAhead : public QObject {
    Q_OBJECT

private slots:
    // Folders handed over the way the walk hands them over (a subfolder in
    // the middle of its parent, one left half-way as a cancel leaves it)
    // come back entry for entry as the walk would have worked them out.
    void entriesAsWorkedOnTheSpot_data() {
        QTest::addColumn<int>("parentSize");
        QTest::addColumn<int>("childAt");
        QTest::addColumn<int>("childSize");
        QTest::addColumn<int>("parentLeftAt");
        QTest::newRow("empty folder") << 0 << -1 << 0 << -1;
        QTest::newRow("small folder") << 7 << -1 << 0 << -1;
        QTest::newRow("far larger than the work ahead") << 20000 << -1 << 0 << -1;
        QTest::newRow("subfolder in the middle") << 3000 << 1000 << 9000 << -1;
        QTest::newRow("left half-way after a subfolder") << 9000 << 10 << 300 << 5000;
    }
    void entriesAsWorkedOnTheSpot() {
        QFETCH(int, parentSize);
        QFETCH(int, childAt);
        QFETCH(int, childSize);
        QFETCH(int, parentLeftAt);
        const FilePatternMatcher matcher(ImportRun::kSongFilePattern);
        const QString parent = QStringLiteral("/songs/Dïsc/");
        const QString child = parent + QStringLiteral("sub/");
        const std::vector<QByteArray> parentNames = namesOf(parentSize, 1);
        const std::vector<QByteArray> childNames = namesOf(childSize, 2);

        CutAhead ahead(matcher, kConvention);
        const auto p = ahead.add(parent, QFile::encodeName(parent), parentNames);
        const int end = parentLeftAt >= 0 ? parentLeftAt : parentSize;
        for (int i = 0; i < end; ++i) {
            if (i == childAt) {
                const auto c = ahead.add(child, QFile::encodeName(child), childNames);
                for (int j = 0; j < childSize; ++j)
                    compareWithTheSpot(ahead.take(*c, size_t(j)), child, childNames[size_t(j)], matcher);
                ahead.done(c);
            }
            compareWithTheSpot(ahead.take(*p, size_t(i)), parent, parentNames[size_t(i)], matcher);
            if (QTest::currentTestFailed())
                return;
        }
        ahead.done(p);
        // Another folder after one left half-way is worked as well.
        const auto next = ahead.add(child, QFile::encodeName(child), namesOf(3, 3));
        compareWithTheSpot(ahead.take(*next, 2), child, namesOf(3, 3)[2], matcher);
    }

    // Dropped with folders handed over and never taken (a walk cut short):
    // it stops without waiting for the walk or finishing the work.
    void droppedWithWorkLeft() {
        const FilePatternMatcher matcher(ImportRun::kSongFilePattern);
        auto ahead = std::make_unique<CutAhead>(matcher, kConvention);
        const auto a = ahead->add(QStringLiteral("/a/"), "/a/", namesOf(50000, 4));
        const auto b = ahead->add(QStringLiteral("/b/"), "/b/", namesOf(50000, 5));
        QCOMPARE(ahead->take(*b, 0).name, QString::fromUtf8(namesOf(1, 5)[0]));
        ahead.reset();
    }
};

KV_TEST_CLASS(TestCutAhead)
#include "tst_cutahead.moc"
