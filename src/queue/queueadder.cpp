#include "queueadder.h"

#include "catalogue/cataloguestore.h"

#include "catalogue/database.h"
#include "core/appsettings.h"
#include "core/errorlog.h"
#include "core/kverror.h"
#include "core/pathhelpers.h"
#include "core/prompts.h"
#include "core/settings.h"
#include "keyboardhookcontrol.h"
#include "performerprompt.h"
#include "queuemodel.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlQuery>

namespace {

const QString kAddSongSource = QStringLiteral("KvApp.frmMain.AddSongToQueue");
const QString kKamikazeSource = QStringLiteral("KvApp.frmMain.LoadKamikazeTrack");
const QString kFileButtonSource = QStringLiteral("KvApp.frmMain.cmdFF_Click");
const QString kFromFileSource = QStringLiteral("KvApp.frmMain.AddSongFromFileSystem");

// The folder the file dialog opens in: the remembered one while it exists.
QString fileDialogFolder() {
    if (!Cfg.FileSystemPath.isEmpty() && DirectoryExists(Cfg.FileSystemPath))
        return Cfg.FileSystemPath;
    return keys::FileSystemPath.defaultText();
}

} // namespace

QueueAdder::QueueAdder(QueueModel& model, std::function<void()> save,
                       std::function<PerformerPrompt&()> prompt)
    : m_model(model), m_save(std::move(save)), m_prompt(std::move(prompt)) {}

void QueueAdder::releaseHook() {
    if (m_hook)
        m_hook->releaseKeyboardHook();
}

void QueueAdder::createHook() {
    if (m_hook)
        m_hook->createKeyboardHook();
}

bool QueueAdder::askPerformer(QString& performer, qint32& key) {
    if (!Cfg.PromptForPerfomer) {
        performer = Cfg.DefaultName;
        key = 0;
        return true;
    }
    const PerformerAnswer a = m_prompt().choosePerformer(QString(), 0);
    if (a.CancelledForm)
        return false;
    performer = a.ClientName;
    key = a.SongKey;
    return true;
}

void QueueAdder::AddSongToQueue(qint64 trackId) {
    // The dialog's keys must not reach the search box.
    releaseHook();
    QString performer = QStringLiteral("None");
    qint32 key = 0;
    if (trackId == 0)
        return;
    bool go = true;
    Guarded(kAddSongSource, 4, [&] { go = askPerformer(performer, key); });
    if (!go)
        return;
    Guarded(kAddSongSource, 6, [&] { AddTrackById(trackId, performer, key, 10000); });
    Guarded(kAddSongSource, 7, [&] { m_save(); });
    Guarded(kAddSongSource, 8, [&] { createHook(); });
}

void QueueAdder::AddTrackById(qint64 trackId, const QString& performer, qint32 key, qint32) {
    const std::optional<CatalogueStore::Song> song = CatalogueStore::SongById(trackId);
    if (!song)
        throw KvError(3021,
                      QStringLiteral("The catalogue has no song with the id %1; it may have been removed "
                                     "since the search. Search again and add it from the new results.")
                          .arg(trackId));
    const QString& artist = song->artist;
    const QString& track = song->track;
    const QString& path = song->path;
    m_model.addItem({QString(), performer, artist, track, QString::number(key)}, path);
}

void QueueAdder::AddTrackToList(const QString& performer, const QString& artist, const QString& track,
                                const QString& path, qint32 key) {
    m_model.addItem({QString(), performer, artist, track, QString::number(key)}, path);
}

void QueueAdder::LoadKamikazeTrack() {
    QList<qint64> ids;
    qint64 picked = 0;
    bool ok = Guarded(kKamikazeSource, 1, [&] { ids = CatalogueStore::KamikazeIds(); });
    if (!ok)
        return;
    if (ids.isEmpty()) {
        prompts().msgBox(QStringLiteral("No Songs are marked as available for kamikaze"),
                         Prompts::Information, QStringLiteral("No Songs Available"));
        return;
    }
    picked = ids.at(QRandomGenerator::global()->bounded(int(ids.size())));
    QString performer;
    qint32 key = 0;
    bool go = true;
    Guarded(kKamikazeSource, 4, [&] { go = askPerformer(performer, key); });
    if (!go)
        return;
    Guarded(kKamikazeSource, 5, [&] { AddTrackById(picked, performer, key, 10000); });
    Guarded(kKamikazeSource, 6, [&] { m_save(); });
}

void QueueAdder::cmdFF_Click() {
    releaseHook();
    QString chosen;
    Guarded(kFileButtonSource, 2, [&] {
        chosen = prompts().openFile(QStringLiteral("Select one or more files"), fileDialogFolder(),
                                    QStringLiteral("All Files (*)"));
    });
    if (!chosen.isEmpty()) {
        AddSongFromFileSystem(chosen);
        Guarded(kFileButtonSource, 3, [&] {
            Cfg.FileSystemPath = AddBackslash(QFileInfo(chosen).absolutePath());
            settings::writeText(keys::FileSystemPath, Cfg.FileSystemPath);
        });
    }
    Guarded(kFileButtonSource, 4, [&] { createHook(); });
}

void QueueAdder::AddSongFromFileSystem(const QString& path) {
    Guarded(kFromFileSource, 1, [&] {
        const FileSongAnswer a = m_prompt().addFromFileSystem(path);
        if (!a.Cancelled)
            AddTrackToList(a.PerformerName, a.ArtistName, a.TrackName, path, a.SongKey);
    });
}

void QueueAdder::ChangeSingerOnQueueRow(int row) {
    if (row < 0 || row >= m_model.rowCount())
        return;
    const QString clientName = m_model.cellText(row, QueueModel::ColPerformer);
    // A comparison, not the key: 0 for any normal row.
    const qint32 songKey = m_model.cellText(row, QueueModel::ColKey) == clientName ? -1 : 0;
    const PerformerAnswer a = m_prompt().changePerformer(clientName, songKey);
    m_model.setCellText(row, QueueModel::ColPerformer, a.ClientName);
    m_model.setCellText(row, QueueModel::ColKey, QString::number(a.SongKey));
    m_save();
}
