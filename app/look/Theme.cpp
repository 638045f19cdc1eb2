#include "app/look/Theme.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

struct Colour
{
    const char *name;
    const char *value; // as style sheets have it
};

constexpr Colour COLOURS[] = {
    {"ink", "black"},                   // text
    {"mutedInk", "#52637A"},            // captions and remarks beside the text
    {"disabledInk", "#6B6B6B"},         // what cannot be used now
    {"surface", "white"},               // the ground of pages and dialogs
    {"shade", "#F2F5F8"},               // the ground of headings and of what only shows
    {"line", "#C4C4C3"},                // borders and underlines
    {"hairline", "#DDE3EA"},            // between the rows of a list that only shows
    {"pressedLine", "#52637A"},         // the border of what the finger is on
    {"pressed", "rgb(220, 220, 220)"},  // its ground
    {"selected", "rgb(0 , 85 ,127)"},   // the tab, button or row that is chosen
    {"selectedInk", "white"},           // text on it
    {"title", "rgb(139, 159, 189)"},    // title strips, dialog frames, scroll handles
    {"accent", "#0080ff"},              // the value that a finger changes
    {"accentGround", "#E3F0FF"},        // the ground of the field that the keyboard is open on
    {"mark", "rgb(0, 160, 230)"},       // the bar of the selected tab, the part that is done
    {"undone", "rgb(210, 225, 240)"},   // the part that is not
    {"chip", "#00121C"},                // the ground of words in signal colours
    {"bad", "#B00020"},                 // what has failed or is not saved
    {"signalGood", "rgb(0, 170, 255)"}, // the diagnosis's words on a chip
    {"signalFair", "rgb(206, 206, 0)"},
    {"signalBad", "rgb(255, 0, 0)"},
    {"connectingName", "rgb(0, 0, 0)"},     // of a network
    {"connectedName", "rgb(71, 148, 214)"}, // on a chip
    {"dialogPaper", "rgb(248, 248, 248)"},  // the ground of the Wi-Fi parameters
    {"shadow", "black"},                    // around dialogs, mostly transparent
};

const Colour *colourOf(const QStringRef &name)
{
    const auto *const found =
        std::find_if(std::begin(COLOURS), std::end(COLOURS),
                     [&](auto &colour) { return name == QLatin1String(colour.name); });
    return found == std::end(COLOURS) ? nullptr : found;
}

int nameEnd(const QString &text, int from)
{
    while (from < text.size() && text.at(from).isLetter())
        ++from;
    return from;
}

} // namespace

QString themed(const QString &sheetTemplate)
{
    QString sheet;
    sheet.reserve(sheetTemplate.size() * 5 / 4);
    int done = 0;
    for (int at = sheetTemplate.indexOf(QLatin1Char('@')); at >= 0;
         at = sheetTemplate.indexOf(QLatin1Char('@'), at + 1)) {
        const int end = nameEnd(sheetTemplate, at + 1);
        const Colour *colour = colourOf(sheetTemplate.midRef(at + 1, end - at - 1));
        if (colour == nullptr)
            continue;
        sheet += sheetTemplate.midRef(done, at - done) + QLatin1String(colour->value);
        done = end;
    }
    return sheet + sheetTemplate.midRef(done);
}

QColor themeColour(const QString &name, int alpha)
{
    const Colour *colour = colourOf(QStringRef(&name));
    const QByteArray value = colour == nullptr ? name.toLatin1() : QByteArray(colour->value);
    int red = 0;
    int green = 0;
    int blue = 0;
    // NOLINTNEXTLINE(bugprone-unchecked-string-to-number-conversion): the program's own colours
    if (std::sscanf(value.constData(), "rgb(%d ,%d ,%d)", &red, &green, &blue) == 3)
        return {red, green, blue, alpha};
    QColor named(QString::fromLatin1(value));
    named.setAlpha(alpha);
    return named;
}
