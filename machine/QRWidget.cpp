#include "machine/QRWidget.h"

#include <QPainter>
#include <qrencode.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace {

constexpr int LEAST_VERSION = 2; // of 1 to 40: 25 modules square
constexpr int CASE_SENSITIVE = 1;
constexpr unsigned char DARK = 1; // the lowest bit of a module

struct FreeCode
{
    void operator()(QRcode *code) const { QRcode_free(code); }
};
using Code = std::unique_ptr<QRcode, FreeCode>;

// Null, with errno set, if the text is empty or too long.
Code encode(const QString &text)
{
    return Code(QRcode_encodeString(text.toUtf8().constData(), LEAST_VERSION, QR_ECLEVEL_M,
                                    QR_MODE_8, CASE_SENSITIVE));
}

// Modules keep their fraction of a pixel, so that the code fills `side` exactly.
void drawModules(QPainter &painter, const QRcode &code, int side)
{
    const int width = std::max(1, code.width);
    const qreal size = qreal(side) / width;
    for (int y = 0; y < width; ++y) {
        for (int x = 0; x < width; ++x) {
            if ((code.data[y * width + x] & DARK) != 0)
                painter.fillRect(QRectF(x * size, y * size, size, size), Qt::black);
        }
    }
}

} // namespace

QRWidget::QRWidget(QWidget *parent) : QWidget(parent), m_text(QStringLiteral("Hello QR")) {}

void QRWidget::setQRData(const QString &text)
{
    m_text = text;
    update();
}

void QRWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const Code code = encode(m_text);
    if (code == nullptr) {
        const QString reason = qt_error_string(errno);
        painter.fillRect(rect(), Qt::red);
        qDebug("QR FAIL: %s", qPrintable(reason));
        return;
    }
    painter.fillRect(rect(), Qt::white);
    drawModules(painter, *code, std::min(width(), height()));
}
