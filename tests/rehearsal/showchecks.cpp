// The show's readings of the program and the player, what it expects of
// them, and the pictures it keeps for people.

#include "show.h"

#include "catalogue/database.h"
#include "playback/winamp_control.h"
#include "playerwindow.h"
#include "queue/queuemodel.h"
#include "screens/frmmain.h"
#include "screens/mainparts.h"
#include "workspace.h"

#include <QAbstractButton>
#include <QDateTime>
#include <QDir>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>

#include <cmath>
#include <unistd.h>

namespace {

const QString kPlayerClass = QStringLiteral("KVPLAY");
constexpr int kPictureMs = 8000;
// A CD+G screen is mostly its background; the band of tiles and the edges take the rest.
constexpr double kSongShare = 0.5;
// Black is black: the idle screen's logo and line of text light well under a
// tenth of the window, so almost nothing may be lit.
constexpr double kBlackShare = 0.97;
constexpr double kLitShare = 0.002;

QString rowsText(const QList<SingerRow>& rows) {
    QStringList lines;
    for (const SingerRow& r : rows)
        lines << r.text();
    return lines.isEmpty() ? QStringLiteral("(none)") : lines.join(QStringLiteral("; "));
}

QList<SingerRow> rowsOf(const QString& sql) {
    QList<SingerRow> rows;
    QSqlQuery q(dbConnection());
    if (!q.exec(sql))
        return rows;
    while (q.next())
        rows << SingerRow{q.value(0).toString(), q.value(1).toString(), q.value(2).toString(),
                          q.value(3).toInt()};
    return rows;
}

QString processState(qint64 pid) {
    QFile f(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!f.open(QIODevice::ReadOnly))
        return {};
    // pid (comm) state ppid ...: the command may hold blanks, so read behind its closing bracket.
    const QByteArray stat = f.readAll();
    return QString::fromLatin1(stat.mid(stat.lastIndexOf(')') + 2));
}

} // namespace

// ---------------------------------------------------------------- readings

QString Show::textOf(QWidget& in, const QString& name, Where where) {
    QWidget* w = in.findChild<QWidget*>(name);
    if (auto* label = qobject_cast<QLabel*>(w))
        return label->text();
    if (auto* box = qobject_cast<QLineEdit*>(w))
        return box->text();
    if (auto* button = qobject_cast<QAbstractButton*>(w))
        return button->text();
    fail(QStringLiteral("there is no text control %1 on %2").arg(name, in.windowTitle()), where);
}

QList<QStringList> Show::searchResults() {
    QList<QStringList> rows;
    const QAbstractItemModel* m = window().olvSearchResults->model();
    for (int r = 0; m && r < m->rowCount(); ++r)
        rows << QStringList{m->index(r, 1).data().toString(), m->index(r, 2).data().toString(),
                            m->index(r, 3).data().toString(), m->index(r, 4).data().toString()};
    return rows;
}

int Show::position() {
    return player().GetPositionSeconds();
}

QString Show::status() {
    return player().GetStatus();
}

QList<SingerRow> Show::queue() {
    QList<SingerRow> rows;
    const QAbstractItemModel* m = window().OsenXPListBox1->model();
    for (int r = 0; m && r < m->rowCount(); ++r) {
        auto cell = [&](int column) { return m->index(r, column).data().toString(); };
        rows << SingerRow{cell(QueueModel::ColPerformer), cell(QueueModel::ColArtist),
                          cell(QueueModel::ColTrack), cell(QueueModel::ColKey).toInt()};
    }
    return rows;
}

QList<SingerRow> Show::savedQueue() {
    return rowsOf(QStringLiteral(
        "SELECT PerformerName, ArtistName, TrackName, SongKey FROM tblQueue ORDER BY QueuePos"));
}

QList<SingerRow> Show::history() {
    return rowsOf(
        QStringLiteral("SELECT SingerName, Artist, Title, [Key] FROM tblKaraokeTrackHistory ORDER BY rowid"));
}

double Show::playerKey() {
    const auto filters = player().connection().property(QStringLiteral("af"));
    if (!filters)
        return NAN;
    for (const QJsonValue& f : filters->toArray()) {
        const QJsonObject o = f.toObject();
        if (o.value(QStringLiteral("name")).toString() != QLatin1String("rubberband"))
            continue;
        const double scale = o.value(QStringLiteral("params"))
                                 .toObject()
                                 .value(QStringLiteral("pitch-scale"))
                                 .toVariant()
                                 .toDouble();
        return scale > 0 ? 12.0 * std::log2(scale) : NAN;
    }
    return 0;
}

// ---------------------------------------------------------------- expectations

void Show::expect(bool condition, const QString& what, Where where) {
    if (!condition)
        fail(QStringLiteral("expected ") + what, where);
}

void Show::expectSoon(const std::function<bool()>& condition, const QString& what,
                      const std::function<QString()>& now, int ms, Where where) {
    if (!QTest::qWaitFor(condition, ms))
        fail(QStringLiteral("expected within %1 s: %2; found: %3").arg(ms / 1000.0).arg(what, now()), where);
}

void Show::expectPlayer(const QString& wanted, Span span, Where where) {
    QString seen;
    expectSoon(
        [&] {
            const QString s = status();
            const int at = position();
            seen = QStringLiteral("%1 at %2 s").arg(s).arg(at);
            return s == wanted && span.holds(at);
        },
        QStringLiteral("the player %1 %2").arg(wanted, span.text()), [&] { return seen; }, 10000, where);
}

void Show::expectSongGoesOnFrom(int from, Where where) {
    const QString title = window(where).lblCurrentSong->text();
    QElapsedTimer clock;
    clock.start();
    QString seen;
    while (clock.elapsed() < 10000) {
        const QString s = status();
        const int at = position();
        seen = QStringLiteral("%1 at %2 s").arg(s).arg(at);
        if (window(where).lblCurrentSong->text() != title)
            fail(QStringLiteral("\"%1\" was on stage, now \"%2\" is")
                     .arg(title, window().lblCurrentSong->text()),
                 where);
        if (s == QLatin1String("PLAYING") && at >= 0 && at < from)
            fail(
                QStringLiteral("the song started again: it was at %1 s, now it is at %2 s").arg(from).arg(at),
                where);
        if (s == QLatin1String("PLAYING") && at >= from + 1)
            return;
        QTest::qWait(100);
    }
    fail(QStringLiteral("the song to go on from %1 s; found: %2").arg(from).arg(seen), where);
}

void Show::expectStage(const SingerRow& row, Where where) {
    frmMain& w = window(where);
    auto onStage = [&] {
        return SingerRow{w.lblCurrentPerformer->text(), w.lblCurrentArtist->text(), w.lblCurrentSong->text(),
                         w.btnKeyReset->text().toInt()};
    };
    double key = 0;
    expectSoon(
        [&] {
            key = playerKey();
            return onStage() == row && std::abs(key - row.key) < 0.01;
        },
        QStringLiteral("on stage %1, the player shifting %2 semitones").arg(row.text()).arg(row.key),
        [&] {
            return QStringLiteral("%1, the player shifting %2").arg(onStage().text()).arg(key, 0, 'f', 2);
        },
        5000, where);
}

void Show::expectQueue(const QList<SingerRow>& rows, Where where) {
    expectSoon(
        [&] { return queue() == rows && savedQueue() == rows; },
        QStringLiteral("the queue %1 (listed and saved)").arg(rowsText(rows)),
        [&] { return QStringLiteral("listed %1, saved %2").arg(rowsText(queue()), rowsText(savedQueue())); },
        3000, where);
}

void Show::expectHistory(const QList<SingerRow>& rows, Where where) {
    expectSoon([&] { return history() == rows; }, QStringLiteral("the history %1").arg(rowsText(rows)),
               [&] { return rowsText(history()); }, 3000, where);
}

QImage Show::grabScreen() const {
    // What the program has just changed is painted, and the X server has drawn it, first.
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    syncWithDisplay();
    QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->grabWindow(0).toImage() : QImage();
}

QString Show::saveFailurePicture(const QImage& screen) {
    const QString file = m_output + QStringLiteral("failed-%1.png").arg(++m_shots, 2, 10, QLatin1Char('0'));
    screen.save(file);
    return file;
}

void Show::expectPlayerWindow(const QColor& colour, const std::function<bool(const PictureReading&)>& good,
                              const QString& wanted, const Where& where) {
    QImage screen;
    PlayerWindow pw;
    PictureReading r;
    const bool seen = QTest::qWaitFor(
        [&] {
            pw = PlayerWindow::find(kPlayerClass);
            if (!pw.found)
                return false;
            screen = grabScreen();
            r = PictureReading::of(screen, pw.rect, colour);
            return good(r);
        },
        kPictureMs);
    if (seen)
        return;
    const QString picture = saveFailurePicture(screen.isNull() ? grabScreen() : screen);
    fail(
        pw.found
            ? QStringLiteral("the player's window to show %1; it shows %2 (see %3)")
                  .arg(wanted, r.describe(), picture)
            : QStringLiteral("a player window of class %1 on the screen (see %2)").arg(kPlayerClass, picture),
        where);
}

void Show::expectPicture(const LibrarySong& song, Where where) {
    expectPlayerWindow(
        song.picture, [](const PictureReading& p) { return p.background >= kSongShare; },
        QStringLiteral("the CD+G picture of \"%1\" (%2)").arg(song.title, song.picture.name()), where);
}

void Show::expectBlackPlayer(Where where) {
    expectPlayerWindow(
        QColor(), [](const PictureReading& p) { return p.black >= kBlackShare && p.lit < kLitShare; },
        QStringLiteral("black, as between songs"), where);
}

void Show::expectCleanLog(Where where) {
    QFile f(TestWorkspace::workingFolder() + QStringLiteral("KVError.log"));
    if (!f.open(QIODevice::ReadOnly))
        return; // no error, no log
    const QString rule = QString(62, QLatin1Char('-')) + QLatin1Char('\n');
    const QStringList parts = QString::fromUtf8(f.readAll()).split(rule);
    QStringList unexpected;
    QList<QRegularExpression> allowed = m_allowedLog;
    // Every record stands between two rules: the odd parts.
    for (int i = 1; i < parts.size(); i += 2) {
        const QString record = parts[i].trimmed().replace(QLatin1Char('\n'), QStringLiteral(" / "));
        const auto cause = std::find_if(allowed.begin(), allowed.end(), [&](const QRegularExpression& p) {
            return p.match(record).hasMatch();
        });
        if (cause == allowed.end())
            unexpected << record;
        else
            allowed.erase(cause); // each cause accounts for one record
    }
    if (!unexpected.isEmpty())
        fail(QStringLiteral("KVError.log holds entries the show did not cause: ") +
                 unexpected.join(QStringLiteral(" || ")),
             where);
}

void Show::expectNoPlayerLeft(Where where) {
    QStringList left;
    for (qint64 pid : std::as_const(m_playerPids)) {
        const QString state = processState(pid);
        if (!state.isEmpty())
            left << QStringLiteral("%1 (%2)").arg(pid).arg(state.left(1));
    }
    // Any player this process started, whatever became of the record.
    const QString self = QString::number(::getpid());
    for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        bool number = false;
        const qint64 pid = entry.toLongLong(&number);
        if (!number || m_playerPids.contains(pid))
            continue;
        const QStringList fields = processState(pid).split(QLatin1Char(' '));
        QFile comm(QStringLiteral("/proc/%1/comm").arg(pid));
        if (fields.value(1) == self && comm.open(QIODevice::ReadOnly) && comm.readAll().trimmed() == "mpv")
            left << QString::number(pid);
    }
    if (!left.isEmpty())
        fail(QStringLiteral("no player process left; still there: ") + left.join(QStringLiteral(", ")),
             where);
}

// ---------------------------------------------------------------- pictures for people

void Show::shot(const QString& name, const QString& caption) {
    const QString prefix = QStringLiteral("%1-%2").arg(++m_shots, 2, 10, QLatin1Char('0')).arg(name);
    QStringList files;
    QString playerText = QStringLiteral("no program running");
    if (m_program) {
        frmMain& w = window();
        if (w.isVisible() && w.grab().save(m_output + prefix + QStringLiteral("-window.png")))
            files << prefix + QStringLiteral("-window.png");
        const auto vo = player().connection().property(QStringLiteral("current-vo"));
        playerText = QStringLiteral("player %1 at %2 s, video output %3")
                         .arg(status())
                         .arg(position())
                         .arg(vo ? vo->toString() : QStringLiteral("none"));
    }
    const QImage screen = grabScreen();
    if (screen.save(m_output + prefix + QStringLiteral("-screen.png")))
        files << prefix + QStringLiteral("-screen.png");
    const PlayerWindow pw = PlayerWindow::find(kPlayerClass);
    const QString windowText = pw.found ? QStringLiteral("player window \"%1\" (%2/%3) %4x%5+%6+%7")
                                              .arg(pw.title, pw.instance, pw.wmClass)
                                              .arg(pw.rect.width())
                                              .arg(pw.rect.height())
                                              .arg(pw.rect.x())
                                              .arg(pw.rect.y())
                                        : QStringLiteral("no player window");
    m_index << QStringLiteral("%1  (%2 s)  %3\n    %4\n    %5; %6")
                   .arg(prefix)
                   .arg(m_clock.elapsed() / 1000.0, 0, 'f', 1)
                   .arg(caption, files.join(QStringLiteral(", ")), playerText, windowText);
    writeIndex();
}

void Show::writeIndex() {
    QFile f(m_output + QStringLiteral("index.txt"));
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return;
    f.write(QStringLiteral("The rehearsal of %1: what the host and the room saw, step by step.\n"
                           "*-window.png is the main window, *-screen.png the whole X screen "
                           "(the player's window on the right).\n\n")
                .arg(QDateTime::currentDateTime().toString(Qt::ISODate))
                .toUtf8());
    f.write(m_index.join(QStringLiteral("\n")).toUtf8() + '\n');
}
