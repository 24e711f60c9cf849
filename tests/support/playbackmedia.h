#pragma once

// Media for the playback tests and benchmarks, made at run time so that nothing
// large is committed: short mp3 files (ffmpeg, else mpv's encoder), CD+G
// files written packet by packet, zip archives (optionally encrypted) through
// libzip, and the wrapper script that runs the real player without sound or
// picture. Header-only, so that the benchmarks can use it without the test
// support library.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QProcess>
#include <QStandardPaths>
#include <QString>

#include <zip.h>

namespace playbackmedia {

// How long a real player may take to answer or to get a song going on a
// loaded machine (a test run beside a build, say): a waited-for state comes
// much sooner when all is well.
constexpr int kPlayerSlack = 30000;

// An mp3 of a sine tone; `seconds` long, `kbps` bit rate. Returns false when no encoder worked.
inline bool makeMp3(const QString& path, double seconds, int kbps = 64) {
    const QString secs = QString::number(seconds, 'f', 2);
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    if (!ffmpeg.isEmpty()) {
        QProcess p;
        p.start(ffmpeg, {"-loglevel", "error", "-y", "-f", "lavfi", "-i", "sine=f=440:d=" + secs, "-c:a",
                         "libmp3lame", "-b:a", QString::number(kbps) + "k", path});
        if (p.waitForFinished(120000) && p.exitCode() == 0 && QFileInfo(path).size() > 0)
            return true;
    }
    QProcess p;
    p.start(QStringLiteral("mpv"),
            {"--no-config", "av://lavfi:sine=f=440:d=" + secs, "--o=" + path, "--of=mp3", "--oac=libmp3lame",
             "--oacopts=b=" + QString::number(kbps) + "k"});
    return p.waitForFinished(120000) && p.exitCode() == 0 && QFileInfo(path).size() > 0;
}

// A CD+G stream of `seconds` (300 packets a second): `leadingEmpty` seconds of
// empty packets, then a memory-preset command every 50 packets.
inline QByteArray cdgStream(double seconds, double leadingEmpty = 0.0) {
    const int packets = int(seconds * 300);
    const int firstCommand = int(leadingEmpty * 300);
    QByteArray out(packets * 24, '\0');
    for (int i = firstCommand; i < packets; i += 50) {
        out[i * 24] = 0x09;
        out[i * 24 + 1] = 0x01; // memory preset
    }
    return out;
}

inline bool writeFile(const QString& path, const QByteArray& data) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(data) == data.size();
}

inline QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The script that WinAmpPath names in tests: the real player, silent and blind.
inline QString writePlayerWrapper(const QString& folder) {
    const QString path = QDir(folder).filePath(QStringLiteral("player.sh"));
    writeFile(path, "#!/bin/sh\nexec /usr/bin/mpv --ao=null --vo=null \"$@\"\n");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

// A script standing in for something that is not a player at all.
inline QString writeScript(const QString& path, const QByteArray& body) {
    writeFile(path, "#!/bin/sh\n" + body + "\n");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

struct ZipEntry {
    QString name;
    QByteArray data;
    bool encrypted = false;
};

// Writes a zip holding `entries`; encrypted ones use AES-256 with `password`.
inline bool makeZip(const QString& path, const QList<ZipEntry>& entries, const QString& password = {}) {
    QFile::remove(path);
    QDir().mkpath(QFileInfo(path).absolutePath());
    int err = 0;
    zip_t* za = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &err);
    if (!za)
        return false;
    const QByteArray pw = password.toUtf8();
    for (const ZipEntry& e : entries) {
        // libzip reads the buffer at close time: keep a copy that lives until then.
        void* copy = ::malloc(size_t(std::max<qsizetype>(e.data.size(), 1)));
        ::memcpy(copy, e.data.constData(), size_t(e.data.size()));
        zip_source_t* src = zip_source_buffer(za, copy, zip_uint64_t(e.data.size()), 1);
        if (!src)
            return zip_discard(za), false;
        const zip_int64_t idx = zip_file_add(za, e.name.toUtf8().constData(), src, ZIP_FL_ENC_UTF_8);
        if (idx < 0)
            return zip_source_free(src), zip_discard(za), false;
        zip_set_file_compression(za, zip_uint64_t(idx), ZIP_CM_STORE, 0);
        if (e.encrypted && zip_file_set_encryption(za, zip_uint64_t(idx), ZIP_EM_AES_256, pw.constData()) < 0)
            return zip_discard(za), false;
    }
    return zip_close(za) == 0;
}

} // namespace playbackmedia
