#include "app/look/FontStyle.h"

#include "app/look/Screen.h"

#include <QFont>

int g_nLanguge = 0;
int g_nChange = 0;
bool g_bChange = true;
QTranslator *m_translator = nullptr;

namespace {

struct FontStep
{
    int belowWidth; // of the screen, in pixels
    int chinesePixels;
    int latinPixels;
};

constexpr FontStep FONT_STEPS[] = {{480, 12, 10}, {800, 14, 12}, {1025, 20, 20}};
constexpr FontStep LARGEST_FONTS = {0, 36, 36};

const FontStep &fontStep()
{
    const int width = screenSize().width();
    for (const FontStep &step : FONT_STEPS) {
        if (width < step.belowWidth)
            return step;
    }
    return LARGEST_FONTS;
}

} // namespace

int fontPixelSize()
{
    return g_nLanguge == 0 ? fontStep().chinesePixels : fontStep().latinPixels;
}

int captionWidth()
{
    return fontPixelSize() * 11 / 2;
}

QFont panelFont()
{
    QFont font(QStringLiteral("simsun"));
    font.setPixelSize(fontPixelSize());
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QString GetFontStyle()
{
    return QStringLiteral("font: 75 %1px %2;")
        .arg(fontPixelSize())
        .arg(g_nLanguge == 0 ? QStringLiteral("simsun") : QStringLiteral("Calibri"));
}

void substituteFonts()
{
    const QString chinese = QStringLiteral("WenQuanYi Micro Hei");
    QFont::insertSubstitutions(QStringLiteral("simsun"), {QStringLiteral("SimSun"), chinese});
    QFont::insertSubstitutions(QStringLiteral("Calibri"), {QStringLiteral("Carlito"), chinese});
}
