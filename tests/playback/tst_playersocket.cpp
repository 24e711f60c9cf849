#include "playback/playersocket.h"
#include "playback/winamp_control.h"
#include "scriptedprompts.h"
#include "testrunner.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr uid_t kOtherUser = 65534;

// When this executable is started with KV_FOREIGN_PLAYER set, it is not a test
// run: it turns into another user, listens at that path as if it were a
// player, answers every request with success, prints "ready" and serves until
// it is killed. It runs before main() and touches none of the program's globals.
struct ForeignPlayerMode {
    ForeignPlayerMode() {
        const QByteArray path = qgetenv("KV_FOREIGN_PLAYER");
        if (path.isEmpty())
            return;
        if (::setgid(kOtherUser) != 0 || ::setuid(kOtherUser) != 0)
            ::_exit(3);
        const int server = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un addr{};
        addr.sun_family = AF_UNIX;
        ::strncpy(addr.sun_path, path.constData(), sizeof addr.sun_path - 1);
        if (::bind(server, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 || ::listen(server, 4) != 0)
            ::_exit(4);
        std::printf("ready\n");
        std::fflush(stdout);
        for (;;) {
            const int client = ::accept(server, nullptr, nullptr);
            QByteArray pending;
            char buf[512];
            for (ssize_t n; client >= 0 && (n = ::read(client, buf, sizeof buf)) > 0;) {
                pending.append(buf, n);
                for (qsizetype nl; (nl = pending.indexOf('\n')) >= 0; pending.remove(0, nl + 1)) {
                    const QJsonObject req = QJsonDocument::fromJson(pending.left(nl)).object();
                    const QJsonObject reply{
                        {"request_id", req.value("request_id")}, {"error", "success"}, {"data", "0.35.1"}};
                    const QByteArray line = QJsonDocument(reply).toJson(QJsonDocument::Compact) + '\n';
                    if (::write(client, line.constData(), size_t(line.size())) < 0)
                        break;
                }
            }
            if (client >= 0)
                ::close(client);
        }
    }
} foreignPlayerMode;

bool chmodTo(const QString& path, mode_t mode) {
    return ::chmod(QFile::encodeName(path).constData(), mode) == 0;
}
bool chownTo(const QString& path, uid_t uid) {
    return ::lchown(QFile::encodeName(path).constData(), uid, gid_t(uid)) == 0;
}

} // namespace

// Where the player's socket lies and whom the link will talk to there.
class TestPlayerSocket : public QObject {
    Q_OBJECT

private slots:
    // The socket goes into a folder no one else can enter. A folder of the
    // fixed name that is not private (made first by someone else, open to
    // others, a link) is passed over for a fresh private one.
    void socketLiesInAPrivateFolder_data() {
        QTest::addColumn<QString>("runtime"); // "private", "open", "none" or "too long"
        QTest::addColumn<QString>("squat");   // what stands at the fixed name already
        QTest::addColumn<QString>("where");   // "runtime", "fixed" or "fresh"
        const auto row = [](const char* tag, const char* runtime, const char* squat, const char* where) {
            QTest::newRow(tag) << QString(runtime) << QString(squat) << QString(where);
        };
        row("private runtime folder", "private", "", "runtime");
        row("no runtime folder", "none", "", "fixed");
        row("runtime folder open to others", "open", "", "fixed");
        row("runtime folder too deep for a socket", "too long", "", "fixed");
        row("fixed folder already private", "none", "private", "fixed");
        row("fixed folder open to others", "none", "open", "fresh");
        row("fixed name is a link", "none", "link", "fresh");
        row("fixed folder of another user", "none", "foreign", "fresh");
    }
    void socketLiesInAPrivateFolder() {
        QFETCH(QString, runtime);
        QFETCH(QString, squat);
        QFETCH(QString, where);
        if (squat == "foreign" && ::geteuid() != 0)
            QSKIP("only root can give a folder to another user");
        QTemporaryDir base;
        QString runtimeFolder;
        if (runtime == "private" || runtime == "open") {
            runtimeFolder = base.filePath("runtime");
            QVERIFY(QDir().mkpath(runtimeFolder));
            QVERIFY(chmodTo(runtimeFolder, runtime == "open" ? 0755 : 0700));
        } else if (runtime == "too long") {
            runtimeFolder = base.filePath(QString(120, 'r'));
            QVERIFY(QDir().mkpath(runtimeFolder));
            QVERIFY(chmodTo(runtimeFolder, 0700));
        }
        const QString temp = base.filePath("tmp");
        QVERIFY(QDir().mkpath(temp));
        const QString fixed = QDir(temp).filePath(QStringLiteral("KVPLAY-%1").arg(::geteuid()));
        if (squat == "link") {
            QVERIFY(QDir().mkpath(base.filePath("elsewhere")));
            QVERIFY(chmodTo(base.filePath("elsewhere"), 0700));
            QVERIFY(QFile::link(base.filePath("elsewhere"), fixed));
        } else if (!squat.isEmpty()) {
            QVERIFY(QDir().mkpath(fixed));
            QVERIFY(chmodTo(fixed, squat == "open" ? 0777 : 0700));
            if (squat == "foreign")
                QVERIFY(chownTo(fixed, kOtherUser));
        }

        const QString path = PlayerSocket::choose(runtimeFolder, temp);
        QCOMPARE(QFileInfo(path).fileName(), QStringLiteral("KVPLAY"));
        const QString folder = QFileInfo(path).path();
        QVERIFY2(PlayerSocket::isPrivateFolder(folder), qPrintable(folder));
        const QString expected = where == "runtime" ? runtimeFolder : where == "fixed" ? fixed : QString();
        if (expected.isEmpty())
            QVERIFY2(folder.startsWith(fixed + "-") && folder.size() == fixed.size() + 7, qPrintable(folder));
        else
            QCOMPARE(folder, expected);
    }

    // A socket at the player's place that belongs to someone else, or that
    // someone else's process listens behind, is never talked to.
    void otherUsersSocketIsNotThePlayer_data() {
        QTest::addColumn<bool>("fileLooksOurs"); // the socket file given to this user
        QTest::newRow("socket owned by another user") << false;
        QTest::newRow("our socket file, another user listening") << true;
    }
    void otherUsersSocketIsNotThePlayer() {
        QFETCH(bool, fileLooksOurs);
        if (::geteuid() != 0)
            QSKIP("only root can act as another user");
        ScriptedPrompts prompts;
        const QString place = WinAMP_Control::playerSocketPath();
        QVERIFY(!place.isEmpty());
        QFile::remove(place);
        QTemporaryDir shared;
        QVERIFY(chmodTo(shared.path(), 0777));
        const QString listening = shared.filePath("sock");
        QProcess foreign;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("KV_FOREIGN_PLAYER", listening);
        foreign.setProcessEnvironment(env);
        foreign.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(foreign.waitForReadyRead(10000));
        QCOMPARE(foreign.readLine().trimmed(), QByteArray("ready"));
        QVERIFY(QFile::rename(listening, place));
        if (fileLooksOurs)
            QVERIFY(chownTo(place, ::geteuid()));

        WinAMP_Control link;
        const bool found = link.FindPlayer();
        foreign.kill();
        foreign.waitForFinished();
        QFile::remove(place);
        QVERIFY(!found);
        QVERIFY(!link.isConnected());
    }
};

KV_TEST_CLASS(TestPlayerSocket)
#include "tst_playersocket.moc"
