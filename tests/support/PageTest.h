// What tests of one page share.
#pragma once

#include "tests/support/Calls.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QtTest>

#include <memory>

// A page, and its widgets by their object names.
template <typename Page>
class PageTest : public QObject
{
protected:
    // Ends the test program if the page has no such widget.
    template <typename Widget = QWidget>
    Widget *find(const char *name) const
    {
        auto *widget = m_page->template findChild<Widget *>(QString::fromLatin1(name));
        if (widget == nullptr)
            qFatal("no %s named \"%s\"", Widget::staticMetaObject.className(), name);
        return widget;
    }
    bool shown(const char *name) const { return !find(name)->isHidden(); }
    bool enabled(const char *name) const { return find(name)->isEnabled(); }
    bool checked(const char *name) const { return find(name)->property("checked").toBool(); }
    QString text(const char *name) const { return find(name)->property("text").toString(); }
    QString style(const char *name) const { return find(name)->styleSheet(); }
    void press(const char *name) { QTest::mouseClick(find(name), Qt::LeftButton); }

    // The texts of the widgets, "a|b".
    QString texts(const QByteArrayList &names) const
    {
        QStringList all;
        for (const QByteArray &name : names)
            all << text(name.constData());
        return all.join(QLatin1Char('|'));
    }
    // Of the four fields or labels of an address, "10|0|0|7".
    QString octets(const QByteArray &base) const
    {
        return texts({base + '1', base + '2', base + '3', base + '4'});
    }

    std::unique_ptr<Page> m_page;
};
