#include "machine/Version.h"

#include "platform/cos_thread.h"
#include "tests/support/Calls.h"
#include "tests/support/Text.h"

#include <QScrollBar>
#include <QTreeWidget>
#include <QtTest>

namespace {

const QString NO_ANSWER = "Other software=No answer. Please open this page again."_s;

// The rows behind the four of the program itself, "Driver=1.2|Boot=3".
QString serviceRows(const Version &page)
{
    const auto *list = page.findChild<QTreeWidget *>("list_Version"_s);
    QStringList rows;
    for (int i = 4; i < list->topLevelItemCount(); ++i)
        rows += list->topLevelItem(i)->text(0) + u'=' + list->topLevelItem(i)->text(1);
    return rows.join(u'|');
}

void showAgain(Version &page)
{
    page.hide();
    page.show();
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
    }

    void cleanup()
    {
        sim::panel().hurry();
        COS::CCosThreadPool::destory();
    }

    void saysWhatTheServiceSays()
    {
        Version page;
        for (const auto &[name, row] :
             {std::pair{"Driver", "Driver=1.2"_s}, {"<b>A\nB</b>", "<b>A\\x0AB</b>=1.2"_s}}) {
            sim::panel().set("versions", {{{"name", name}, {"version", "1.2"}}});
            showAgain(page); // asks again
            QTRY_COMPARE(serviceRows(page), row);
        }
        const QString former = serviceRows(page);
        sim::panel().fail("dsl.getVersionList", -1);
        showAgain(page);
        QCOMPARE(serviceRows(page), former); // until the next answer is there
        QTRY_COMPARE(serviceRows(page), NO_ANSWER);
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
        QTRY_VERIFY(serviceRows(page).endsWith("|Driver 98=1.2"_s));
        auto *bar = page.findChild<QTreeWidget *>("list_Version"_s)->verticalScrollBar();
        bar->setValue(bar->maximum() / 2);
        const int place = bar->value();
        QVERIFY(place > 0);
        sim::panel().set("versions.98.version", "2.0");
        showAgain(page);
        QTRY_VERIFY(serviceRows(page).endsWith("|Driver 98=2.0"_s));
        QCoreApplication::processEvents();
        QCOMPARE(bar->value(), place);
    }

    void neverWaitsForTheService()
    {
        sim::panel().delay("dsl.getVersionList", 60000);
        Version page;
        page.show();
        QCOMPARE(serviceRows(page), "Other software=Reading..."_s);
        showAgain(page); // asks no second time meanwhile
        QTRY_COMPARE_WITH_TIMEOUT(serviceRows(page), NO_ANSWER, 10000);
        QCOMPARE(callsOf("dsl.getVersionList").size(), 1);
    }

    void mayGoWhileTheServiceIsAsked()
    {
        sim::panel().delay("dsl.getVersionList", 60000);
        for (int i = 0; i < 8; ++i) // more than there are threads
            Version().show();
        sim::panel().hurry();
        QTRY_COMPARE(callsOf("dsl.getVersionList").size(), 8);
        cleanup();
        QCoreApplication::processEvents();
    }

    void saysThatNobodyCouldAsk()
    {
        COS::CCosThreadPool::destory();
        Version page;
        page.show();
        QCOMPARE(serviceRows(page),
                 "Other software=The panel is busy. Please open this page again."_s);
    }
};

QTEST_MAIN(VersionTest)
#include "VersionTest.moc"
