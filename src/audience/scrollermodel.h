#pragma once

#include "audience/vbcolor.h"

#include <QFont>
#include <QObject>
#include <QString>
#include <QTimer>

class PropertyBag;

// How the scroller measures its text, in twips, with a given font.
class ScrollerMeasure {
public:
    virtual ~ScrollerMeasure() = default;
    virtual double textWidth(const QFont& font, const QString& text) const = 0;
    virtual double textHeight(const QFont& font, const QString& text) const = 0;
};

// The screen's own measure: font metrics in pixels, turned into twips.
class FontMetricsMeasure : public ScrollerMeasure {
public:
    double textWidth(const QFont& font, const QString& text) const override;
    double textHeight(const QFont& font, const QString& text) const override;
};

// The arithmetic of the scrolling strip, without a widget: one block of text
// (the box) moved across the control's rectangle a fixed amount per tick in
// one of four directions, wrapped round when it has left, with an event at
// the end of each pass. Every measure is in twips; the box's place and size
// are single precision, as the widget that shows them converts to pixels only
// when it applies them.
//
// Scroll types: 1 up, 2 down, 3 left, 4 right.
class ScrollerModel : public QObject {
    Q_OBJECT
public:
    static inline const QString kDefaultText = QStringLiteral("Tessaly Scroller");
    static constexpr int kDefaultInterval = 50;
    static constexpr double kDefaultAmount = 25;

    // `measure` (not owned) must outlive the model; null takes the screen's font metrics.
    explicit ScrollerModel(const ScrollerMeasure* measure = nullptr, QObject* parent = nullptr);

    // The size of the control that clips the box; a change re-measures the
    // box without moving it along its way.
    void setControlSize(double widthTwips, double heightTwips);
    double controlWidth() const { return m_controlWidth; }
    double controlHeight() const { return m_controlHeight; }

    // The box.
    float boxLeft() const { return m_left; }
    float boxTop() const { return m_top; }
    float boxWidth() const { return m_width; }
    float boxHeight() const { return m_height; }
    int lineCount() const { return m_lines; }

    // ---- methods
    void StartScroll();
    void StopScroll();
    void Reset();
    // Reads the whole file as the text; throws KvError when it cannot be read
    // (the text is then left as it was).
    void LoadTextFromFile(const QString& sFile);
    // The first show of the control: the box to its start, the timer on when AutoStart.
    void firstShow();
    // One tick of the timer (public so that a test can drive it).
    void tick();

    // ---- properties
    QString text() const { return m_text; }
    void setText(const QString& text);
    bool StopAfterOneScroll() const { return m_stopAfterOneScroll; }
    void setStopAfterOneScroll(bool on) { m_stopAfterOneScroll = on; }
    bool AutoStart() const { return m_autoStart; }
    void setAutoStart(bool on) { m_autoStart = on; }
    int ScrollType() const { return m_scrollType; }
    void setScrollType(int type);
    quint32 BackColor() const { return m_backColor; }
    void setBackColor(quint32 colour);
    quint32 ForeColor() const { return m_foreColor; }
    void setForeColor(quint32 colour);
    // Bold on the box's font and on the measuring font.
    void setFontBold(bool bold);
    // The box's font only: the measuring font stays behind until Font() is read or written.
    int FontSize() const { return int(m_boxFont.pointSizeF()); }
    void setFontSize(int points);
    int Interval() const { return m_timer.interval(); }
    void setInterval(int ms) { m_timer.setInterval(ms); }
    double Amount() const { return m_amount; }
    void setAmount(double twipsPerTick) { m_amount = twipsPerTick; }
    int Alignment() const { return m_alignment; }
    void setAlignment(int alignment);
    int Border() const { return m_border; }
    void setBorder(int border);
    // Reading the font brings the measuring font up to the box's and re-measures the box.
    QFont Font();
    void setFont(const QFont& font);
    // Font().Name = name: the new name on both fonts, and the box measured with it.
    void setFontName(const QString& family);
    bool Scrolling() const { return m_timer.isActive(); }
    // Direct: raises neither OnStart nor OnStop.
    void setScrolling(bool on);

    // The box's font as shown, and the font the text is measured with.
    const QFont& boxFont() const { return m_boxFont; }
    const QFont& measuringFont() const { return m_controlFont; }

    // ---- the persisted design
    // A control never persisted: the defaults, with the host's font.
    void initProperties(const QFont& ambientFont);
    void readProperties(const PropertyBag& bag, const QFont& ambientFont);
    void writeProperties(PropertyBag& bag) const;

signals:
    void OnCompleteScroll();
    void OnStart();
    void OnStop();
    // The box moved or changed its size.
    void boxChanged();
    // The text, the colours, the font, the alignment or the border changed.
    void lookChanged();

private:
    void SizeTextBox();
    void PositionText(bool toStart);
    double measureWidth(const QString& s) const;

    const ScrollerMeasure* m_measure;
    QTimer m_timer;
    QString m_text = kDefaultText;
    int m_scrollType = 1;
    double m_amount = kDefaultAmount;
    bool m_stopAfterOneScroll = false;
    bool m_autoStart = true;
    quint32 m_backColor = vbcolor::kButtonFace;
    quint32 m_foreColor = vbcolor::kWindowText;
    int m_alignment = 2;
    int m_border = 0;
    QFont m_boxFont;
    QFont m_controlFont;
    float m_controlWidth = 0;
    float m_controlHeight = 0;
    float m_left = 0;
    float m_top = 0;
    float m_width = 0;
    float m_height = 0;
    int m_lines = 1;
};
