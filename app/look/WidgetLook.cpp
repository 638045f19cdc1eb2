#include "app/look/WidgetLook.h"

#include "app/look/StyleSheets.h"
#include "platform/board.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QStyle>
#include <QVariant>

#include <utility>

namespace {

// A style sheet that is set when its widget is shown.
class PendingStyle : public QObject
{
    Q_OBJECT

public:
    PendingStyle(QWidget *widget, QString styleSheet)
        : QObject(widget), m_styleSheet(std::move(styleSheet))
    {
        widget->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && !m_bApplied)
            apply();
        return QObject::eventFilter(watched, event);
    }

    void apply()
    {
        m_bApplied = true;
        static_cast<QWidget *>(parent())->setStyleSheet(m_styleSheet);
        deleteLater();
    }

private:
    const QString m_styleSheet;
    bool m_bApplied = false;
};

QStringList &heldPluginPaths()
{
    static QStringList paths;
    return paths;
}

void dropPendingStyle(QWidget *widget)
{
    delete widget->findChild<PendingStyle *>(QString(), Qt::FindDirectChildrenOnly);
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

void holdImagePlugins()
{
    heldPluginPaths() = QCoreApplication::libraryPaths();
    QCoreApplication::setLibraryPaths({});
}

QString loadingMoviePath()
{
    if (!heldPluginPaths().isEmpty())
        QCoreApplication::setLibraryPaths(std::exchange(heldPluginPaths(), {}));
    return imagePath(QStringLiteral("loading_more.gif"));
}

void setStyleOnce(QWidget *widget, const QString &styleSheet)
{
    dropPendingStyle(widget);
    if (widget->styleSheet() != styleSheet)
        widget->setStyleSheet(styleSheet);
}

void setStyleWhenSeen(QWidget *widget, const QString &styleSheet)
{
    if (widget->isVisible()) {
        setStyleOnce(widget, styleSheet);
        return;
    }
    dropPendingStyle(widget);
    if (widget->styleSheet() != styleSheet)
        new PendingStyle(widget, styleSheet);
}

void applyPendingStyles(QWidget *page)
{
    for (PendingStyle *style : page->findChildren<PendingStyle *>())
        style->apply();
}

void showIcon(QLabel *label, const QString &imageName)
{
    setStyleWhenSeen(label, iconStyle(imageName));
}

void showSwitch(QPushButton *button, bool on)
{
    button->setFlat(true); // which tells switches from other buttons
    setStyleWhenSeen(button, switchStyle(on));
}

void markWidget(QWidget *widget, const char *mark, bool on)
{
    if (widget->property(mark).toBool() == on)
        return;
    widget->setProperty(mark, on);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
    QEvent changed(QEvent::StyleChange); // without it a frame keeps the old paddings
    QCoreApplication::sendEvent(widget, &changed);
}

#include "WidgetLook.moc"
