#include "show.h"

#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "playback/winamp_control.h"
#include "playbackmedia.h"
#include "screens/frmmain.h"
#include "screens/korvaneapplication.h"
#include "screens/mainparts.h"
#include "workspace.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QTableView>
#include <QTest>

#include <csignal>

namespace {

// How long the host waits for the console before calling it broken: the
// splash alone stays five seconds, and the machine may be busy.
constexpr int kStartMs = 40000;
// A dialog nobody answers for this long is a dialog the show did not expect.
constexpr int kUnansweredMs = 10000;

QString processName(qint64 pid) {
    QFile f(QStringLiteral("/proc/%1/comm").arg(pid));
    return f.open(QIODevice::ReadOnly) ? QString::fromLatin1(f.readAll()).trimmed() : QString();
}

} // namespace

QString SingerRow::text() const {
    return QStringLiteral("%1 | %2 | %3 | %4").arg(singer, artist, title).arg(key);
}

QString Span::text() const {
    if (from == INT_MIN && to == INT_MAX)
        return QStringLiteral("anywhere");
    if (to == INT_MAX)
        return QStringLiteral("at %1 s or later").arg(from);
    if (from == INT_MIN)
        return QStringLiteral("before %1 s").arg(to + 1);
    return QStringLiteral("between %1 and %2 s").arg(from).arg(to);
}

Show::Show(const QString& outputFolder) : m_output(outputFolder) {
    if (!m_output.endsWith(QLatin1Char('/')))
        m_output += QLatin1Char('/');
    QDir(m_output).removeRecursively();
    QDir().mkpath(m_output);
    m_clock.start();
    watchDialogs();
}

Show::~Show() {
    strike();
}

void Show::fail(const QString& what, const Where& where) {
    QTest::qFail(qPrintable(what), where.file_name(), int(where.line()));
    throw StepFailed{};
}

void Show::strike() {
    if (m_frozenPid > 0) {
        ::kill(pid_t(m_frozenPid), SIGCONT);
        m_frozenPid = 0;
    }
    m_answers.clear();
    if (m_program) {
        if (frmMain* w = m_program->mainWindow())
            w->close();
        m_program.reset();
    }
}

// ---------------------------------------------------------------- props

void Show::makeLibrary(Where where) {
    QString error;
    if (!m_library.make(QDir::homePath() + QStringLiteral("/Karaoke"), &error))
        fail(QStringLiteral("the song library could not be made: ") + error, where);
}

QString Show::playerWrapper() const {
    return QDir::homePath() + QStringLiteral("/karaoke-player.sh");
}

void Show::seedSettings(const QList<std::pair<QString, QString>>& values, Where where) {
    TestWorkspace::wipe();
    const QString folder = TestWorkspace::workingFolder();
    QDir().mkpath(folder);
    const QString settings = folder + QStringLiteral("settings.ini");
    if (!QFile::copy(cApplicationPaths::installFolder() + QStringLiteral("settings.ini"), settings))
        fail(QStringLiteral("the settings template could not be copied to ") + settings, where);
    QFile::setPermissions(settings, QFile::ReadOwner | QFile::WriteOwner);
    CIniFile ini;
    ini.setFileName(settings);
    for (const auto& [key, value] : values)
        ini.SaveStringValue(QStringLiteral("Settings"), key, value);
    // x11 draws without any GPU; where it cannot, the GPU output runs on the
    // software renderer (which the player refuses unless told).
    playbackmedia::writeScript(playerWrapper(), "exec /usr/bin/mpv --ao=null --vo=x11,gpu --gpu-sw=yes "
                                                "--geometry=640x480+2880+120 \"$@\"");
}

// ---------------------------------------------------------------- the program

void Show::startProgram(Where where) {
    if (m_program)
        fail(QStringLiteral("the program is already running"), where);
    m_program = std::make_unique<KorvaneApplication>();
    if (!m_program->start(QString())) {
        m_program.reset();
        fail(QStringLiteral("the program ended during its start-up"), where);
    }
    frmMain* w = m_program->mainWindow();
    expectSoon([w] { return w->isReady(); }, QStringLiteral("the splash to go and the main window to show"),
               [] { return QStringLiteral("still starting"); }, kStartMs, where);
    w->activateWindow();
    expect(QTest::qWaitForWindowActive(w, 5000), QStringLiteral("the main window to take the keyboard"),
           where);
    const qint64 pid = w->parts().player().playerProcessId();
    expect(pid > 0, QStringLiteral("a player process to run"), where);
    m_playerPids << pid;
}

void Show::quitProgram(Where where) {
    frmMain& w = window(where);
    const qint64 pid = w.parts().player().playerProcessId();
    // The host closes the main window.
    w.close();
    expect(!w.isVisible(), QStringLiteral("the main window to close"), where);
    m_program.reset();
    expectSoon([pid] { return processName(pid) != QLatin1String("mpv"); },
               QStringLiteral("the player to end with the program"),
               [pid] { return QStringLiteral("process %1 still runs").arg(pid); }, 10000, where);
}

frmMain& Show::window(Where where) {
    if (!m_program || !m_program->mainWindow())
        fail(QStringLiteral("the program is not running"), where);
    return *m_program->mainWindow();
}

WinAMP_Control& Show::player(Where where) {
    return window(where).parts().player();
}

// ---------------------------------------------------------------- the host's actions

QWidget& Show::control(QWidget& in, const QString& name, const Where& where) {
    const QList<QWidget*> found = in.findChildren<QWidget*>(name);
    for (QWidget* w : found) {
        if (!w->isVisible())
            continue;
        if (!w->isEnabled())
            fail(QStringLiteral("%1 is disabled: the host cannot use it").arg(name), where);
        return *w;
    }
    fail(found.isEmpty() ? QStringLiteral("there is no control %1 on %2").arg(name, in.windowTitle())
                         : QStringLiteral("%1 is not on screen").arg(name),
         where);
}

void Show::type(const QString& name, const QString& text, Where where) {
    type(window(where), name, text, where);
}

void Show::type(QWidget& in, const QString& name, const QString& text, Where where) {
    QWidget& box = control(in, name, where);
    box.setFocus(Qt::MouseFocusReason);
    QTest::keyClick(&box, Qt::Key_End);
    // A key every 30 ms, as a quick typist; the time of the last press is kept.
    for (const QChar c : text) {
        QTest::qWait(30);
        QTest::keyPress(&box, c.toLatin1());
        m_lastKey.start();
        QTest::keyRelease(&box, c.toLatin1());
    }
    afterAction(where);
}

void Show::retype(QWidget& in, const QString& name, const QString& text, Where where) {
    QWidget& box = control(in, name, where);
    box.setFocus(Qt::MouseFocusReason);
    QTest::keyClick(&box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&box, text, Qt::NoModifier, 10);
    afterAction(where);
}

void Show::click(const QString& name, Where where) {
    click(window(where), name, where);
}

void Show::click(QWidget& in, const QString& name, Where where) {
    auto* button = qobject_cast<QAbstractButton*>(&control(in, name, where));
    if (!button)
        fail(name + QStringLiteral(" is not a button"), where);
    // A check box takes the click on its box; a button anywhere.
    const QPoint at =
        qobject_cast<QCheckBox*>(button) ? QPoint(8, button->height() / 2) : button->rect().center();
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, at);
    afterAction(where);
}

void Show::choose(QWidget& in, const QString& name, const QString& text, Where where) {
    auto* combo = qobject_cast<QComboBox*>(&control(in, name, where));
    const int index = combo ? combo->findText(text) : -1;
    if (index < 0)
        fail(QStringLiteral("%1 has no entry \"%2\"").arg(name, text), where);
    combo->setCurrentIndex(index);
    afterAction(where);
}

void Show::doubleClickResult(const QString& title, Where where) {
    QTableView* list = window(where).olvSearchResults;
    QAbstractItemModel* m = list->model();
    constexpr int kTrackName = 2;
    for (int row = 0; m && row < m->rowCount(); ++row) {
        const QModelIndex cell = m->index(row, kTrackName);
        if (cell.data().toString() != title)
            continue;
        list->scrollTo(cell);
        const QPoint at = list->visualRect(cell).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, at);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, at);
        afterAction(where);
        return;
    }
    fail(QStringLiteral("the search results hold no \"%1\"").arg(title), where);
}

void Show::answer(const QString& title, std::function<void(QDialog&)> reply, Where where) {
    m_answers << PendingAnswer{title, std::move(reply), where};
}

std::function<void(QDialog&)> Show::singer(const QString& name, int key) {
    return [this, name, key](QDialog& d) {
        retype(d, QStringLiteral("cboSingerNames"), name);
        retype(d, QStringLiteral("spnKey"), QString::number(key));
        click(d, QStringLiteral("cmdOk"));
    };
}

void Show::answerBox(const QString& title, int button) {
    m_prompts.answer(button);
    m_expectedBoxes << title;
}

void Show::answerFile(const QString& path) {
    m_prompts.answer(path);
}

void Show::wait(int ms) {
    QTest::qWait(ms);
}

void Show::freezePlayer(int ms, Where where) {
    const qint64 pid = player(where).playerProcessId();
    if (pid <= 0 || processName(pid) != QLatin1String("mpv"))
        fail(QStringLiteral("process %1 is not the player (%2)").arg(pid).arg(processName(pid)), where);
    m_frozenPid = pid;
    ::kill(pid_t(pid), SIGSTOP);
    QTest::qWait(ms);
    ::kill(pid_t(pid), SIGCONT);
    m_frozenPid = 0;
}

// Whatever a dialog asks while the show runs comes through here: a dialog
// with an armed answer gets it; one without is rejected after a while and
// counted as a surprise.
void Show::watchDialogs() {
    // The next look is booked first, so that a dialog opened inside a reply is seen too.
    QTimer::singleShot(50, &m_dialogWatch, [this] { watchDialogs(); });
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog || !dialog->isVisible() || m_answering.contains(dialog)) {
        m_unansweredFor.invalidate();
        return;
    }
    if (!m_answers.isEmpty() && m_answers.first().title == dialog->windowTitle()) {
        const PendingAnswer a = m_answers.takeFirst();
        m_unansweredFor.invalidate();
        m_answering << dialog;
        QPointer<QDialog> open(dialog);
        try {
            a.reply(*dialog);
        } catch (const StepFailed&) {
            m_replyFailed = true;
        }
        m_answering.removeOne(dialog);
        if (open && open->isVisible() && m_replyFailed)
            open->done(QDialog::Rejected);
        return;
    }
    if (!m_unansweredFor.isValid()) {
        m_unansweredFor.start();
    } else if (m_unansweredFor.elapsed() > kUnansweredMs) {
        m_surprises << QStringLiteral("a dialog \"%1\" came up that the show did not expect")
                           .arg(dialog->windowTitle());
        m_unansweredFor.invalidate();
        dialog->done(QDialog::Rejected);
    }
}

void Show::afterAction(const Where& where) {
    if (m_replyFailed) {
        m_replyFailed = false;
        throw StepFailed{}; // recorded where the reply failed
    }
    if (!m_answers.isEmpty()) {
        const PendingAnswer missed = m_answers.takeFirst();
        m_answers.clear();
        fail(QStringLiteral("the dialog \"%1\" did not come up").arg(missed.title), missed.where);
    }
    expectNothingUnexpected(where);
}

void Show::expectNothingUnexpected(Where where) {
    if (!m_surprises.isEmpty()) {
        const QString what = m_surprises.join(QStringLiteral("; "));
        m_surprises.clear();
        fail(what, where);
    }
    const QStringList shown = m_prompts.boxTitles();
    if (shown != m_expectedBoxes)
        fail(QStringLiteral("message boxes: the show expected [%1], the program showed [%2]")
                 .arg(m_expectedBoxes.join(QStringLiteral(", ")), shown.join(QStringLiteral(", "))),
             where);
}
