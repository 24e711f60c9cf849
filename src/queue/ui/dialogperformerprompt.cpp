#include "dialogperformerprompt.h"

#include "frmaddfromfilesystem.h"
#include "frmperformerchange.h"
#include "frmperformerchoose.h"

namespace {

PerformerAnswer runPerformerDialog(PerformerDialogBase& dlg, const QString& clientName, qint32 songKey) {
    dlg.setClientName(clientName);
    dlg.setSongKey(songKey);
    dlg.showModal();
    return {dlg.ClientName(), dlg.SongKey(), dlg.CancelledForm()};
}

} // namespace

DialogPerformerPrompt::DialogPerformerPrompt(QWidget* owner) : m_owner(owner) {}

DialogPerformerPrompt::~DialogPerformerPrompt() {
    delete m_choose.data();
    delete m_addFromFile.data();
}

PerformerAnswer DialogPerformerPrompt::choosePerformer(const QString& clientName, qint32 songKey) {
    if (!m_choose)
        m_choose = new frmPerformerChoose(m_owner);
    return runPerformerDialog(*m_choose, clientName, songKey);
}

PerformerAnswer DialogPerformerPrompt::changePerformer(const QString& clientName, qint32 songKey) {
    frmPerformerChange dlg(m_owner);
    return runPerformerDialog(dlg, clientName, songKey);
}

FileSongAnswer DialogPerformerPrompt::addFromFileSystem(const QString& fileName) {
    if (!m_addFromFile)
        m_addFromFile = new frmAddFromFileSystem(m_owner);
    m_addFromFile->setFileName(fileName);
    m_addFromFile->showModal();
    return {m_addFromFile->ArtistName(), m_addFromFile->TrackName(), m_addFromFile->PerformerName(),
            m_addFromFile->SongKey(), m_addFromFile->Cancelled()};
}
