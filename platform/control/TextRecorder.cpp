#include "platform/control/TextRecorder.h"

#include <QGlyphRun>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QRawFont>
#include <QTextLayout>
#include <QTransform>

namespace control {
namespace {

// The area that the glyphs cover, with the baseline's start at (0, 0). QFontMetrics rounds outwards
// for each glyph.
QRectF inkOf(const QTextItem &item)
{
    QTextLayout layout(item.text(), item.font());
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    QRectF ink;
    const QList<QGlyphRun> runs = layout.glyphRuns();
    for (const QGlyphRun &run : runs) {
        const QRawFont font = run.rawFont();
        const QVector<quint32> glyphs = run.glyphIndexes();
        const QVector<QPointF> places = run.positions();
        for (int i = 0; i < glyphs.size(); ++i)
            ink |= font.boundingRect(glyphs[i]).translated(places[i]);
    }
    return ink.translated(0, -line.ascent());
}

// Records texts and ignores everything else that is painted.
class RecordingEngine : public QPaintEngine
{
public:
    RecordingEngine() : QPaintEngine(AllFeatures) {}

    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState &now) override
    {
        if (now.state() & DirtyPen)
            m_color = now.pen().color();
        if (now.state() & DirtyTransform)
            m_transform = now.transform();
    }
    void drawTextItem(const QPointF &baseline, const QTextItem &item) override
    {
        if (!item.text().trimmed().isEmpty())
            m_texts.append({item.text(), item.font(), m_color,
                            m_transform.mapRect(inkOf(item).translated(baseline))});
    }
    void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}
    void drawImage(const QRectF &, const QImage &, const QRectF &,
                   Qt::ImageConversionFlags) override
    {
    }
    void drawTiledPixmap(const QRectF &, const QPixmap &, const QPointF &) override {}
    void drawPath(const QPainterPath &) override {}
    void drawPolygon(const QPointF *, int, PolygonDrawMode) override {}
    void drawPolygon(const QPoint *, int, PolygonDrawMode) override {}
    void drawEllipse(const QRectF &) override {}
    void drawEllipse(const QRect &) override {}
    void drawLines(const QLineF *, int) override {}
    void drawLines(const QLine *, int) override {}
    void drawPoints(const QPointF *, int) override {}
    void drawPoints(const QPoint *, int) override {}
    void drawRects(const QRectF *, int) override {}
    void drawRects(const QRect *, int) override {}

    const QVector<PaintedText> &texts() const { return m_texts; }

private:
    QColor m_color = Qt::black;
    QTransform m_transform;
    QVector<PaintedText> m_texts;
};

// A paint device as large as the widget, with the recording engine.
class RecordingDevice : public QPaintDevice
{
public:
    explicit RecordingDevice(const QWidget *widget) : m_size(widget->size()), m_source(*widget) {}

    QPaintEngine *paintEngine() const override { return &m_engine; }
    const QVector<PaintedText> &texts() const { return m_engine.texts(); }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return m_size.width();
        case PdmHeight:
            return m_size.height();
        case PdmDpiX:
            return m_source.logicalDpiX();
        case PdmDpiY:
            return m_source.logicalDpiY();
        case PdmDepth:
            return m_source.depth();
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        default:
            return 1;
        }
    }

private:
    QSize m_size;
    const QWidget &m_source;
    mutable RecordingEngine m_engine;
};

} // namespace

QVector<PaintedText> paintedTexts(QWidget *widget)
{
    RecordingDevice device(widget);
    widget->render(&device, QPoint(), QRegion(), QWidget::RenderFlags());
    return device.texts();
}

} // namespace control
