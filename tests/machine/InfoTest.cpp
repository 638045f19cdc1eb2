#include "machine/Info.h"

#include "machine/QRWidget.h"
#include "platform/sim/Panel.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QtTest>

class InfoTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { sim::panel().reset(); }
    void showsWhatThePanelKnows_data();
    void showsWhatThePanelKnows();
    void showsNothingWithoutTheModel();
    void showsTextsPlain();
    void codeIsTwoFifthsOfTheScreen();
    void codeFillsTheTopLeftSquare();
    void textWithoutACodeIsRed_data();
    void textWithoutACodeIsRed();

private:
    static QString texts(const QWidget &page, const QStringList &labels);
};

QString InfoTest::texts(const QWidget &page, const QStringList &labels)
{
    QStringList all;
    for (const QString &label : labels)
        all += page.findChild<QLabel *>(label)->text();
    return all.join(QLatin1Char('|'));
}

void InfoTest::showsWhatThePanelKnows_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("json");
    QTest::addColumn<QString>("values"); // empty: the page shows nothing
    QTest::addColumn<bool>("productCaption");
    const auto row = [](const char *name, const char *field, const char *json, const char *values,
                        bool caption = true) {
        QTest::newRow(name) << "machine.%1"_s.arg(QLatin1String(field)) << QString::fromUtf8(json)
                            << QString::fromUtf8(values) << caption;
    };
    row("whole", "remote", "1", "KV070T|A2108150042|0210 8150 0420 7001|P-070T-0042");
    row("no serial number", "sn", "null", "");
    row("9 characters of it", "sn", R"("A21081500")", "");
    row("10 characters of it", "sn", R"("A210815004")",
        "KV070T|A210815004|0210 8150 0420 7001|P-070T-0042");
    row("no model", "hmiType", "null", "");
    row("no MAC", "mac", "null", "");
    row("5 characters of it", "mac", R"("02:00")", "");
    row("no machine id", "deviceId", "null", "");
    row("no product", "product", "null", "KV070T|A2108150042|0210 8150 0420 7001|", false);
    row("empty product", "product", R"("")", "KV070T|A2108150042|0210 8150 0420 7001|");
}

void InfoTest::showsWhatThePanelKnows()
{
    QFETCH(QString, path);
    QFETCH(QString, json);
    QFETCH(QString, values);
    QFETCH(bool, productCaption);
    sim::panel().set(path.toStdString(), sim::Json::parse(json.toStdString()));
    Info page;
    page.retranslate(); // a blanked caption stays blank
    const QString shown = texts(page, {"lab_Model"_s, "lab_Sn"_s, "lab_ReSn"_s, "lab_ReProduct"_s});
    QCOMPARE(shown, values.isEmpty() ? "|||"_s : values);
    QCOMPARE(page.findChild<QRWidget *>() != nullptr, !values.isEmpty());
    QCOMPARE(texts(page, {"label_24"_s, "label_29"_s, "label_34"_s, "label_35"_s}),
             "Model:|Serial No:|Machine Id:|"_s + (productCaption ? "Product Id:"_s : QString()));
}

void InfoTest::showsNothingWithoutTheModel()
{
    sim::panel().fail("KVCORE.GetHMIType", -1); // 0 is a panel without one, this a failed read
    const Info page;
    QCOMPARE(texts(page, {"lab_Model"_s, "lab_Sn"_s}), "|"_s);
    QVERIFY(page.findChild<QRWidget *>() == nullptr);
}

void InfoTest::showsTextsPlain()
{
    sim::panel().set("lcd", {{"width", 480}, {"height", 272}});
    sim::panel().set("machine.product", "<b>" + std::string(4096, 'W') + "产品</b>");
    Info page;
    page.retranslate();
    page.resize(388, 218); // of the smallest screen's page
    page.show();
    const auto *product = page.findChild<QLabel *>("lab_ReProduct"_s);
    QVERIFY(product->text().endsWith("产品</b>"_s));
    QCOMPARE(product->textFormat(), Qt::PlainText);
    QCOMPARE(page.size(), QSize(388, 218));
    QVERIFY(page.rect().contains(product->geometry()));
}

void InfoTest::codeIsTwoFifthsOfTheScreen()
{
    sim::panel().set("lcd", {{"width", 480}, {"height", 271}});
    const Info page;
    auto *code = page.findChild<QRWidget *>();
    QCOMPARE(code->size(), QSize(108, 108));
    QCOMPARE(code->parentWidget()->objectName(), "lab_QRcode"_s);
}

void InfoTest::codeFillsTheTopLeftSquare()
{
    QRWidget code; // "Hello QR": version 2, 25 modules
    code.resize(130, 200);
    const QImage picture = code.grab().toImage();
    const auto isBlack = [&](int x, int y) { return picture.pixelColor(x, y) == Qt::black; };
    // The outer corners of the three finder patterns, 7 of 25 modules each.
    for (const QPoint &corner : {QPoint(0, 0), QPoint(129, 0), QPoint(0, 129)})
        QVERIFY(isBlack(corner.x(), corner.y()));
    QVERIFY(isBlack(35, 2) && !isBlack(36, 2)); // ends at 36.4, before that pixel's centre
    for (int y = 130; y < 200; ++y)
        for (int x = 0; x < 130; ++x)
            QCOMPARE(picture.pixelColor(x, y), QColor(Qt::white));
}

void InfoTest::textWithoutACodeIsRed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty") << QString() << "QR FAIL: Invalid argument"_s;
    QTest::newRow("too long") << QString(4000, QLatin1Char('A'))
                              << "QR FAIL: Numerical result out of range"_s;
}

void InfoTest::textWithoutACodeIsRed()
{
    QFETCH(QString, text);
    QFETCH(QString, reason);
    QRWidget code;
    code.resize(50, 90);
    code.setQRData(text);
    QTest::ignoreMessage(QtDebugMsg, qPrintable(reason));
    const QImage picture = code.grab().toImage();
    QCOMPARE(picture.pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(picture.pixelColor(49, 89), QColor(Qt::red));
}

QTEST_MAIN(InfoTest)
#include "InfoTest.moc"
