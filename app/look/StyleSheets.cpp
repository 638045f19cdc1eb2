#include "app/look/StyleSheets.h"

#include "app/look/FontStyle.h"
#include "app/look/Screen.h"

#include <algorithm>

namespace {

constexpr int RADIO_SIDE = 20; // pixels
constexpr int TAB_LINE = 1;
constexpr int FIELD_LINE = 2; // under a field

QString withFont(const QString &sheetTemplate)
{
    return QString(sheetTemplate).replace(QLatin1String("%1"), GetFontStyle());
}

QString buttonTemplate()
{
    return QStringLiteral("QPushButton{color:black;background-color:white;%1outline:none;"
                          "border-radius:4px;border:2px solid #C4C4C3;}"
                          "QPushButton:pressed{background-color:rgb(220, 220, 220);}"
                          "QPushButton:disabled{color:#C4C4C3;}");
}

QString radioTemplate(int indicatorSide)
{
    return QStringLiteral("QRadioButton{outline: none;%1}"
                          "QRadioButton::indicator{width:%2px;height:%2px;}"
                          "QRadioButton::indicator:checked"
                          "{image: url(:/SysSet_images/SysSet_images/radio_checked.png);}"
                          "QRadioButton::indicator:unchecked"
                          "{image: url(:/SysSet_images/SysSet_images/radio_unchecked.png);}")
        .replace(QLatin1String("%2"), QString::number(indicatorSide));
}

QString scrollBarTemplate()
{
    return QStringLiteral("QScrollBar:vertical{width:32px;background-color:#F2F5F8;border:0px;}"
                          "QScrollBar::handle:vertical{background-color:#8B9FBD;min-height:40px;"
                          "border-radius:4px;margin:2px;}"
                          "QScrollBar::add-line:vertical,QScrollBar::sub-line:vertical"
                          "{height:0px;}");
}

QString listTemplate()
{
    return QStringLiteral("QListWidget{color:black;%1background-color:white;outline:none;"
                          "border:1px solid #C4C4C3;border-radius:4px;}"
                          "QListWidget:disabled{color:#767676;}"
                          "QListWidget::item{padding-left:6px;border:0px;}"
                          "QListWidget::item:selected"
                          "{color:white;background-color:rgb(0 , 85 ,127);}") +
           scrollBarTemplate();
}

QString comboTemplate(int arrowWidth, int rowHeight)
{
    return QStringLiteral("QComboBox{color:black;%1background-color:white;padding-left:6px;"
                          "border:2px solid #C4C4C3;border-radius:4px;combobox-popup:0;}"
                          "QComboBox:disabled{color:#767676;background-color:#F2F5F8;}"
                          "QComboBox::drop-down{width:%2px;border:0px;}"
                          "QComboBox::down-arrow{width:%4px;height:%4px;"
                          "image: url(:/SysSet_images/SysSet_images/chevron.png);}"
                          "QComboBox::down-arrow:disabled{image:none;}"
                          "QComboBox QAbstractItemView{color:black;%1background-color:white;"
                          "outline:none;border:1px solid #C4C4C3;}"
                          "QComboBox QAbstractItemView::item{min-height:%3px;padding-left:6px;"
                          "border:0px;}"
                          "QComboBox QAbstractItemView::item:selected"
                          "{color:white;background-color:rgb(0 , 85 ,127);}")
               .replace(QLatin1String("%2"), QString::number(arrowWidth))
               .replace(QLatin1String("%3"), QString::number(rowHeight))
               .replace(QLatin1String("%4"), QString::number(arrowWidth / 2)) +
           scrollBarTemplate();
}

// A handle as large as a finger's touch, on a groove a sixth as high.
QString sliderTemplate(int handle)
{
    const int groove = handle / 6;
    return QStringLiteral(
               "QSlider{min-height:%1px;}"
               "QSlider::groove:horizontal{border:0px;height:%2px;}"
               "QSlider::sub-page:horizontal,QSlider::add-page:horizontal"
               "{background-color:#0080ff;border-radius:3px;}"
               "QSlider::handle:horizontal{background-color:white;"
               "border:2px solid #C4C4C3;width:%3px;border-radius:%4px;margin:-%5px 0px;}"
               "QSlider::handle:horizontal:pressed"
               "{background-color:rgb(220, 220, 220);}")
        .arg(handle)
        .arg(groove)
        .arg(handle - 4)
        .arg(handle / 2 - 1)
        .arg((handle - groove) / 2);
}

// Fields that are told apart by the dynamic property "shownOnly".
QString fieldTemplate()
{
    return QStringLiteral("QLabel{color:black;%1border:0px;}"
                          "QLineEdit{color:black;%1background:transparent;border:0px;"
                          "border-bottom:2px solid #C4C4C3;}"
                          "QLineEdit[shownOnly=\"true\"]{background-color:#F2F5F8;"
                          "border-bottom:0px;border-radius:4px;}"
                          "QLabel:disabled,QLineEdit:disabled{color:#767676;}");
}

} // namespace

QString windowStyle()
{
    return withFont(QStringLiteral("QLabel{color:black;%1border-radius:4px;}") + buttonTemplate() +
                    radioTemplate(std::max(RADIO_SIDE, fontPixelSize())) + listTemplate() +
                    QStringLiteral("#Qt_MainWin{background-color:white;}"
                                   "QFrame#wdg_Status{background-color:#F2F5F8;border-radius:4px;}"
                                   "QCheckBox{color:black;%1outline:none;}"));
}

int tabWidth()
{
    return screenSize().width() / 5 + TAB_LINE;
}

QString tabStyle()
{
    const QSize screen = screenSize();
    return QStringLiteral("QTabBar::tab {width:%1px;height:%2px;color: black;%3outline: none;"
                          "background-color:#F2F5F8;margin:0px;padding:0px;"
                          "border:0px;border-right:1px solid #C4C4C3;"
                          "border-top-left-radius:4px;border-top-right-radius:4px;}"
                          "QTabBar::tab:selected{color:white;background-color:rgb(0 , 85 ,127);}"
                          "QTabWidget::pane{border:0px;border-top:2px solid rgb(0 , 85 ,127);"
                          "background-color:white;}")
        .arg(screen.width() / 5)
        .arg(screen.height() / 12)
        .arg(GetFontStyle());
}

QString updateStyle()
{
    return withFont(listTemplate() +
                    QStringLiteral("QListWidget::item{min-height:%2px;}"
                                   "QProgressBar{border: none;text-align: center;"
                                   "background: rgb(210, 225, 240);}"
                                   "QProgressBar{color:black;%1border-radius:4px;}"
                                   "QProgressBar::chunk{background-color:rgb(0, 160, 230);"
                                   "border-radius:4px;}"))
        .replace(QLatin1String("%2"), QString::number(touchHeight()));
}

QString navigationStyle(bool selected)
{
    return withFont(selected ? QStringLiteral("color: white; background-color:rgb(0   , 85  ,127); "
                                              "%1;outline: none;border-radius: 4px;"
                                              "border: 2px solid #C4C4C3;")
                             : QStringLiteral("color: black; background-color:rgb(255 , 255 ,255); "
                                              "%1;outline: none;border-radius: 4px;"
                                              "border: 2px solid #C4C4C3;"));
}

QString messageBoxStyle()
{
    return withFont(QStringLiteral("QLabel{color:black;%1border-radius:4px;border:0px;}") +
                    buttonTemplate() +
                    QStringLiteral("#MessageBox{background-color:white;}"
                                   "QLabel#label_3{border-radius:0px;}"
                                   "QFrame#frame{border:2px solid #8B9FBD;}"));
}

QString keyboardStyle(bool centred)
{
    return withFont(QStringLiteral("QLabel{color:black;%1border-radius:4px;}") + buttonTemplate() +
                    QStringLiteral("#SoftKeyboard{background-color:white;}"
                                   "QLabel#lab_Min,QLabel#lab_Max{padding:0px 6px;}"
                                   "QWidget#widget_2{background-color: rgb(139, 159, 189);}"
                                   "QPushButton#btn_close{background-color:transparent;"
                                   "border:0px solid #C4C4C3;}"
                                   "QLineEdit{color:black;%1background:transparent;border:0px;"
                                   "border-bottom:2px solid #C4C4C3;"
                                   "selection-background-color:transparent;"
                                   "selection-color:black;qproperty-alignment:")) +
           (centred ? QStringLiteral("AlignHCenter;}") : QStringLiteral("AlignLeft;}"));
}

QString infoStyle()
{
    // Without the font, which is the window's: a language change leaves this alone.
    return QStringLiteral("QLabel{color:black;border:0px;border-radius:0px;"
                          "border-bottom:1px solid #DDE3EA;}"
                          "QLabel#label_24,QLabel#label_29,QLabel#label_34,QLabel#label_35"
                          "{color:#52637A;padding-right:6px;}"
                          "QLabel#label_35,QLabel#lab_ReProduct{border-bottom:0px;}"
                          "QLabel#lab_QRcode{background-color:white;"
                          "border:1px solid #C4C4C3;border-radius:8px;}");
}

QString versionStyle()
{
    return withFont(QStringLiteral("QTreeWidget{color:black;%1background-color:white;"
                                   "outline:none;border:0px;}"
                                   "QTreeWidget::item{min-height:%2px;padding:0px 4px;"
                                   "border:0px;border-bottom:1px solid #DDE3EA;}") +
                    scrollBarTemplate())
        .replace(QLatin1String("%2"), QString::number(fontPixelSize() * 2));
}

QString radioStyle()
{
    return withFont(radioTemplate(RADIO_SIDE));
}

QString addressStyle(bool underlined)
{
    return withFont(QStringLiteral("QLabel{color:black;%1}"
                                   "QLineEdit{color:black;%1background:transparent;border:0px;") +
                    (underlined ? QStringLiteral("border-bottom:2px solid;"
                                                 "border-bottom-color: #C4C4C3;}")
                                : QStringLiteral("}")));
}

QString wifiStyle()
{
    return QStringLiteral("QFrame#line_Connect{background-color:#C4C4C3;border:0px;}");
}

QString wifiParaStyle()
{
    return withFont(QStringLiteral("QLabel{color:black;%1}") + buttonTemplate() +
                    radioTemplate(std::max(RADIO_SIDE, fontPixelSize())) +
                    QStringLiteral("#WifiPara{background-color:white;}"));
}

QString comStyle()
{
    return withFont(fieldTemplate() + QStringLiteral("QLabel#lab_NotSaved{color:#B00020;}"));
}

QString cellularStyle()
{
    return comStyle() + QStringLiteral("QRadioButton:disabled{color:#767676;}");
}

QString communicationStyle()
{
    return withFont(
        fieldTemplate() + buttonTemplate() +
        QStringLiteral("#Communication{background-color:white;}"
                       "QLabel#lab_Title{background-color:rgb(139, 159, 189);border-radius:0px;}"
                       "QFrame#frame{border:2px solid #8B9FBD;}"));
}

QString generalStyle()
{
    const int touch = touchHeight();
    return addressStyle(true) +
           QStringLiteral("QLineEdit{min-height:%1px;}").arg(touch - FIELD_LINE) +
           withFont(comboTemplate(touch, std::max(touch, fontPixelSize() * 8 / 5))) +
           sliderTemplate(touch) +
           QStringLiteral("QFrame#line_Halves{background-color:#C4C4C3;border:0px;}");
}

QString extendStyle()
{
    const int arrow = fontPixelSize() * 3 / 2;
    return withFont(QStringLiteral("QLabel{color:black;%1}") + buttonTemplate() +
                    comboTemplate(arrow, std::max(touchHeight(), arrow)));
}

QString diagnosisStyle()
{
    return withFont(
        QStringLiteral("QLabel{color:black;%1border:0px;}") + buttonTemplate() +
        scrollBarTemplate() +
        QStringLiteral("#NetWorkTestUi,QWidget#rows{background-color:white;}"
                       "QFrame#frame{border:2px solid #8B9FBD;}"
                       "QFrame#wdg_Title{background-color:rgb(139, 159, 189);}"
                       "QPushButton#btn_close{background-color:transparent;border:0px;}"
                       "QPushButton#btn_StartDiag{padding:0px 8px;}"
                       "QScrollArea{border:1px solid #C4C4C3;}"
                       "NetWorkTestItem[heading=\"true\"]{background-color:#F2F5F8;}"
                       "QLabel#lab_result{color:#595959;}"
                       "QLabel#lab_solution{background-color:#F2F5F8;border-radius:4px;}"));
}
