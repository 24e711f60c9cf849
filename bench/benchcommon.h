#pragma once

// Shared pieces of the benchmarks: a private data folder, a catalogue filled
// with synthetic songs, and the median of timed runs.

#include <QByteArray>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QString>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <sqlite3.h>
#include <vector>

namespace bench {

// Points the data, documents and runtime folders at a temporary home, before
// any object of the program is made.
inline QTemporaryDir& privateHome() {
    static QTemporaryDir home;
    static bool done = false;
    if (!done) {
        done = true;
        const QString h = home.path();
        for (const char* sub : {"data", "Documents", "runtime", "config"})
            QDir(h).mkpath(QString::fromLatin1(sub));
        QFile::setPermissions(h + "/runtime", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("HOME", h.toUtf8());
        qputenv("XDG_DATA_HOME", (h + "/data").toUtf8());
        qputenv("XDG_CONFIG_HOME", (h + "/config").toUtf8());
        qputenv("XDG_RUNTIME_DIR", (h + "/runtime").toUtf8());
        qputenv("XDG_DOCUMENTS_DIR", (h + "/Documents").toUtf8());
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    return home;
}

inline const char* const kWords[] = {
    "love",  "night", "dance",  "heart", "fire",    "baby",  "dream", "rain",  "summer",
    "road",  "blue",  "wild",   "river", "gold",    "moon",  "city",  "angel", "storm",
    "light", "home",  "crazy",  "sweet", "time",    "star",  "girl",  "boy",   "world",
    "money", "party", "shadow", "ocean", "thunder", "magic", "queen", "king",  "rock"};
constexpr int kWordCount = int(sizeof(kWords) / sizeof(kWords[0]));

// Adds `rows` synthetic songs to the catalogue file at `path`, in one
// transaction; artist, title and disc from a seeded word list.
inline void fillCatalogue(const QString& path, int rows, quint32 seed = 42) {
    sqlite3* db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO tblKaraokeTracks (ArtistName, TrackName, DiscName, TrackNo, FileName, "
                       "TrackPath) VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
                       -1, &st, nullptr);
    QRandomGenerator rng(seed);
    auto word = [&] { return QByteArray(kWords[rng.bounded(kWordCount)]); };
    for (int i = 0; i < rows; ++i) {
        const QByteArray artist = word() + ' ' + word();
        const QByteArray title = word() + ' ' + word() + ' ' + word();
        const QByteArray disc = "SC" + QByteArray::number(8000 + (i / 15));
        const QByteArray track = QByteArray::number(i % 15 + 1).rightJustified(2, '0');
        const QByteArray file = disc + '-' + track + " - " + artist + " - " + title + ".zip";
        const QByteArray full = "/media/karaoke/" + disc + '/' + file;
        sqlite3_bind_text(st, 1, artist.constData(), int(artist.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 2, title.constData(), int(title.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 3, disc.constData(), int(disc.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 4, track.constData(), int(track.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 5, file.constData(), int(file.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 6, full.constData(), int(full.size()), SQLITE_TRANSIENT);
        sqlite3_step(st);
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
}

// Runs `run` `times` times (each after `prepare`) and returns the median in ms.
inline double medianMs(int times, const std::function<void()>& prepare, const std::function<void()>& run) {
    std::vector<double> ms;
    for (int i = 0; i < times; ++i) {
        if (prepare)
            prepare();
        QElapsedTimer t;
        t.start();
        run();
        ms.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    return ms[ms.size() / 2];
}

inline void print(const char* what, double value, const char* unit, double limit) {
    std::printf("%-58s %10.2f %-3s (limit %.0f %s) %s\n", what, value, unit, limit, unit,
                value < limit ? "ok" : "OVER");
    std::fflush(stdout);
}

} // namespace bench
