#pragma once

#include "scriptedprompts.h"
#include "showlibrary.h"

#include <QColor>
#include <QElapsedTimer>
#include <QImage>
#include <QList>
#include <QMap>
#include <QObject>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <climits>
#include <functional>
#include <memory>
#include <source_location>

class QDialog;
class QWidget;
class KorvaneApplication;
class WinAMP_Control;
class frmMain;
struct PictureReading;

// Where a step stands in a scene, so that a failure points at the scene's line.
using Where = std::source_location;

// Thrown by a step after it has recorded its failure: the scene ends there.
struct StepFailed {};

// One row of the queue or of the history, as the host reads it.
struct SingerRow {
    QString singer;
    QString artist;
    QString title;
    int key = 0;
    QString text() const;
    bool operator==(const SingerRow&) const = default;
};

// A range of whole seconds that the player's position must fall in.
struct Span {
    int from = INT_MIN;
    int to = INT_MAX;
    static Span any() { return {}; }
    static Span atLeast(int s) { return {s, INT_MAX}; }
    static Span below(int s) { return {INT_MIN, s - 1}; }
    bool holds(int s) const { return s >= from && s <= to; }
    QString text() const;
};

// The stage manager of the rehearsal. It makes the props (the song library,
// the settings a host leaves behind), starts and quits the program exactly as
// main() does, and offers the steps a scene is written in: the host's actions
// on the controls, by their names, and what the room must see and hear after
// each. A step that finds the show going wrong records the failure at the
// scene's line and throws StepFailed.
class Show {
public:
    explicit Show(const QString& outputFolder);
    ~Show();
    Show(const Show&) = delete;
    Show& operator=(const Show&) = delete;

    // ---- props
    ShowLibrary& library() { return m_library; }
    void makeLibrary(Where where = Where::current());
    // The settings file of the working folder before the first start: the
    // template with `values` (key, value) of section "Settings" written into it.
    void seedSettings(const QList<std::pair<QString, QString>>& values, Where where = Where::current());
    // The script that the setting WinAmpPath names: the real player, without
    // sound, its window on the right half of the screen (the audience's monitor).
    QString playerWrapper() const;

    // Rows the evening remembers from one scene for the next (a kamikaze draw).
    void note(const QString& key, const SingerRow& row) { m_notes[key] = row; }
    SingerRow noted(const QString& key) const { return m_notes.value(key); }

    // ---- the program
    void startProgram(Where where = Where::current());
    void quitProgram(Where where = Where::current());
    frmMain& window(Where where = Where::current());
    WinAMP_Control& player(Where where = Where::current());

    // ---- the host's actions, on controls found by objectName
    void type(const QString& control, const QString& text, Where where = Where::current());
    void type(QWidget& in, const QString& control, const QString& text, Where where = Where::current());
    // Selects what the box holds and types `text` over it.
    void retype(QWidget& in, const QString& control, const QString& text, Where where = Where::current());
    void click(const QString& control, Where where = Where::current());
    void click(QWidget& in, const QString& control, Where where = Where::current());
    // Picks the entry `text` of a combo box.
    void choose(QWidget& in, const QString& combo, const QString& text, Where where = Where::current());
    // Double-clicks the row of the search results whose "Track Name" is `title`.
    void doubleClickResult(const QString& title, Where where = Where::current());
    // Answers the next dialog titled `title` that comes up: `reply` fills and
    // closes it (and may run steps of its own while it is open).
    void answer(const QString& title, std::function<void(QDialog&)> reply, Where where = Where::current());
    // The reply of "Choose Singer": a name typed into the list's box and a key.
    std::function<void(QDialog&)> singer(const QString& name, int key);
    // The answer (a button number) to the next message box, which must be titled `title`.
    void answerBox(const QString& title, int button);
    // The file the next file chooser returns.
    void answerFile(const QString& path);
    // The host lets time pass.
    void wait(int ms);
    // Stops the player's process for `ms` (SIGSTOP), then lets it go on (SIGCONT).
    void freezePlayer(int ms, Where where = Where::current());

    // ---- readings
    // Milliseconds since type() pressed its last key.
    qint64 sinceLastKey() const { return m_lastKey.elapsed(); }
    // The text a control shows: a label, a text box or a button's caption.
    QString textOf(QWidget& in, const QString& control, Where where = Where::current());
    // The search results as the list shows them: artist, title, disc and number of each row.
    QList<QStringList> searchResults();
    int position();
    QString status();
    QList<SingerRow> queue();
    QList<SingerRow> savedQueue();
    QList<SingerRow> history();
    // The player's key shift in semitones, from the pitch filter it runs (0: none).
    double playerKey();

    // ---- expectations
    void expect(bool condition, const QString& what, Where where = Where::current());
    // Waits up to `ms` for `condition`; on failure says what was expected and, from `now`, what was there.
    void expectSoon(const std::function<bool()>& condition, const QString& what,
                    const std::function<QString()>& now, int ms = 10000, Where where = Where::current());
    void expectPlayer(const QString& status, Span position = Span::any(), Where where = Where::current());
    // The song on stage goes on from `seconds` (never back to its start) until a second later.
    void expectSongGoesOnFrom(int seconds, Where where = Where::current());
    // The labels of the song on stage, the key on btnKeyReset, and the key the player applies.
    void expectStage(const SingerRow& row, Where where = Where::current());
    // The queue list and, the same, tblQueue.
    void expectQueue(const QList<SingerRow>& rows, Where where = Where::current());
    void expectHistory(const QList<SingerRow>& rows, Where where = Where::current());
    // The player's window shows the CD+G picture of `song`.
    void expectPicture(const LibrarySong& song, Where where = Where::current());
    // The player's window is black.
    void expectBlackPlayer(Where where = Where::current());
    // A KVError.log entry that the script causes on purpose: one record
    // matching `pattern` is allowed for each call.
    void allowLogEntry(const QRegularExpression& pattern) { m_allowedLog << pattern; }
    void expectCleanLog(Where where = Where::current());
    // No player process of this show is left.
    void expectNoPlayerLeft(Where where = Where::current());
    // No dialog came up unanswered, and the message boxes were those answered.
    void expectNothingUnexpected(Where where = Where::current());

    // ---- pictures for people
    // Saves the main window (when the program runs) and the whole screen as
    // PNG files, and adds a line to the index.
    void shot(const QString& name, const QString& caption);

    [[noreturn]] void fail(const QString& what, const Where& where);
    // Lets go of a frozen player and closes the program; for the end of a failed show.
    void strike();

private:
    QWidget& control(QWidget& in, const QString& name, const Where& where);
    void afterAction(const Where& where);
    void watchDialogs();
    void expectPlayerWindow(const QColor& colour, const std::function<bool(const PictureReading&)>& good,
                            const QString& wanted, const Where& where);
    QImage grabScreen() const;
    QString saveFailurePicture(const QImage& screen);
    void writeIndex();

    struct PendingAnswer {
        QString title;
        std::function<void(QDialog&)> reply;
        Where where;
    };

    QString m_output;
    ShowLibrary m_library;
    ScriptedPrompts m_prompts;
    QStringList m_expectedBoxes;
    std::unique_ptr<KorvaneApplication> m_program;
    QList<qint64> m_playerPids;
    qint64 m_frozenPid = 0;

    QObject m_dialogWatch; // the context of the watch's timer
    QList<PendingAnswer> m_answers;
    QList<QDialog*> m_answering;
    QStringList m_surprises;
    bool m_replyFailed = false;
    QElapsedTimer m_unansweredFor;

    QMap<QString, SingerRow> m_notes;
    QList<QRegularExpression> m_allowedLog;
    QStringList m_index;
    int m_shots = 0;
    QElapsedTimer m_clock;
    QElapsedTimer m_lastKey;
};
