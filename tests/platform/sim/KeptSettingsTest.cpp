#include "platform/sim/KeptSettings.h"

#include "platform/sim/Panel.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using sim::Json;

class KeptSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    // Each change reaches the file by itself, and the last one at the latest with the end.
    void keepsWhatIsSet()
    {
        sim::Panel panel;
        panel.keepIn(m_file.toStdString());
        QVERIFY(!QFile::exists(m_file));
        panel.set("words.10590", 17);
        QTRY_COMPARE(kept("/words/10590"), Json(17));
        panel.set("words.10591", nullptr); // a fault, not a setting
        panel.apply({{"clock", {{"offset", -5}}}});
        panel.locked([&](Json &state) {
            panel.keep(state["lcd"]["brightness"], 33);
            return 0;
        });
        panel.stop(std::chrono::seconds(5));
        QCOMPARE(kept("/clock/offset"), Json(-5));
        QCOMPARE(kept("/lcd/brightness"), Json(33));

        sim::Panel next;
        next.apply(sim::loadKept(m_file.toStdString()));
        next.apply({{"lcd", {{"brightness", 50}}}}); // a scenario
        QCOMPARE(next.get("words.10590"), Json(17));
        QCOMPARE(next.get("words.10591"), sim::Panel().get("words.10591"));
        QCOMPARE(next.get("lcd.brightness"), Json(50));
    }

    void ignoresWhatDoesNotFit_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("binary") << QByteArray("\0\xff{", 3);
        QTest::newRow("cut off") << QByteArray("{\"version\": 1, \"lcd\": {\"bri");
        QTest::newRow("no version") << QByteArray(R"({"lcd": {"brightness": 5}})");
        QTest::newRow("older") << QByteArray(R"({"version": 0, "lcd": {"brightness": 5}})");
        QTest::newRow("out of range") << QByteArray(R"({"version": 1, "lcd": {"brightness": 0}})");
        QTest::newRow("no setting") << QByteArray(R"({"version": 1, "reboots": [1]})");
        QTest::newRow("a list") << QByteArray("[1]");
    }
    void ignoresWhatDoesNotFit()
    {
        QFETCH(QByteArray, content);
        QFile file(m_file);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        Json loaded;
        const QByteArray line =
            printedBy([&] { loaded = sim::loadKept(m_file.toStdString()); }, stderr);
        QCOMPARE(loaded, Json::object());
        QVERIFY2(line.contains("kept.json are ignored: "), line.constData());
    }

private:
    Json kept(const char *pointer) const
    {
        QFile file(m_file);
        if (!file.open(QIODevice::ReadOnly))
            return nullptr;
        return Json::parse(file.readAll().toStdString()).value(Json::json_pointer(pointer), Json());
    }

    QTemporaryDir m_folder;
    QString m_file = m_folder.filePath("kept.json"_s);
};

QTEST_APPLESS_MAIN(KeptSettingsTest)
#include "KeptSettingsTest.moc"
