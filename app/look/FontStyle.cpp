#include "app/look/FontStyle.h"

#include "app/look/Screen.h"

#include <QFont>
#include <QFontDatabase>
#include <QResource>

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
    font.setStyleStrategy(QFont::PreferNoShaping);
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
    // First the characters of the program's own texts: of the whole font, a start reads 2.4 MiB.
    const QResource file(QStringLiteral(":/SysSet_fonts/text.ttf"));
    const int id = QFontDatabase::addApplicationFontFromData(QByteArray::fromRawData(
        reinterpret_cast<const char *>(file.data()), static_cast<int>(file.size())));
    const QStringList chinese = QFontDatabase::applicationFontFamilies(id)
                                << QStringLiteral("WenQuanYi Micro Hei");
    QFont::insertSubstitutions(QStringLiteral("simsun"),
                               QStringList(QStringLiteral("SimSun")) + chinese);
    QFont::insertSubstitutions(QStringLiteral("Calibri"),
                               QStringList(QStringLiteral("Carlito")) + chinese);
}
