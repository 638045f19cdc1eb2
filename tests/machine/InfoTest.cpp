#include "machine/Info.h"

#include "machine/QRWidget.h"
#include "platform/sim/Panel.h"
#include "tests/support/PageTest.h"

class InfoTest : public PageTest<Info>
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
              "hmiType | null", "hmiType | fails", "mac | null", R"(mac | "02:00")",
              "deviceId | null", "product | null | KV070T/A2108150042/0210 8150 0420 7001/ | bare",
              R"(product | "" | KV070T/A2108150042/0210 8150 0420 7001/)"});
    }
    void showsWhatThePanelKnows()
    {
        if (cell(1) == "fails"_s)
            sim::panel().fail("KVCORE.GetHMIType", -1); // 0 is a panel without one
        else
            sim::panel().set("machine." + cell(0).toStdString(),
                             sim::Json::parse(cell(1).toStdString()));
        m_page = std::make_unique<Info>();
        m_page->retranslate(); // a blanked caption stays blank
        QCOMPARE(texts({"lab_Model", "lab_Sn", "lab_ReSn", "lab_ReProduct"}),
                 cellOrEmpty(2).isEmpty() ? "|||"_s : cellOrEmpty(2).replace(u'/', u'|'));
        QCOMPARE(m_page->findChild<QRWidget *>() != nullptr, !cellOrEmpty(2).isEmpty());
        QCOMPARE(text("label_35"), cellOrEmpty(3).isEmpty() ? "Product Id:"_s : QString());
    }

    // And a code of two fifths of the screen's height.
    void showsTextsPlain()
    {
        sim::panel().set("lcd", {{"width", 480}, {"height", 272}});
        sim::panel().set("machine.product", "<b>" + std::string(4096, 'W') + "产品</b>");
        m_page = std::make_unique<Info>();
        m_page->retranslate();
        m_page->resize(388, 218); // of the smallest screen's page
        m_page->show();
        QVERIFY(text("lab_ReProduct").endsWith("产品</b>"_s));
        QCOMPARE(find<QLabel>("lab_ReProduct")->textFormat(), Qt::PlainText);
        QCOMPARE(m_page->size(), QSize(388, 218));
        QVERIFY(m_page->rect().contains(find("lab_ReProduct")->geometry()));
        QCOMPARE(find("lab_QRcode")->findChild<QRWidget *>()->size(), QSize(108, 108));
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
        for (const auto &[letters, reason] : {std::pair{0, "QR FAIL: Invalid argument"},
                                              {4000, "QR FAIL: Numerical result out of range"}}) {
            QRWidget code;
            code.resize(50, 90);
            code.setQRData(QString(letters, u'A'));
            QTest::ignoreMessage(QtDebugMsg, reason);
            const QImage picture = code.grab().toImage();
            QVERIFY(picture.pixelColor(0, 0) == Qt::red && picture.pixelColor(49, 89) == Qt::red);
        }
    }
};

QTEST_MAIN(InfoTest)
#include "InfoTest.moc"
