#include "app/look/WidgetLook.h"

#include "platform/board.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QStyle>
#include <QVariant>

#include <utility>

namespace {

// A style sheet that waits for its widget to be shown.
class LateStyle : public QObject
{
    Q_OBJECT

public:
    LateStyle(QWidget *widget, QString styleSheet)
        : QObject(widget), m_styleSheet(std::move(styleSheet))
    {
        widget->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && !m_bWorn)
            wear();
        return QObject::eventFilter(watched, event);
    }

    void wear()
    {
        m_bWorn = true;
        static_cast<QWidget *>(parent())->setStyleSheet(m_styleSheet);
        deleteLater();
    }

private:
    const QString m_styleSheet;
    bool m_bWorn = false;
};

void forgetLateStyle(QWidget *widget)
{
    delete widget->findChild<LateStyle *>(QString(), Qt::FindDirectChildrenOnly);
}

QStringList &heldPaths()
{
    static QStringList paths;
    return paths;
}

} // namespace

void keyClick()
{
    PLATFORM::CPlatBuzzer::open();
}

bool isPress(const QObject *watched, const QEvent *event)
{
    return event->type() == QEvent::MouseButtonPress &&
           static_cast<const QWidget *>(watched)->isEnabled();
}

QString imagePath(const QString &name)
{
    return QStringLiteral(":/SysSet_images/SysSet_images/") + name;
}

void holdPlugins()
{
    heldPaths() = QCoreApplication::libraryPaths();
    QCoreApplication::setLibraryPaths({});
}

QString loadingMoviePath()
{
    if (!heldPaths().isEmpty())
        QCoreApplication::setLibraryPaths(std::exchange(heldPaths(), {}));
    return imagePath(QStringLiteral("loading_more.gif"));
}

void setStyleOnce(QWidget *widget, const QString &styleSheet)
{
    forgetLateStyle(widget);
    if (widget->styleSheet() != styleSheet)
        widget->setStyleSheet(styleSheet);
}

void setStyleWhenSeen(QWidget *widget, const QString &styleSheet)
{
    if (widget->isVisible()) {
        setStyleOnce(widget, styleSheet);
        return;
    }
    forgetLateStyle(widget);
    if (widget->styleSheet() != styleSheet)
        new LateStyle(widget, styleSheet);
}

void showPart(QWidget *part, bool shown)
{
    QLayout *layout = part->parentWidget()->isVisible() ? nullptr : part->layout();
    if (layout != nullptr)
        layout->setEnabled(false);
    part->setVisible(shown);
    if (layout != nullptr)
        layout->setEnabled(true);
}

void wearLateStyles(QWidget *page)
{
    for (LateStyle *style : page->findChildren<LateStyle *>())
        style->wear();
}

void showIcon(QLabel *label, const QString &imageName)
{
    setStyleWhenSeen(label, QStringLiteral("image: url(%1);").arg(imagePath(imageName)));
}

void showSwitch(QPushButton *button, bool on)
{
    const QString image =
        imagePath(on ? QStringLiteral("Switch_Open.png") : QStringLiteral("Switch_Close.png"));
    button->setFlat(true); // which tells switches from other buttons
    setStyleWhenSeen(button,
                     QStringLiteral("QPushButton{ border:0px;outline: none;border-image: url(%1);}"
                                    "QPushButton:pressed{border:0px;"
                                    "background-color:rgb(255 , 255 ,255);}")
                         .arg(image));
}

void markWidget(QWidget *widget, const char *mark, bool on)
{
    if (widget->property(mark).toBool() == on)
        return;
    widget->setProperty(mark, on);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
    QEvent changed(QEvent::StyleChange); // else a frame keeps the paddings of the look before
    QCoreApplication::sendEvent(widget, &changed);
}

#include "WidgetLook.moc"
