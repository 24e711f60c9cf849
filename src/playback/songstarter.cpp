#include "songstarter.h"

#include "catalogue/database.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/pathhelpers.h"
#include "core/prompts.h"
#include "history/historystore.h"
#include "playback/cdgnormaliser.h"
#include "playback/cencryptex.h"
#include "playback/modpacemaker.h"
#include "playback/playerlink.h"
#include "playback/songunpacker.h"

#include <QDir>
#include <QFileInfo>

QString SongStarter::unpackFolder() {
    if (oApplicationPaths)
        return oApplicationPaths->ApplicationSongTempPath();
    return WorkingFolder + QStringLiteral("Temp/");
}

void SongStarter::emptyTempFolder() {
    const QString folder = unpackFolder();
    QDir dir(folder);
    if (!dir.exists()) {
        QDir().mkpath(folder);
        return;
    }
    for (const QFileInfo& fi :
         dir.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)) {
        if (fi.isDir() && !fi.isSymLink())
            QDir(fi.absoluteFilePath()).removeRecursively();
        else
            QFile::remove(fi.absoluteFilePath());
    }
}

void SongStarter::StopSong() {
    m_player.SendCommand(PlayerLink::CmdStop);
    m_view.showCurrentSong(QString(), QString(), QString());
    m_pacemaker.ResetPitch();
    m_view.setKeyCaption(QStringLiteral("0"));
}

void SongStarter::showCurrentSong() {
    m_view.showCurrentSong(m_currentPerformer, m_currentArtist, m_currentTitle);
}

bool SongStarter::UnpackSong(const SelectedSong& song) {
    const QString path = song.TrackPath;
    SongUnpacker zip(unpackFolder(), ArchivePassword, m_freeSpace);
    const int result = zip.unpack(path);
    if (result != SongUnpacker::Ok && result != SongUnpacker::SomeSkipped) {
        // The number says which failure it was; the line under it says it in words.
        prompts().msgBox(QStringLiteral("There was an Error unzipping the file ") + path +
                             QStringLiteral("\nPlease Check This File For Errors: \n") +
                             QString::number(result) + QLatin1Char('\n') + SongUnpacker::describe(result),
                         Prompts::OkOnly, QString());
        return false;
    }
    bool complete = true;
    if (!zip.HasCdgFile) {
        prompts().msgBox(QStringLiteral("No CDG File can be found inside the Zip File: ") + path,
                         Prompts::Exclamation, QStringLiteral("Missing CDG File"));
        complete = false;
    }
    if (!zip.HasAudioFile) {
        prompts().msgBox(QStringLiteral("No Audio File can be found inside the Zip File: ") + path,
                         Prompts::Exclamation, QStringLiteral("Missing Audio File"));
        complete = false;
    }
    if (!complete)
        return false;
    m_playFile = zip.AudioFilePath;
    return true;
}

bool SongStarter::PrepareGraphics() {
    const QString cdg = CdgNormaliser::companionOf(m_playFile);
    if (cdg.isEmpty() ||
        QFileInfo(m_playFile).suffix().compare(QLatin1String("cdg"), Qt::CaseInsensitive) == 0)
        return true;
    const CdgNormaliser::Copy copy = CdgNormaliser::writeNormalisedCopy(cdg, unpackFolder(), m_freeSpace);
    if (copy.outcome == CdgNormaliser::Copy::Written)
        return true;
    if (copy.outcome == CdgNormaliser::Copy::TooLarge) {
        prompts().msgBox(QStringLiteral("The CDG file %1 is %2 MB. No song needs more than %3 MB of CD+G "
                                        "graphics, so this file is not played.")
                             .arg(cdg, QString::number(copy.size / (1024 * 1024)),
                                  QString::number(CdgNormaliser::kMaxBytes / (1024 * 1024))),
                         Prompts::Exclamation, QStringLiteral("CDG File Too Large"));
    } else {
        prompts().msgBox(
            QStringLiteral("The CDG file %1 could not be made ready to play: %2.").arg(cdg, copy.error),
            Prompts::Exclamation, QStringLiteral("CDG File Not Ready"));
    }
    return false;
}

bool SongStarter::PlayKaraoke(int row) {
    if (m_queue.rowCount() < 1 || row < 0 || row >= m_queue.rowCount())
        return false;
    SelectedSong song;
    Guarded(kSource, 2, [&] { song = m_queue.detailsFromRow(row); });
    Guarded(kSource, 3, [&] { StopSong(); });
    Guarded(kSource, 4, [&] { emptyTempFolder(); });
    m_playFile.clear();

    if (!FileExists(song.TrackPath)) {
        prompts().msgBox(
            QStringLiteral("The file ") + song.TrackPath +
                QStringLiteral(" could not be found\nPlease make sure that if you have renamed any "
                               "files or moved them that you have reimported"),
            Prompts::Exclamation, QStringLiteral("Song Not Found"));
        return false;
    }
    if (SongUnpacker::IsArchive(song.TrackPath)) {
        bool unpacked = false;
        Guarded(kSource, 7, [&] { unpacked = UnpackSong(song); });
        if (!unpacked) {
            // A song that cannot be played leaves nothing of itself behind.
            Guarded(kSource, 7, [] { emptyTempFolder(); });
            return false;
        }
    } else {
        m_playFile = song.TrackPath;
    }
    if (m_playFile.isEmpty() || !FileExists(m_playFile))
        return false;
    bool graphicsReady = false;
    Guarded(kSource, 8, [&] { graphicsReady = PrepareGraphics(); });
    if (!graphicsReady) {
        Guarded(kSource, 8, [] { emptyTempFolder(); });
        return false;
    }

    if (!song.PerformerName.isEmpty() && Cfg.SaveHistory)
        Guarded(kSource, 9, [&] {
            HistoryStore::addPlayed(
                {song.PerformerName, song.ArtistName, song.TrackName, song.Key, song.TrackPath});
        });
    Guarded(kSource, 10, [&] {
        m_pacemaker.SetPitch(song.Key);
        m_view.setKeyCaption(QString::number(song.Key));
    });
    Guarded(kSource, 11, [&] {
        m_player.ClearPlaylist();
        m_player.PlayFile(m_playFile);
    });
    Guarded(kSource, 12, [&] {
        m_currentPerformer = song.PerformerName;
        m_currentArtist = song.ArtistName;
        m_currentTitle = song.TrackName;
        showCurrentSong();
    });
    if (Cfg.AutoRemoveFromQueue)
        Guarded(kSource, 13, [&] { m_queue.removeRow(row); });
    Guarded(kSource, 14, [&] { m_queue.saveQueue(); });
    if (Cfg.ShowNextPerfomer && m_announcements) {
        Guarded(kSource, 15, [&] {
            if (m_queue.rowCount() > 0)
                m_announcements->UpdateNextPerformer(row);
            else
                m_announcements->ClearNextPerformer();
        });
    }
    if (m_jingles) {
        Guarded(kSource, 16, [&] {
            if (m_jingles->playerState() == 1)
                m_jingles->stop();
        });
    }
    Guarded(kSource, 17, [&] { m_player.SendCommand(PlayerLink::CmdPlay); });
    return true;
}
