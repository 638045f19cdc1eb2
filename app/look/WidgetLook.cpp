#include "app/look/WidgetLook.h"

#include "platform/board.h"

#include <QLabel>
#include <QPushButton>

void keyClick()
{
    PLATFORM::CPlatBuzzer::open();
}

QString imagePath(const QString &name)
{
    return QStringLiteral(":/SysSet_images/SysSet_images/") + name;
}

void setStyleOnce(QWidget *widget, const QString &styleSheet)
{
    if (widget->styleSheet() != styleSheet)
        widget->setStyleSheet(styleSheet);
}

void showIcon(QLabel *label, const QString &imageName)
{
    setStyleOnce(label, QStringLiteral("image: url(%1);").arg(imagePath(imageName)));
}

void showSwitch(QPushButton *button, bool on)
{
    const QString image =
        imagePath(on ? QStringLiteral("Switch_Open.png") : QStringLiteral("Switch_Close.png"));
    setStyleOnce(button,
                 QStringLiteral("QPushButton{ border:0px;outline: none;border-image: url(%1);}"
                                "QPushButton:pressed{border:0px;"
                                "background-color:rgb(255 , 255 ,255);}")
                     .arg(image));
}
