#include "machine/Version.h"

#include "platform/cos_thread.h"
#include "platform/sim/Panel.h"
#include "tests/support/Text.h"

#include <QScrollBar>
#include <QTreeWidget>
#include <QtTest>

namespace {

// The rows behind the four of the program itself.
QStringList serviceRows(const Version &page)
{
    const auto *list = page.findChild<QTreeWidget *>("list_Version"_s);
    QStringList rows;
    for (int i = 4; i < list->topLevelItemCount(); ++i)
        rows += list->topLevelItem(i)->text(0) + "="_s + list->topLevelItem(i)->text(1);
    return rows;
}

// How often the service was asked.
std::size_t questions()
{
    const auto calls = sim::panel().calls();
    return static_cast<std::size_t>(std::count_if(calls.begin(), calls.end(), [](const auto &call) {
        return call.at("op") == "dsl.getVersionList";
    }));
}

} // namespace

class VersionTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        sim::panel().reset();
        COS::CCosThreadPool::init(1, 5, 20);
        sim::panel().set("versions", {{{"name", "Driver"}, {"version", "1.2"}}});
    }

    void cleanup()
    {
        sim::panel().hurry();
        COS::CCosThreadPool::destory();
    }

    void saysWhatTheServiceSays()
    {
        const std::pair<const char *, const char *> names[] = {
            {"Driver", "Driver=1.2"}, {"<b>A\nB</b>", "<b>A\\x0AB</b>=1.2"}};
        Version page;
        for (const auto &[name, row] : names) {
            sim::panel().set("versions.0.name", name);
            page.hide();
            page.show(); // asks again
            QTRY_COMPARE(serviceRows(page), QStringList(QLatin1String(row)));
        }
        sim::panel().fail("dsl.getVersionList", -1);
        page.hide();
        page.show();
        QCOMPARE(serviceRows(page).size(), 1); // the former answer, until the next one is there
        QTRY_COMPARE(serviceRows(page),
                     QStringList("Other software=No answer. Please open this page again."_s));
    }

    void staysWhereItIsRead()
    {
        sim::Json versions = sim::Json::array();
        for (int i = 0; i < 99; ++i)
            versions.push_back({{"name", "Driver " + std::to_string(i)}, {"version", "1.2"}});
        sim::panel().set("versions", versions);
        Version page;
        page.resize(300, 200);
        page.show();
        QTRY_COMPARE(serviceRows(page).size(), 99);
        auto *bar = page.findChild<QTreeWidget *>("list_Version"_s)->verticalScrollBar();
        bar->setValue(bar->maximum() / 2);
        const int place = bar->value();
        QVERIFY(place > 0);
        sim::panel().set("versions.98.version", "2.0");
        page.hide();
        page.show();
        QTRY_COMPARE(serviceRows(page).last(), "Driver 98=2.0"_s);
        QCoreApplication::processEvents();
        QCOMPARE(bar->value(), place);
    }

    void neverWaitsForTheService()
    {
        sim::panel().delay("dsl.getVersionList", 60000);
        Version page;
        page.show();
        QCOMPARE(serviceRows(page), QStringList("Other software=Reading..."_s));
        page.hide();
        page.show(); // asks no second time meanwhile
        QTRY_COMPARE_WITH_TIMEOUT(
            serviceRows(page),
            QStringList("Other software=No answer. Please open this page again."_s), 10000);
        QCOMPARE(questions(), std::size_t(1));
    }

    void mayGoWhileTheServiceIsAsked()
    {
        sim::panel().delay("dsl.getVersionList", 60000);
        for (int i = 0; i < 8; ++i) { // more than there are threads
            Version page;
            page.show();
        }
        sim::panel().hurry();
        QTRY_COMPARE(questions(), std::size_t(8));
        COS::CCosThreadPool::destory();
        QCoreApplication::processEvents();
    }

    void saysThatNobodyCouldAsk()
    {
        COS::CCosThreadPool::destory();
        Version page;
        page.show();
        QCOMPARE(serviceRows(page),
                 QStringList("Other software=The panel is busy. Please open this page again."_s));
    }
};

QTEST_MAIN(VersionTest)
#include "VersionTest.moc"
