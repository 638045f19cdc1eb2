#include "app/look/BoxHelpers.h"

#include "app/look/Screen.h"

int runBox(int type, QWidget *parent, const QString &text, const QSize &size, const QPoint &corner)
{
    MessageBox box(type, parent);
    box.setText(text);
    placeOnScreen(&box, size, corner);
    return box.exec();
}

int runBox(int type, QWidget *parent, const QString &text)
{
    const QSize corner = fractionOf(screenSize(), 0.25, 0.25);
    return runBox(type, parent, text, fractionOf(screenSize(), 0.5, 0.5),
                  {corner.width(), corner.height()});
}
