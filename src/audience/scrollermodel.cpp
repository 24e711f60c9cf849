#include "scrollermodel.h"

#include "audience/propertybag.h"
#include "core/kverror.h"
#include "core/twips.h"

#include <QFile>
#include <QFontMetricsF>
#include <cmath>

namespace {
const QString kCrLf = QStringLiteral("\r\n");
// The computed place that means "leave the coordinate as it is".
constexpr float kNoChange = -1.0f;

// Whole twips, halves to the even neighbour, as the position arithmetic rounds.
float whole(double v) {
    return float(std::nearbyint(v));
}
} // namespace

double FontMetricsMeasure::textWidth(const QFont& font, const QString& text) const {
    return QFontMetricsF(font).horizontalAdvance(text) * twips::perPixelX();
}

double FontMetricsMeasure::textHeight(const QFont& font, const QString& text) const {
    const qsizetype lines = text.count(QLatin1Char('\n')) + 1;
    return QFontMetricsF(font).lineSpacing() * double(lines) * twips::perPixelY();
}

ScrollerModel::ScrollerModel(const ScrollerMeasure* measure, QObject* parent)
    : QObject(parent), m_measure(measure) {
    static const FontMetricsMeasure screenMeasure;
    if (!m_measure)
        m_measure = &screenMeasure;
    m_timer.setInterval(kDefaultInterval);
    connect(&m_timer, &QTimer::timeout, this, &ScrollerModel::tick);
}

void ScrollerModel::setControlSize(double widthTwips, double heightTwips) {
    m_controlWidth = float(widthTwips);
    m_controlHeight = float(heightTwips);
    PositionText(false);
}

void ScrollerModel::StartScroll() {
    if (m_timer.isActive())
        return;
    m_timer.start();
    emit OnStart();
}

void ScrollerModel::StopScroll() {
    if (!m_timer.isActive())
        return;
    m_timer.stop();
    emit OnStop();
}

void ScrollerModel::Reset() {
    PositionText(true);
}

void ScrollerModel::LoadTextFromFile(const QString& sFile) {
    QFile f(sFile);
    if (!f.open(QIODevice::ReadOnly))
        throw KvError(53, QStringLiteral("File not found: ") + sFile,
                      kAppName + QStringLiteral(".vbwScroller"));
    setText(QString::fromUtf8(f.readAll()));
}

void ScrollerModel::firstShow() {
    PositionText(true);
    if (m_autoStart)
        StartScroll();
}

void ScrollerModel::tick() {
    float newTop = kNoChange;
    float newLeft = kNoChange;
    bool complete = false;
    switch (m_scrollType) {
    case 1:
        complete = m_top + m_height <= 0;
        newTop = complete ? m_controlHeight : whole(double(m_top) - m_amount);
        break;
    case 2:
        complete = m_top >= m_controlHeight;
        newTop = complete ? -m_height : whole(double(m_top) + m_amount);
        break;
    case 3:
        complete = m_left <= -m_width;
        newLeft = complete ? m_controlWidth : whole(double(m_left) - m_amount);
        break;
    case 4:
        complete = m_left >= m_controlWidth;
        newLeft = complete ? -m_width : whole(double(m_left) + m_amount);
        break;
    default:
        return;
    }
    if (complete) {
        // The host may put a new text in place here; it starts from the wrap position.
        emit OnCompleteScroll();
        if (m_stopAfterOneScroll)
            StopScroll();
    }
    bool moved = false;
    if (newTop != kNoChange) {
        moved = moved || m_top != newTop;
        m_top = newTop;
    }
    if (newLeft != kNoChange) {
        moved = moved || m_left != newLeft;
        m_left = newLeft;
    }
    if (moved)
        emit boxChanged();
}

void ScrollerModel::setText(const QString& text) {
    m_text = text;
    PositionText(false);
    emit lookChanged();
}

void ScrollerModel::setScrollType(int type) {
    m_scrollType = type;
    PositionText(false);
}

void ScrollerModel::setBackColor(quint32 colour) {
    m_backColor = colour;
    emit lookChanged();
}

void ScrollerModel::setForeColor(quint32 colour) {
    m_foreColor = colour;
    emit lookChanged();
}

void ScrollerModel::setFontBold(bool bold) {
    m_controlFont.setBold(bold);
    m_boxFont.setBold(bold);
    emit lookChanged();
}

void ScrollerModel::setFontSize(int points) {
    if (points > 0)
        m_boxFont.setPointSize(points);
    emit lookChanged();
}

void ScrollerModel::setAlignment(int alignment) {
    m_alignment = alignment;
    PositionText(false);
    emit lookChanged();
}

void ScrollerModel::setBorder(int border) {
    m_border = border;
    emit lookChanged();
}

QFont ScrollerModel::Font() {
    m_controlFont = m_boxFont;
    PositionText(false);
    return m_boxFont;
}

void ScrollerModel::setFont(const QFont& font) {
    m_boxFont = font;
    m_controlFont = m_boxFont;
    PositionText(false);
    emit lookChanged();
}

void ScrollerModel::setFontName(const QString& family) {
    QFont f = Font();
    f.setFamily(family);
    setFont(f);
}

void ScrollerModel::setScrolling(bool on) {
    if (on)
        m_timer.start();
    else
        m_timer.stop();
}

double ScrollerModel::measureWidth(const QString& s) const {
    return m_measure->textWidth(m_controlFont, s);
}

void ScrollerModel::SizeTextBox() {
    const bool sideways = m_scrollType == 3 || m_scrollType == 4;
    const double controlWidth = m_controlWidth;
    int lines = 0;
    double width = controlWidth;
    if (!m_text.contains(kCrLf)) {
        // One line may run far wider than the control: it is not clamped.
        lines = 1;
        if (sideways)
            width = measureWidth(m_text);
    } else {
        if (m_text.endsWith(kCrLf))
            m_text.chop(kCrLf.size());
        QString longest;
        qsizetype from = 0;
        while (true) {
            const qsizetype at = m_text.indexOf(kCrLf, from);
            const QString line = m_text.mid(from, at < 0 ? -1 : at - from);
            ++lines;
            if (line.size() > longest.size())
                longest = line;
            if (at < 0)
                break;
            from = at + kCrLf.size();
        }
        // The longest line by characters, measured: a text of several lines
        // is never wider than the control.
        const double w = measureWidth(longest);
        if (w < controlWidth && sideways)
            width = w;
    }
    if (lines == 0)
        lines = 1;
    m_lines = lines;
    m_height = whole(m_measure->textHeight(m_controlFont, QStringLiteral("Tqg"))) * float(lines);
    m_width = whole(width);
}

void ScrollerModel::PositionText(bool toStart) {
    SizeTextBox();
    switch (m_scrollType) {
    case 1:
        m_left = 0;
        if (toStart)
            m_top = m_controlHeight;
        break;
    case 2:
        m_left = 0;
        if (toStart)
            m_top = -m_height;
        break;
    case 3:
    case 4:
        m_top = m_height > m_controlHeight ? 0.0f : m_controlHeight / 2 - m_height / 2;
        if (toStart)
            m_left = m_controlWidth;
        break;
    default:
        break;
    }
    emit boxChanged();
}

void ScrollerModel::initProperties(const QFont& ambientFont) {
    m_text = kDefaultText;
    m_stopAfterOneScroll = false;
    m_autoStart = true;
    m_scrollType = 1;
    m_amount = kDefaultAmount;
    m_boxFont = ambientFont;
    m_controlFont = ambientFont;
    emit lookChanged();
}

void ScrollerModel::readProperties(const PropertyBag& bag, const QFont& ambientFont) {
    m_text = bag.read(QStringLiteral("Text"), kDefaultText).toString();
    m_stopAfterOneScroll = bag.read(QStringLiteral("StopAfterOneScroll"), false).toBool();
    m_autoStart = bag.read(QStringLiteral("AutoStart"), true).toBool();
    m_scrollType = bag.read(QStringLiteral("ScrollType"), 1).toInt();
    // The box takes the control's back colour.
    m_backColor = bag.read(QStringLiteral("BackColor"), vbcolor::kButtonFace).toUInt();
    m_foreColor = bag.read(QStringLiteral("ForeColor"), vbcolor::kWindowText).toUInt();
    m_timer.setInterval(bag.read(QStringLiteral("Interval"), kDefaultInterval).toInt());
    m_amount = bag.read(QStringLiteral("Amount"), kDefaultAmount).toDouble();
    m_alignment = bag.read(QStringLiteral("Alignment"), 2).toInt();
    m_border = bag.read(QStringLiteral("Border"), 0).toInt();
    m_boxFont = bag.read(QStringLiteral("Font"), ambientFont).value<QFont>();
    m_controlFont = m_boxFont;
    setScrolling(bag.read(QStringLiteral("Scrolling"), false).toBool());
    emit lookChanged();
}

void ScrollerModel::writeProperties(PropertyBag& bag) const {
    bag.write(QStringLiteral("Text"), m_text);
    bag.write(QStringLiteral("StopAfterOneScroll"), m_stopAfterOneScroll);
    bag.write(QStringLiteral("AutoStart"), m_autoStart);
    bag.write(QStringLiteral("ScrollType"), m_scrollType);
    bag.write(QStringLiteral("BackColor"), m_backColor);
    bag.write(QStringLiteral("ForeColor"), m_foreColor);
    bag.write(QStringLiteral("Interval"), m_timer.interval());
    bag.write(QStringLiteral("Amount"), m_amount);
    bag.write(QStringLiteral("Alignment"), m_alignment);
    bag.write(QStringLiteral("Border"), m_border);
    bag.write(QStringLiteral("Font"), m_boxFont);
    bag.write(QStringLiteral("Scrolling"), m_timer.isActive());
}
