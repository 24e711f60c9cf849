#include "playback/mpvinstance.h"
#include "testrunner.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <atomic>
#include <chrono>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

// The far end of a socket pair playing a player: it answers every request
// with success after `latencyMs`, except the first, which it holds for
// `freezeMs` (a player stopped for a while).
class ScriptedPeer {
public:
    ScriptedPeer(int fd, int freezeMs, int latencyMs)
        : m_fd(fd), m_thread([=, this] {
              QByteArray pending;
              char buf[256];
              bool first = true;
              for (ssize_t n; !m_stop && (n = ::read(fd, buf, sizeof buf)) > 0;) {
                  pending.append(buf, n);
                  for (qsizetype nl; (nl = pending.indexOf('\n')) >= 0; pending.remove(0, nl + 1)) {
                      const QJsonObject req = QJsonDocument::fromJson(pending.left(nl)).object();
                      std::this_thread::sleep_for(std::chrono::milliseconds(first ? freezeMs : latencyMs));
                      first = false;
                      const QJsonObject reply{
                          {"request_id", req.value("request_id")}, {"error", "success"}, {"data", true}};
                      const QByteArray line = QJsonDocument(reply).toJson(QJsonDocument::Compact) + '\n';
                      if (::write(fd, line.constData(), size_t(line.size())) < 0)
                          return;
                  }
              }
          }) {}
    ~ScriptedPeer() {
        m_stop = true;
        ::shutdown(m_fd, SHUT_RDWR);
        m_thread.join();
        ::close(m_fd);
    }

private:
    int m_fd;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

} // namespace

// The connection's time-outs against a peer whose answers come late.
class TestMpvInstance : public QObject {
    Q_OBJECT

private slots:
    // A player that froze for a while and then answers slowly (more slowly
    // than the brief wait of a stalled connection, well within the time-out)
    // is heard again: once it speaks, every request gets its answer, and the
    // stall was reported once.
    void slowPlayerAfterAStallIsHeardAgain() {
        int fds[2];
        QVERIFY(::socketpair(AF_UNIX, SOCK_STREAM, 0, fds) == 0);
        MpvInstance conn;
        QVERIFY(conn.adoptDescriptor(fds[0]));
        conn.setTimeout(1000);
        int stalls = 0;
        conn.setStallHandler([&](const QString&) { ++stalls; });
        const int latency = 3 * MpvInstance::kStalledWaitMs / 2;
        ScriptedPeer peer(fds[1], 1300, latency);
        QVERIFY(!conn.property("pause").has_value());
        QVERIFY(conn.isStalled());
        // Asked until it answers (each ask costs the stalled connection's brief
        // wait), then three times more.
        QStringList answers;
        QElapsedTimer waited;
        waited.start();
        while (!answers.contains("answered") && waited.elapsed() < 10000)
            answers.append(conn.property("pause").has_value() ? "answered" : "none");
        for (int i = 0; i < 3; ++i)
            answers.append(conn.property("pause").has_value() ? "answered" : "none");
        conn.close();
        const qsizetype heard = answers.indexOf("answered");
        QVERIFY2(heard >= 0 && !answers.mid(heard).contains("none"), qPrintable(answers.join(", ")));
        QVERIFY(!conn.isStalled());
        QCOMPARE(stalls, 1);
    }
};

KV_TEST_CLASS(TestMpvInstance)
#include "tst_mpvinstance.moc"
