#include "app/look/StyleSheets.h"

#include "app/look/FontStyle.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/Theme.h"

#include <algorithm>

namespace {

constexpr int RADIO_SIDE = 20; // pixels
constexpr int TAB_LINE = 1;
constexpr int FIELD_LINE = 2;     // under a field
constexpr int WIDEST_SCROLL = 40; // of a scroll bar where the screen has room for it

QString filled(const QString &sheetTemplate)
{
    return themed(sheetTemplate).replace(QLatin1String("%1"), GetFontStyle());
}

// The line under what is chosen or worked on.
int thickLine()
{
    return spacing(1) * 3 / 4;
}

// Pressed and disabled can be told apart without colours: the content moves down, the border
// breaks up.
QString buttonTemplate()
{
    return QStringLiteral("QPushButton{color:@ink;background-color:@surface;%1outline:none;"
                          "border-radius:4px;border:2px solid @line;}"
                          "QPushButton:pressed{background-color:@pressed;"
                          "border-color:@pressedLine;padding-top:4px;}"
                          "QPushButton:disabled{color:@disabledInk;background-color:@shade;"
                          "border:2px dashed @line;}");
}

// The one flat kind of button, whose picture is its own: what cannot be switched now is veiled. By
// its property: a rule for `:flat` would be built, and its picture loaded, for every other button.
QString switchTemplate()
{
    return QStringLiteral("QPushButton[flat=\"true\"]:disabled{background-color:transparent;"
                          "image: url(:/SysSet_images/SysSet_images/switch_veil.png);}");
}

QString radioTemplate(int indicatorSide)
{
    return QStringLiteral("QRadioButton{outline: none;%1}"
                          "QRadioButton:disabled{color:@disabledInk;}"
                          "QRadioButton::indicator{width:%2px;height:%2px;}"
                          "QRadioButton::indicator:checked"
                          "{image: url(:/SysSet_images/SysSet_images/radio_checked.png);}"
                          "QRadioButton::indicator:unchecked"
                          "{image: url(:/SysSet_images/SysSet_images/radio_unchecked.png);}"
                          "QRadioButton::indicator:checked:disabled"
                          "{image: url(:/SysSet_images/SysSet_images/radio_checked_off.png);}"
                          "QRadioButton::indicator:unchecked:disabled"
                          "{image: url(:/SysSet_images/SysSet_images/radio_unchecked_off.png);}")
        .replace(QLatin1String("%2"), QString::number(indicatorSide));
}

QString growingRadioTemplate()
{
    return radioTemplate(std::max(RADIO_SIDE, touchHeight() / 2)) +
           QStringLiteral("QRadioButton{spacing:%2px;}")
               .replace(QLatin1String("%2"), QString::number(spacing(2)));
}

QString scrollBarTemplate()
{
    const int touch = touchHeight();
    return QStringLiteral("QScrollBar:vertical{width:%2px;background-color:@shade;border:0px;}"
                          "QScrollBar::handle:vertical{background-color:@title;min-height:%3px;"
                          "border-radius:4px;margin:2px;}"
                          "QScrollBar::handle:vertical:pressed{background-color:@mutedInk;}"
                          "QScrollBar::add-line:vertical,QScrollBar::sub-line:vertical"
                          "{height:0px;}")
        .replace(QLatin1String("%2"), QString::number(std::min(touch, WIDEST_SCROLL)))
        .replace(QLatin1String("%3"), QString::number(touch));
}

QString listTemplate()
{
    return QStringLiteral("QListWidget{color:@ink;%1background-color:@surface;outline:none;"
                          "border:1px solid @line;border-radius:4px;}"
                          "QListWidget:disabled{color:@disabledInk;border:1px dashed @line;}"
                          "QListWidget::item{padding-left:%4px;border:0px;}"
                          "QListWidget::item:selected"
                          "{color:@selectedInk;background-color:@selected;}")
        .replace(QLatin1String("%4"), QString::number(spacing(2)));
}

// `textHeight`: what a row keeps for its text at least; padding makes it a row for fingers.
QString comboTemplate(int arrowWidth, int textHeight)
{
    const int rowHeight = std::max(touchHeight(), textHeight);
    return QStringLiteral("QComboBox{color:@ink;%1background-color:@surface;padding-left:%5px;"
                          "border:2px solid @line;border-radius:4px;combobox-popup:0;}"
                          "QComboBox:on{background-color:@pressed;border-color:@pressedLine;}"
                          "QComboBox:disabled{color:@disabledInk;background-color:@shade;"
                          "border:2px dashed @line;}"
                          "QComboBox::drop-down{width:%2px;border:0px;}"
                          "QComboBox::down-arrow{width:%4px;height:%4px;"
                          "image: url(:/SysSet_images/SysSet_images/chevron.png);}"
                          "QComboBox::down-arrow:disabled{image:none;}"
                          "QComboBox QAbstractItemView{color:@ink;%1background-color:@surface;"
                          "outline:none;border:1px solid @line;}"
                          "QComboBox QAbstractItemView::item{min-height:%3px;padding:%6px %5px;"
                          "border:0px;}"
                          "QComboBox QAbstractItemView::item:selected"
                          "{color:@selectedInk;background-color:@selected;}")
               .replace(QLatin1String("%2"), QString::number(arrowWidth))
               .replace(QLatin1String("%3"), QString::number(textHeight))
               .replace(QLatin1String("%6"), QString::number((rowHeight - textHeight + 1) / 2))
               .replace(QLatin1String("%4"), QString::number(arrowWidth / 2))
               .replace(QLatin1String("%5"), QString::number(spacing(2))) +
           scrollBarTemplate();
}

// A handle as large as a finger's touch, on a groove a sixth as high.
QString sliderTemplate(int handle)
{
    const int groove = handle / 6;
    return QStringLiteral("QSlider{min-height:%1px;}"
                          "QSlider::groove:horizontal{border:0px;height:%2px;}"
                          "QSlider::sub-page:horizontal,QSlider::add-page:horizontal"
                          "{background-color:@accent;border-radius:3px;}"
                          "QSlider::handle:horizontal{background-color:@surface;"
                          "border:2px solid @line;width:%3px;border-radius:%4px;"
                          "margin:-%5px 0px;}"
                          "QSlider::handle:horizontal:pressed"
                          "{background-color:@pressed;border-color:@pressedLine;}")
        .arg(handle)
        .arg(groove)
        .arg(handle - 4)
        .arg(handle / 2 - 1)
        .arg((handle - groove) / 2);
}

// The field that the keyboard is open on has the dynamic property "edited".
QString editedTemplate()
{
    return QStringLiteral("QLineEdit[edited=\"true\"]{background-color:@accentGround;"
                          "border-bottom:%2px solid @accent;}")
        .replace(QLatin1String("%2"), QString::number(thickLine()));
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
    // The bar under the selected tab is taken from its height, so that all tabs stay as high.
    return themed(
               QStringLiteral("QTabBar::tab {width:%1px;height:%2px;color: black;%3outline: none;"
                              "background-color:@shade;margin:0px;padding:0px;"
                              "border:0px;border-right:1px solid @line;"
                              "border-top-left-radius:4px;border-top-right-radius:4px;}"
                              "QTabBar::tab:selected{color:@selectedInk;"
                              "background-color:@selected;height:%4px;"
                              "border:0px;border-right:1px solid @selected;"
                              "border-bottom:%5px solid @mark;}"
                              "QTabWidget::pane{border:0px;border-top:2px solid @selected;"
                              "background-color:@surface;}"))
        .arg(screen.width() / 5)
        .arg(height)
        .arg(GetFontStyle())
        .arg(height - thickLine())
        .arg(thickLine());
}

QString updateStyle()
{
    return filled(listTemplate() + QStringLiteral("QListWidget::item{min-height:%2px;}"
                                                  "QProgressBar{border: none;text-align: center;"
                                                  "background: @undone;}"
                                                  "QProgressBar{color:@ink;%1border-radius:4px;}"
                                                  "QProgressBar::chunk{background-color:@mark;"
                                                  "border-radius:4px;}"))
        .replace(QLatin1String("%2"), QString::number(touchHeight()));
}

QString scrollStyle()
{
    return themed(scrollBarTemplate());
}

QString navigationStyle(bool selected)
{
    return filled(selected ? QStringLiteral("color: white; background-color:rgb(0   , 85  ,127); "
                                            "%1;outline: none;border-radius: 4px;"
                                            "border: 2px solid #C4C4C3;")
                           : QStringLiteral("color: black; background-color:rgb(255 , 255 ,255); "
                                            "%1;outline: none;border-radius: 4px;"
                                            "border: 2px solid #C4C4C3;"));
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
    // A page's own rule for its fields would reach the entry line too.
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

QString infoStyle()
{
    // Without the font, which is the window's: a language change leaves this alone.
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
    return filled(QStringLiteral("QTreeWidget{color:@ink;%1background-color:@surface;"
                                 "outline:none;border:0px;}"
                                 "QTreeWidget::item{min-height:%2px;padding:0px 4px;"
                                 "border:0px;border-bottom:1px solid @hairline;}") +
                  scrollBarTemplate())
        .replace(QLatin1String("%2"), QString::number(fontPixelSize() * 2));
}

QString radioStyle()
{
    const int around = (touchHeight() - RADIO_SIDE) / 2;
    return filled(radioTemplate(RADIO_SIDE) +
                  QStringLiteral("QRadioButton{padding-left:%2px;}"
                                 "QPushButton[chosen=\"true\"]{color:@selectedInk;"
                                 "background-color:@selected;border-color:@selected;}"
                                 "QPushButton[chosen=\"true\"]:pressed"
                                 "{background-color:@mutedInk;}"))
        .replace(QLatin1String("%2"), QString::number(around));
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
           QStringLiteral("QLineEdit{min-height:%1px;}").arg(touch - FIELD_LINE) +
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
    return filled(QStringLiteral("QLabel{color:@ink;%1border:0px;}") + buttonTemplate() +
                  scrollBarTemplate() + frameTemplate() +
                  QStringLiteral("#NetWorkTestUi,QWidget#rows{background-color:@surface;}"
                                 "QFrame#wdg_Title{background-color:@title;}"
                                 "QPushButton#btn_close{background-color:transparent;border:0px;}"
                                 "QPushButton#btn_StartDiag{padding:0px 8px;}"
                                 "QScrollArea{border:1px solid @line;}"
                                 "NetWorkTestItem[heading=\"true\"]{background-color:@shade;}"
                                 "QLabel#lab_state[judged=\"true\"]{background-color:@chip;"
                                 "border-radius:%2px;padding:0px %3px;"
                                 "font-weight:bold;font-size:%4px;}" // small signs, seen from afar
                                 "QLabel#lab_result{color:@mutedInk;}"
                                 "QLabel#lab_solution{background-color:@shade;"
                                 "border-radius:4px;}"))
        .replace(QLatin1String("%2"), QString::number(fontPixelSize() / 2))
        .replace(QLatin1String("%3"), QString::number(fontPixelSize() / 3))
        .replace(QLatin1String("%4"), QString::number(fontPixelSize() * 6 / 5));
}
