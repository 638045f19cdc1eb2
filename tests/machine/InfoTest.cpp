#include "machine/Info.h"

#include "machine/QRWidget.h"
#include "platform/sim/Panel.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QLabel>

class InfoTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { sim::panel().reset(); }

    // what of the machine | is set to | the values, or none | without the last caption
    void showsWhatThePanelKnows_data()
    {
        rows({"remote | 1 | KV070T/A2108150042/0210 8150 0420 7001/P-070T-0042", "sn | null",
              R"(sn | "A21081500")",
              R"(sn | "A210815004" | KV070T/A210815004/0210 8150 0420 7001/P-070T-0042)",
              "hmiType | null", "mac | null", R"(mac | "02:00")", "deviceId | null",
              "product | null | KV070T/A2108150042/0210 8150 0420 7001/ | bare",
              R"(product | "" | KV070T/A2108150042/0210 8150 0420 7001/)"});
    }
    void showsWhatThePanelKnows()
    {
        sim::panel().set("machine." + cell(0).toStdString(),
                         sim::Json::parse(cell(1).toStdString()));
        Info page;
        page.retranslate(); // a blanked caption stays blank
        const QString shown =
            texts(page, {"lab_Model"_s, "lab_Sn"_s, "lab_ReSn"_s, "lab_ReProduct"_s});
        QCOMPARE(shown, cellOrEmpty(2).isEmpty() ? "///"_s : cellOrEmpty(2));
        QCOMPARE(page.findChild<QRWidget *>() != nullptr, !cellOrEmpty(2).isEmpty());
        QCOMPARE(texts(page, {"label_24"_s, "label_29"_s, "label_34"_s, "label_35"_s}),
                 "Model:/Serial No:/Machine Id:/"_s +
                     (cellOrEmpty(3).isEmpty() ? "Product Id:"_s : QString()));
    }

    void showsNothingWithoutTheModel()
    {
        sim::panel().fail("KVCORE.GetHMIType", -1); // 0 is a panel without one, this a failed read
        const Info page;
        QCOMPARE(texts(page, {"lab_Model"_s, "lab_Sn"_s}), "/"_s);
        QVERIFY(page.findChild<QRWidget *>() == nullptr);
    }

    void showsTextsPlain()
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

    void codeIsTwoFifthsOfTheScreen()
    {
        sim::panel().set("lcd", {{"width", 480}, {"height", 271}});
        const Info page;
        auto *code = page.findChild<QRWidget *>();
        QCOMPARE(code->size(), QSize(108, 108));
        QCOMPARE(code->parentWidget()->objectName(), "lab_QRcode"_s);
    }

    void codeFillsTheTopLeftSquare()
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

    void textWithoutACodeIsRed()
    {
        for (const auto &[text, reason] :
             {std::pair(QString(), "QR FAIL: Invalid argument"),
              std::pair("A"_s.repeated(4000), "QR FAIL: Numerical result out of range")}) {
            QRWidget code;
            code.resize(50, 90);
            code.setQRData(text);
            QTest::ignoreMessage(QtDebugMsg, reason);
            const QImage picture = code.grab().toImage();
            QCOMPARE(picture.pixelColor(0, 0), QColor(Qt::red));
            QCOMPARE(picture.pixelColor(49, 89), QColor(Qt::red));
        }
    }

private:
    static QString texts(const QWidget &page, const QStringList &labels)
    {
        QStringList all;
        for (const QString &label : labels)
            all += page.findChild<QLabel *>(label)->text();
        return all.join(u'/');
    }
};

QTEST_MAIN(InfoTest)
#include "InfoTest.moc"
