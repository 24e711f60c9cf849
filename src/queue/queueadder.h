#pragma once

#include <QString>
#include <functional>

class KeyboardHookControl;
class PerformerPrompt;
class QueueModel;

// How songs reach the queue: from the search results, as a random kamikaze
// pick, from any file on disk, and the change of a queued row's singer. Each
// procedure is guarded (logged, told, and carried on from the next step).
class QueueAdder {
public:
    // `save` writes the queue to tblQueue; `prompt` provides the singer dialogs.
    QueueAdder(QueueModel& model, std::function<void()> save, std::function<PerformerPrompt&()> prompt);

    // The keyboard filter to release around dialogs that take text (may be none).
    void setKeyboardHook(KeyboardHookControl* hook) { m_hook = hook; }

    // A double click on a search result with this track id: ask for singer and
    // key (when PromptForPerfomer is on), append and save. An id of 0 or a
    // cancelled dialog stops early and leaves the keyboard filter released.
    void AddSongToQueue(qint64 trackId);
    // Appends the catalogue's song `trackId`. Does not save. Throws KvError
    // when the catalogue has no such song. `unused` is kept for its callers.
    void AddTrackById(qint64 trackId, const QString& performer, qint32 key, qint32 unused = 10000);
    // Appends a row for a song the catalogue need not know. Does not save.
    void AddTrackToList(const QString& performer, const QString& artist, const QString& track,
                        const QString& path, qint32 key);
    // A random song marked for kamikaze, with its singer; saves.
    void LoadKamikazeTrack();
    // The file button: pick a file, add it, remember its folder.
    void cmdFF_Click();
    // Asks for artist, title, singer and key of the file, then appends it. Does not save.
    void AddSongFromFileSystem(const QString& path);
    // New singer and key for `row`; saves. The dialog opens empty, and a cancel
    // keeps the singer but resets the key.
    void ChangeSingerOnQueueRow(int row);

private:
    void releaseHook();
    void createHook();
    // The singer and key for a new row; false when the host cancelled.
    bool askPerformer(QString& performer, qint32& key);

    QueueModel& m_model;
    std::function<void()> m_save;
    std::function<PerformerPrompt&()> m_prompt;
    KeyboardHookControl* m_hook = nullptr;
};
