#pragma once

#include <QPixmap>
#include <QTimer>
#include <QWidget>

// A picture box that shows one picture from a file stretched over the whole
// box. The picture is read at the box's size once and kept as a pixmap, so a
// repaint (of the strip over it, say) copies pixels and decodes nothing. After
// a resize it is read again at the new size, a moment after the last resize
// step. A file that is missing or not a picture leaves the box in its back
// colour (white); the failure is logged once per file.
class BackgroundPicture : public QWidget {
    Q_OBJECT
public:
    explicit BackgroundPicture(QWidget* parent = nullptr);

    // Reads `file` (empty: no picture) at the box's size now.
    void showFile(const QString& file);
    QString file() const { return m_file; }
    // The picture as painted (null when there is none).
    const QPixmap& picture() const { return m_picture; }
    // How often the box painted itself (for the benchmark and tests).
    int paintCount() const { return m_paints; }
    // The file's loading failed (missing or damaged).
    bool failed() const { return m_failed; }

protected:
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;

private:
    void reload();

    QString m_file;
    QString m_loggedFailure;
    QPixmap m_picture;
    QTimer m_reload;
    int m_paints = 0;
    bool m_failed = false;
};
