#pragma once

#include "catalogue/songindex.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>
#include <thread>

struct sqlite3;
struct sqlite3_stmt;

// Keeps the song index of the shared catalogue connection in step with the
// catalogue. It never hands out an index that may be out of step: every
// change to the songs through the connection is seen as it happens (SQLite's
// row hook), a commit by any other connection or process shows in the
// file's data version, and a change that slips past the hook (a whole-table
// delete) shows in the connection's count of changed rows. Any of them makes
// the index stale; a new one is then read on a thread of its own through a
// read-only connection, while the searches run their statements as before.
//
// Each index read is also saved beside the catalogue for a short-lived
// program (korvane-tool) to take instead of reading its own; the first change
// to the songs by any program of ours removes the saved file, and a saved file
// is only taken when the catalogue's highest id still matches it. The program
// itself never takes it: it reads its own index at every start.
class SongIndexKeeper : public QObject {
    Q_OBJECT
public:
    static SongIndexKeeper& instance();
    ~SongIndexKeeper() override;

    // Follows the connection `db` on the catalogue file `path`; the first
    // read of the index starts in the background a second later.
    void attach(sqlite3* db, const QString& path);
    // Lets go of the connection (before it closes); a read under way stops.
    void detach();

    // The index, when it matches the catalogue and folds as asked; null
    // otherwise (a fresh one is then on its way).
    std::shared_ptr<const SongIndex> current(bool accentBlind);
    // Starts a fresh read now, if none is under way (after a bulk change,
    // such as an import, so that the next search finds it ready).
    void refresh();
    // Reads the index on this thread, at once (for a program without an
    // event loop). False when the read failed.
    bool buildNow(bool accentBlind);
    // Takes the index saved beside the catalogue when it was made for the
    // catalogue as it is (its highest id) and folds as asked: for a short-lived program, which then need not
    // read one. The program keeps the index in step from then on as always.
    bool loadSaved(bool accentBlind);
    // Where the index is saved beside the catalogue.
    QString savedPath() const;
    // Runs the event loop until a current index is there, at most `ms`.
    bool waitUntilCurrent(bool accentBlind, int ms);
    // Tells the keeper the index was found out of step with the catalogue.
    void distrust();
    // Whether the keeper reads an index on its own (on by default): a
    // short-lived program that only runs a statement or two turns it off.
    void setReadsOnItsOwn(bool on) { m_readsOnItsOwn = on; }

    static constexpr int kFirstReadDelayMs = 1000;
    // How long after a read its freed working copies are given back.
    static constexpr int kTrimDelayMs = 2000;

signals:
    // A fresh index is in place.
    void indexReady();

private:
    SongIndexKeeper() = default;
    struct Stamp {
        quint64 songChanges = 0;
        quint64 hookedChanges = 0;
        qint64 totalChanges = 0;
        qint64 dataVersion = 0;
        bool operator==(const Stamp&) const = default;
    };
    Stamp stampNow() const;
    // Whether the songs changed between the two stamps, as far as can be told.
    static bool songsChanged(const Stamp& then, const Stamp& now);
    void startBuild(bool accentBlind);
    void finishBuild(quint64 serial, std::shared_ptr<const SongIndex> index, Stamp stamp);
    void finishSave(quint64 serial);
    void joinBuilder();
    static void onRowChanged(void* self, int op, const char* database, const char* table, long long rowid);
    static int onCommit(void* self);
    static void onRollback(void* self);
    void dropSaved();

    sqlite3* m_db = nullptr;
    QString m_path;
    sqlite3_stmt* m_dataVersion = nullptr;
    std::atomic<quint64> m_songChanges{0};
    std::atomic<quint64> m_hookedChanges{0};

    std::shared_ptr<const SongIndex> m_index;
    Stamp m_indexStamp;
    // The read that made m_index.
    quint64 m_indexSerial = 0;
    bool m_wantBlind = false;
    bool m_readsOnItsOwn = true;
    // Songs changed in the transaction under way: the saved index goes at
    // its commit too, in case another program saved one meanwhile.
    bool m_songsChangedInTransaction = false;

    std::thread m_builder;
    std::atomic<bool> m_stop{false};
    bool m_building = false;
    quint64 m_serial = 0;
};
