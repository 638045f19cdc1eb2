#include "app/look/StyleSheets.h"

#include "app/look/FontStyle.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/Theme.h"
#include "app/look/WidgetLook.h"

#include <algorithm>
#include <initializer_list>

namespace {

constexpr int RADIO_SIDE = 20; // pixels
constexpr int TAB_LINE = 1;
constexpr int FIELD_LINE = 2;     // under a field
constexpr int WIDEST_SCROLL = 40; // of a scroll bar where the screen has room for it

// Fills in the colours ("@ink") and the font ("%1").
QString filled(const QString &sheetTemplate)
{
    return themed(sheetTemplate).replace(QLatin1String("%1"), GetFontStyle());
}

struct Size
{
    const char *name; // none begins with another
    int pixels;
};

// Fills in sizes: "width:$side;" gets the pixels of "side".
QString sized(QString sheetTemplate, std::initializer_list<Size> sizes)
{
    for (const Size &size : sizes)
        sheetTemplate.replace(QLatin1Char('$') + QLatin1String(size.name),
                              QString::number(size.pixels) + QLatin1String("px"));
    return sheetTemplate;
}

// The line under what is chosen or worked on.
int thickLine()
{
    return spacing(1) * 3 / 4;
}

// Pressed and disabled can be told apart without colours: the content moves down, the border is
// dashed.
QString buttonTemplate()
{
    return QStringLiteral("QPushButton{color:@ink;background-color:@surface;%1outline:none;"
                          "border-radius:4px;border:2px solid @line;}"
                          "QPushButton:pressed{background-color:@pressed;"
                          "border-color:@pressedLine;padding-top:4px;}"
                          "QPushButton:disabled{color:@disabledInk;background-color:@shade;"
                          "border:2px dashed @line;}");
}

// Switches are the only flat buttons; a disabled one is hatched. Selected by property, because Qt
// would build a rule for `:flat`, and load its picture, for every other button too.
QString switchTemplate()
{
    return QStringLiteral("QPushButton[flat=\"true\"]:disabled{background-color:transparent;"
                          "image: url(:/SysSet_images/SysSet_images/switch_veil.png);}");
}

QString radioTemplate(int indicatorSide)
{
    return sized(
        QStringLiteral("QRadioButton{outline: none;%1}"
                       "QRadioButton:disabled{color:@disabledInk;}"
                       "QRadioButton::indicator{width:$side;height:$side;}"
                       "QRadioButton::indicator:checked"
                       "{image: url(:/SysSet_images/SysSet_images/radio_checked.png);}"
                       "QRadioButton::indicator:unchecked"
                       "{image: url(:/SysSet_images/SysSet_images/radio_unchecked.png);}"
                       "QRadioButton::indicator:checked:disabled"
                       "{image: url(:/SysSet_images/SysSet_images/radio_checked_off.png);}"
                       "QRadioButton::indicator:unchecked:disabled"
                       "{image: url(:/SysSet_images/SysSet_images/radio_unchecked_off.png);}"),
        {{"side", indicatorSide}});
}

QString growingRadioTemplate()
{
    return radioTemplate(std::max(RADIO_SIDE, touchHeight() / 2)) +
           sized(QStringLiteral("QRadioButton{spacing:$gap;}"), {{"gap", spacing(2)}});
}

QString scrollBarTemplate()
{
    const int touch = touchHeight();
    return sized(
        QStringLiteral("QScrollBar:vertical{width:$width;background-color:@shade;border:0px;}"
                       "QScrollBar::handle:vertical{background-color:@title;min-height:$touch;"
                       "border-radius:4px;margin:2px;}"
                       "QScrollBar::handle:vertical:pressed{background-color:@mutedInk;}"
                       "QScrollBar::add-line:vertical,QScrollBar::sub-line:vertical"
                       "{height:0px;}"),
        {{"width", std::min(touch, WIDEST_SCROLL)}, {"touch", touch}});
}

QString listTemplate()
{
    return sized(QStringLiteral("QListWidget{color:@ink;%1background-color:@surface;outline:none;"
                                "border:1px solid @line;border-radius:4px;}"
                                "QListWidget:disabled{color:@disabledInk;border:1px dashed @line;}"
                                "QListWidget::item{padding-left:$gap;border:0px;}"
                                "QListWidget::item:selected"
                                "{color:@selectedInk;background-color:@selected;}"),
                 {{"gap", spacing(2)}});
}

// `textHeight`: what a row keeps for its text at least; padding makes it a row for fingers.
QString comboTemplate(int arrowWidth, int textHeight)
{
    const int rowHeight = std::max(touchHeight(), textHeight);
    return sized(QStringLiteral(
                     "QComboBox{color:@ink;%1background-color:@surface;padding-left:$gap;"
                     "border:2px solid @line;border-radius:4px;combobox-popup:0;}"
                     "QComboBox:on{background-color:@pressed;border-color:@pressedLine;}"
                     "QComboBox:disabled{color:@disabledInk;background-color:@shade;"
                     "border:2px dashed @line;}"
                     "QComboBox::drop-down{width:$drop;border:0px;}"
                     "QComboBox::down-arrow{width:$arrow;height:$arrow;"
                     "image: url(:/SysSet_images/SysSet_images/chevron.png);}"
                     "QComboBox::down-arrow:disabled{image:none;}"
                     "QComboBox QAbstractItemView{color:@ink;%1background-color:@surface;"
                     "outline:none;border:1px solid @line;}"
                     "QComboBox QAbstractItemView::item{min-height:$text;padding:$above $gap;"
                     "border:0px;}"
                     "QComboBox QAbstractItemView::item:selected"
                     "{color:@selectedInk;background-color:@selected;}"),
                 {{"drop", arrowWidth},
                  {"arrow", arrowWidth / 2},
                  {"text", textHeight},
                  {"above", (rowHeight - textHeight + 1) / 2},
                  {"gap", spacing(2)}}) +
           scrollBarTemplate();
}

// A handle as large as a finger's touch, on a groove a sixth as high.
QString sliderTemplate(int handle)
{
    const int groove = handle / 6;
    return sized(QStringLiteral("QSlider{min-height:$handle;}"
                                "QSlider::groove:horizontal{border:0px;height:$groove;}"
                                "QSlider::sub-page:horizontal,QSlider::add-page:horizontal"
                                "{background-color:@accent;border-radius:3px;}"
                                "QSlider::handle:horizontal{background-color:@surface;"
                                "border:2px solid @line;width:$width;border-radius:$radius;"
                                "margin:-$margin 0px;}"
                                "QSlider::handle:horizontal:pressed"
                                "{background-color:@pressed;border-color:@pressedLine;}"),
                 {{"handle", handle},
                  {"groove", groove},
                  {"width", handle - 4},
                  {"radius", handle / 2 - 1},
                  {"margin", (handle - groove) / 2}});
}

// The field that the keyboard is open on has the dynamic property "edited".
QString editedTemplate()
{
    return sized(QStringLiteral("QLineEdit[edited=\"true\"]{background-color:@accentGround;"
                                "border-bottom:$thick solid @accent;}"),
                 {{"thick", thickLine()}});
}

// Fields that are told apart by the dynamic property "shownOnly".
QString fieldTemplate()
{
    return QStringLiteral("QLabel{color:@ink;%1border:0px;}"
                          "QLineEdit{color:@ink;%1background:transparent;border:0px;"
                          "border-bottom:2px solid @line;}"
                          "QLineEdit[shownOnly=\"true\"]{background-color:@shade;"
                          "border-bottom:0px;border-radius:4px;}"
                          "QLabel:disabled{color:@disabledInk;}"
                          "QLineEdit:disabled{color:@disabledInk;"
                          "border-bottom:2px dashed @line;}") +
           editedTemplate();
}

// The strip and the frame of a dialog.
QString frameTemplate()
{
    return QStringLiteral("QFrame#frame{border:2px solid @title;}");
}

} // namespace

QString windowStyle()
{
    return filled(QStringLiteral("QLabel{color:@ink;%1border-radius:4px;}") + buttonTemplate() +
                  switchTemplate() + listTemplate() +
                  QStringLiteral("#Qt_MainWin{background-color:@surface;}"
                                 "QLabel#lab_replacwidgetEth{color:@mutedInk;}"
                                 "QFrame#wdg_Status{background-color:@shade;border-radius:4px;}"
                                 "QCheckBox{color:@ink;%1outline:none;}"));
}

int tabWidth()
{
    return screenSize().width() / 5 + TAB_LINE;
}

QString tabStyle()
{
    const QSize screen = screenSize();
    const int height = screen.height() / 12;
    // The bar under the selected tab is taken from its height, so that all tabs stay as high. What
    // stands before the ground is fixed, its numbers too.
    return themed(sized(QStringLiteral(
                            "QTabBar::tab {width:%1px;height:%2px;color: black;%3outline: none;"
                            "background-color:@shade;margin:0px;padding:0px;"
                            "border:0px;border-right:1px solid @line;"
                            "border-top-left-radius:4px;border-top-right-radius:4px;}"
                            "QTabBar::tab:selected{color:@selectedInk;"
                            "background-color:@selected;height:$selected;"
                            "border:0px;border-right:1px solid @selected;"
                            "border-bottom:$thick solid @mark;}"
                            "QTabWidget::pane{border:0px;border-top:2px solid @selected;"
                            "background-color:@surface;}"),
                        {{"selected", height - thickLine()}, {"thick", thickLine()}}))
        .arg(screen.width() / 5)
        .arg(height)
        .arg(GetFontStyle());
}

QString updateStyle()
{
    return filled(listTemplate() +
                  sized(QStringLiteral("QListWidget::item{min-height:$touch;}"
                                       "QProgressBar{border: none;text-align: center;"
                                       "background: @undone;}"
                                       "QProgressBar{color:@ink;%1border-radius:4px;}"
                                       "QProgressBar::chunk{background-color:@mark;"
                                       "border-radius:4px;}"),
                        {{"touch", touchHeight()}}));
}

QString updateLabelStyle()
{
    return filled(QStringLiteral(" QLabel{color:@ink;%1border-radius:4px;"
                                 "border: 1px solid @line;}"));
}

QString scrollStyle()
{
    return themed(scrollBarTemplate());
}

// Fixed to the letter, as switchStyle() and closeKeyStyle().
QString navigationStyle(bool selected)
{
    return filled(selected ? QStringLiteral("color: white; background-color:rgb(0   , 85  ,127); "
                                            "%1;outline: none;border-radius: 4px;"
                                            "border: 2px solid #C4C4C3;")
                           : QStringLiteral("color: black; background-color:rgb(255 , 255 ,255); "
                                            "%1;outline: none;border-radius: 4px;"
                                            "border: 2px solid #C4C4C3;"));
}

QString switchStyle(bool on)
{
    const QString image =
        imagePath(on ? QStringLiteral("Switch_Open.png") : QStringLiteral("Switch_Close.png"));
    return QStringLiteral("QPushButton{ border:0px;outline: none;border-image: url(") + image +
           QStringLiteral(");}QPushButton:pressed{border:0px;"
                          "background-color:rgb(255 , 255 ,255);}");
}

QString iconStyle(const QString &imageName)
{
    return QStringLiteral("image: url(") + imagePath(imageName) + QStringLiteral(");");
}

QString borderImageStyle(const QString &imageName)
{
    return QStringLiteral("border-image: url(") + imagePath(imageName) + QStringLiteral(");");
}

QString textColourStyle(const QString &colourName)
{
    return themed(QStringLiteral("color: @") + colourName + QLatin1Char(';'));
}

QString messageBoxStyle()
{
    return filled(QStringLiteral("QLabel{color:@ink;%1border-radius:4px;border:0px;}") +
                  buttonTemplate() + frameTemplate() +
                  QStringLiteral("#MessageBox{background-color:@surface;}"
                                 "QLabel#label_3{border-radius:0px;}"));
}

QString keyboardStyle(bool centred)
{
    // All that a page's rule for its own fields could change on the entry line is set here.
    return filled(QStringLiteral("QLabel{color:@ink;%1border-radius:4px;}") + buttonTemplate() +
                  QStringLiteral("#SoftKeyboard{background-color:@surface;}"
                                 "QLabel#lab_Min,QLabel#lab_Max{padding:0px 6px;}"
                                 "QWidget#widget_2{background-color: @title;}"
                                 "QPushButton#btn_close{background-color:transparent;"
                                 "border:0px solid @line;}"
                                 "QLineEdit{color:@ink;%1background:transparent;border:0px;"
                                 "min-height:0px;padding:0px 6px;border-bottom:2px solid @line;"
                                 "selection-background-color:transparent;"
                                 "selection-color:@ink;qproperty-alignment:")) +
           (centred ? QStringLiteral("AlignHCenter;}") : QStringLiteral("AlignLeft;}"));
}

QString closeKeyStyle()
{
    return themed(QStringLiteral("border: 0px solid @line;"));
}

QString infoStyle()
{
    // Without the font, which is the window's, so that a language change need not set it again.
    return themed(QStringLiteral("QLabel{color:@ink;border:0px;border-radius:0px;"
                                 "border-bottom:1px solid @hairline;}"
                                 "QLabel#label_24,QLabel#label_29,QLabel#label_34,QLabel#label_35"
                                 "{color:@mutedInk;padding-right:6px;}"
                                 "QLabel#label_35,QLabel#lab_ReProduct{border-bottom:0px;}"
                                 "QLabel#lab_QRcode{background-color:@surface;"
                                 "border:1px solid @line;border-radius:8px;}"));
}

QString versionStyle()
{
    return filled(sized(QStringLiteral("QTreeWidget{color:@ink;%1background-color:@surface;"
                                       "outline:none;border:0px;}"
                                       "QTreeWidget::item{min-height:$row;padding:0px 4px;"
                                       "border:0px;border-bottom:1px solid @hairline;}"),
                        {{"row", fontPixelSize() * 2}}) +
                  scrollBarTemplate());
}

QString radioStyle()
{
    const int around = (touchHeight() - RADIO_SIDE) / 2;
    return filled(radioTemplate(RADIO_SIDE) +
                  sized(QStringLiteral("QRadioButton{padding-left:$around;}"
                                       "QPushButton[chosen=\"true\"]{color:@selectedInk;"
                                       "background-color:@selected;border-color:@selected;}"
                                       "QPushButton[chosen=\"true\"]:pressed"
                                       "{background-color:@mutedInk;}"),
                        {{"around", around}}));
}

QString growingRadioStyle()
{
    return filled(growingRadioTemplate());
}

QString addressStyle(bool underlined)
{
    return filled(QStringLiteral("QLabel{color:@ink;%1}"
                                 "QLineEdit{color:@ink;%1background:transparent;border:0px;") +
                  (underlined ? QStringLiteral("border-bottom:2px solid;"
                                               "border-bottom-color: @line;padding-top:2px;}"
                                               "QLineEdit:disabled{color:@disabledInk;"
                                               "border-bottom-style:dashed;}")
                              : QStringLiteral("}")) +
                  editedTemplate());
}

QString wifiStyle()
{
    return themed(scrollBarTemplate() +
                  QStringLiteral("QFrame#line_Connect{background-color:@line;border:0px;}"
                                 "QLabel#lab_ip{color:@mutedInk;}"));
}

QString wifiParaStyle()
{
    return filled(QStringLiteral("QLabel{color:@ink;%1}") + buttonTemplate() +
                  growingRadioTemplate() + QStringLiteral("#WifiPara{background-color:@surface;}"));
}

QString comStyle()
{
    return filled(fieldTemplate() + QStringLiteral("QLabel#lab_NotSaved{color:@bad;}"));
}

QString cellularStyle()
{
    return comStyle() + growingRadioStyle() +
           themed(QStringLiteral("QLabel#lab_vpn{color:@mutedInk;}"));
}

QString communicationStyle()
{
    return filled(fieldTemplate() + buttonTemplate() + frameTemplate() +
                  QStringLiteral("#Communication{background-color:@surface;}"
                                 "QLabel#lab_Title{background-color:@title;border-radius:0px;}"));
}

QString generalStyle()
{
    const int touch = touchHeight();
    return addressStyle(true) +
           sized(QStringLiteral("QLineEdit{min-height:$field;}"), {{"field", touch - FIELD_LINE}}) +
           filled(comboTemplate(touch, fontPixelSize() * 8 / 5)) +
           themed(sliderTemplate(touch) +
                  QStringLiteral("QFrame#line_Halves{background-color:@line;border:0px;}"));
}

QString extendStyle()
{
    const int arrow = fontPixelSize() * 3 / 2;
    return filled(QStringLiteral("QLabel{color:@ink;%1}"
                                 "QLabel#lab_DiagHint,QLabel#lab_MethodHint{color:@mutedInk;}") +
                  buttonTemplate() + comboTemplate(arrow, arrow));
}

QString diagnosisStyle()
{
    return filled(
        QStringLiteral("QLabel{color:@ink;%1border:0px;}") + buttonTemplate() +
        scrollBarTemplate() + frameTemplate() +
        sized(QStringLiteral("#NetWorkTestUi,QWidget#rows{background-color:@surface;}"
                             "QFrame#wdg_Title{background-color:@title;}"
                             "QPushButton#btn_close{background-color:transparent;border:0px;}"
                             "QPushButton#btn_StartDiag{padding:0px 8px;}"
                             "QScrollArea{border:1px solid @line;}"
                             "NetWorkTestItem[heading=\"true\"]{background-color:@shade;}"
                             "QLabel#lab_state[judged=\"true\"]{background-color:@chip;"
                             "border-radius:$half;padding:0px $third;"
                             "font-weight:bold;font-size:$large;}" // small signs, seen from afar
                             "QLabel#lab_result{color:@mutedInk;}"
                             "QLabel#lab_solution{background-color:@shade;"
                             "border-radius:4px;}"),
              {{"half", fontPixelSize() / 2},
               {"third", fontPixelSize() / 3},
               {"large", fontPixelSize() * 6 / 5}}));
}
