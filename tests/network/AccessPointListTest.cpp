#include "network/AccessPointList.h"

#include "network/ListItem.h"
#include "resources/Resources.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QScrollBar>
#include <QtTest>

using AccessPoint = netT::stApInfo_tag;

class AccessPointListTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }

    void init()
    {
        m_list = std::make_unique<AccessPointList>();
        m_list->resize(400, 300);
        m_list->show();
    }

    void signalIcon()
    {
        // level, security, number of the icon
        const int icons[][3] = {{0, 0, 10},  {1, 1, 11},  {25, 0, 11}, {26, 2, 22},  {50, 0, 12},
                                {51, 3, 23}, {75, 2, 23}, {76, 4, 24}, {100, -1, 14}};
        for (const auto &[level, security, icon] : icons) {
            m_list->setAccessPoints({{0, level, "a", "", security}});
            QCOMPARE(
                iconIn(0),
                "image: url(:/SysSet_images/SysSet_images/wifi%1_%2.png);"_s.arg(icon / 10).arg(
                    icon % 10));
        }
    }

    void noLevelLeavesTheIcon()
    {
        std::vector<AccessPoint> many(40, {0, 50, "b", "", 0});
        many.push_back({0, 60, "out of sight", "", 4});
        m_list->setAccessPoints({many.back()});
        const QString icon = iconIn(0);
        m_list->setAccessPoints(many);
        std::swap(many.front(), many.back());
        for (const int level : {101, -1}) {
            many.front().nLevel = level;
            m_list->setAccessPoints(many);
            QCOMPARE(iconIn(0), icon);
        }
        QVERIFY(iconIn(1) != icon);
        m_list->setAccessPoints({{0, 101, "another", "", 0}});
        QCOMPARE(iconIn(0), QString());
    }

    void names()
    {
        const std::pair<std::string, QString> names[] = {{"装配", "装配"_s},
                                                         {"<b>x</b>", "<b>x</b>"_s},
                                                         {"a\xff\x80", "a\\xFF\\x80"_s},
                                                         {std::string("a\0b", 3), "a\\x00b"_s},
                                                         {"", "Hidden network"_s}};
        for (const auto &[ssid, shown] : names) {
            m_list->setAccessPoints({{0, 50, ssid, "", 0}});
            QCOMPARE(nameIn(0), shown);
            QCOMPARE(m_list->item(0)->text(), shown);
            QCOMPARE(inRow(0, "lab_ssid")->textFormat(), Qt::PlainText);
        }
    }

    void fiveHundredOfAnyBytes()
    {
        std::vector<AccessPoint> many;
        for (int i = 0; i < 500; ++i) {
            std::string ssid(32, '\0');
            for (char &byte : ssid)
                byte = static_cast<char>(std::rand()); // NOLINT(concurrency-mt-unsafe)
            many.push_back({i, i % 103 - 1, ssid, "", i % 5});
        }
        many[7].sSsid = many[8].sSsid = "Twin";
        m_list->setAccessPoints(many);
        QCOMPARE(m_list->count(), 500);
        const int visible = m_list->viewport()->height() / m_list->sizeHintForRow(0) + 2;
        QVERIFY(widgets().size() <= visible);
        m_list->scrollToBottom();
        const int place = m_list->verticalScrollBar()->value();
        QCOMPARE(nameIn(499), m_list->item(499)->text());
        std::reverse(many.begin(), many.end());
        m_list->setAccessPoints(many);
        QCOMPARE(m_list->verticalScrollBar()->value(), place);
        QCOMPARE(nameIn(499), m_list->item(499)->text());
        m_list->setAccessPoints({{0, 50, "Guests", "", 0}});
        QTRY_COMPARE(nameIn(0), "Guests"_s);
        for (const ListItem *widget : widgets())
            QCOMPARE(widget->isVisible(), widget == widgets().first());
    }

private:
    QList<ListItem *> widgets() const { return m_list->viewport()->findChildren<ListItem *>(); }
    // A label of what is seen in the row.
    QLabel *inRow(int row, const char *label) const
    {
        static QLabel nothing("no widget"_s);
        const QPoint centre = m_list->visualItemRect(m_list->item(row)).center();
        const int first = m_list->indexAt({0, 0}).row();
        const ListItem *item = widgets().value(row - first); // the children stand as the rows do
        const bool isThere =
            item != nullptr && item->isVisible() && item->geometry().contains(centre);
        return isThere ? item->findChild<QLabel *>(QString::fromLatin1(label)) : &nothing;
    }

    QString iconIn(int row) const { return inRow(row, "lab_signal")->styleSheet(); }
    QString nameIn(int row) const { return inRow(row, "lab_ssid")->text(); }

    std::unique_ptr<AccessPointList> m_list;
};

QTEST_MAIN(AccessPointListTest)
#include "AccessPointListTest.moc"
