#pragma once

#include "support/clsid3v1tag.h"

#include <QDialog>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

// "Add song From File System": artist and title of a file that the catalogue
// does not know (taken from its ID3v1 tag where it has one), the singer and
// the key. The name is kept as typed.
class frmAddFromFileSystem : public QDialog {
    Q_OBJECT
public:
    static constexpr int kMinKey = -6;
    static constexpr int kMaxKey = 6;

    explicit frmAddFromFileSystem(QWidget* parent = nullptr);

    QGroupBox* fraFile;
    QLabel *lblArtist, *lblTitle, *lblSingerName, *lblSongKey;
    QLineEdit *txtArtistName, *txtFileName;
    QComboBox* cboSingerNames;
    QSpinBox* spnKey;
    QPushButton *cmdOk, *cmdCancel;

    void setFileName(const QString& fileName) { m_fileName = fileName; }
    QString ArtistName() const { return m_artistName; }
    QString TrackName() const { return m_trackName; }
    QString PerformerName() const { return m_performerName; }
    qint16 SongKey() const { return m_songKey; }
    bool Cancelled() const { return m_cancelled; }

    // Readies the controls for FileName: the singer list, the tag's artist and title.
    void Form_Load();
    // Form_Load, then the dialog, modal.
    int showModal();

    void cmdOk_Click();
    void cmdCancel_Click();

private:
    clsID3v1Tag m_tag; // the one tag reader the dialog keeps for its files
    QString m_fileName;
    QString m_artistName;
    QString m_trackName;
    QString m_performerName;
    qint16 m_songKey = 0;
    bool m_cancelled = true;
};
