#pragma once

#include "queue/performerprompt.h"

#include <QPointer>

class QWidget;
class frmPerformerChoose;
class frmAddFromFileSystem;

// The singer dialogs on screen. "Choose Singer" (with the list) and "Add song
// From File System" are shared instances, made on first use and kept, so that
// their properties outlive the dialog; the change dialog is made for each call.
class DialogPerformerPrompt : public PerformerPrompt {
public:
    explicit DialogPerformerPrompt(QWidget* owner);
    ~DialogPerformerPrompt() override;

    PerformerAnswer choosePerformer(const QString& clientName, qint32 songKey) override;
    PerformerAnswer changePerformer(const QString& clientName, qint32 songKey) override;
    FileSongAnswer addFromFileSystem(const QString& fileName) override;

private:
    QPointer<QWidget> m_owner;
    // Children of the owner when there is one; QPointer notices if it deletes them first.
    QPointer<frmPerformerChoose> m_choose;
    QPointer<frmAddFromFileSystem> m_addFromFile;
};
