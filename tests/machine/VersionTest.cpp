#include "machine/Version.h"

#include "platform/cos_thread.h"
#include "platform/sim/Panel.h"
#include "tests/support/Text.h"

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

} // namespace

class VersionTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void saysWhatTheServiceSays_data();
    void saysWhatTheServiceSays();
    void neverWaitsForTheService();
    void mayGoWhileTheServiceIsAsked();
    void saysThatNobodyCouldAsk();
    void asksAgainWhenSeenAgain();
};

void VersionTest::init()
{
    sim::panel().reset();
    COS::CCosThreadPool::init(1, 5, 20);
    sim::panel().set("versions", {{{"name", "Driver"}, {"version", "1.2"}}});
}

void VersionTest::cleanup()
{
    sim::panel().hurry();
    COS::CCosThreadPool::destory();
}

void VersionTest::saysWhatTheServiceSays_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("row");
    QTest::newRow("plain") << 0 << QByteArray("Driver") << "Driver=1.2"_s;
    QTest::newRow("hostile") << 0 << QByteArray("<b>A\nB</b>") << "<b>A\\x0AB</b>=1.2"_s;
    QTest::newRow("refused") << -1 << QByteArray() << "Other software=No answer"_s;
}

void VersionTest::saysWhatTheServiceSays()
{
    QFETCH(int, result);
    QFETCH(QByteArray, name);
    QFETCH(QString, row);
    sim::panel().set("versions.0.name", name.toStdString());
    if (result < 0)
        sim::panel().fail("dsl.getVersionList", result);
    Version page;
    page.show();
    QTRY_COMPARE(serviceRows(page), QStringList(row));
}

void VersionTest::neverWaitsForTheService()
{
    sim::panel().delay("dsl.getVersionList", 60000);
    Version page;
    page.show();
    QCOMPARE(serviceRows(page), QStringList("Other software=Reading..."_s));
    page.hide();
    page.show(); // asks no second time meanwhile
    QTRY_COMPARE_WITH_TIMEOUT(serviceRows(page), QStringList("Other software=No answer"_s), 10000);
    QCOMPARE(sim::panel().calls().size(), std::size_t(1));
}

void VersionTest::mayGoWhileTheServiceIsAsked()
{
    sim::panel().delay("dsl.getVersionList", 60000);
    for (int i = 0; i < 8; ++i) { // more than there are threads
        Version page;
        page.show();
    }
    sim::panel().hurry();
    COS::CCosThreadPool::destory();
    QCoreApplication::processEvents();
    QCOMPARE(sim::panel().calls().size(), std::size_t(8));
}

void VersionTest::saysThatNobodyCouldAsk()
{
    COS::CCosThreadPool::destory();
    Version page;
    page.show();
    QCOMPARE(serviceRows(page), QStringList("Other software=The panel is busy"_s));
}

void VersionTest::asksAgainWhenSeenAgain()
{
    Version page;
    page.show();
    QTRY_COMPARE(serviceRows(page), QStringList("Driver=1.2"_s));
    sim::panel().set("versions.0.version", "1.3");
    page.hide();
    page.show();
    QCOMPARE(serviceRows(page), QStringList("Driver=1.2"_s)); // until the answer is there
    QTRY_COMPARE(serviceRows(page), QStringList("Driver=1.3"_s));
}

QTEST_MAIN(VersionTest)
#include "VersionTest.moc"
