#include "resources/Resources.h"

#include <QImage>
#include <QImageReader>
#include <QResource>
#include <QSet>
#include <QTest>

namespace {

const QString IMAGES = QStringLiteral(":/SysSet_images/SysSet_images/");

QImage image(const QString &name)
{
    return QImage(IMAGES + name + QStringLiteral(".png"));
}

} // namespace

class TestResources : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void variantsDiffer_data();
    void variantsDiffer();
    void switchesAreTwiceAsWideAsHigh();
    void animationNeverEnds();
    void translationsAreMapped_data();
    void translationsAreMapped();
};

void TestResources::initTestCase()
{
    loadResources();
}

// The variants of a drawing come from its style sheet; a class that no rule knows would leave
// two states with the same look.
void TestResources::variantsDiffer_data()
{
    QTest::addColumn<QStringList>("names");

    const auto row = [](const char *tag, const QString &names) {
        QTest::newRow(tag) << names.split(QLatin1Char(' '));
    };
    row("usb", QStringLiteral("UsbInPut UsbOutPut"));
    row("ethernet", QStringLiteral("EthInPut EthOutPut"));
    row("wifi", QStringLiteral("WiFiInPut WifiOutPut"));
    row("4g", QStringLiteral("4gInPut 4gOutPut"));
    row("cloud", QStringLiteral("cloudok clouderr"));
    row("boxes", QStringLiteral("Question Information Warning Critical"));
    row("switch", QStringLiteral("Switch_Open Switch_Close"));
    row("keys", QStringLiteral("eyeHide eyeShow delete space enter"));
    row("radio", QStringLiteral("radio_checked radio_unchecked"));
    row("voice", QStringLiteral("voice_Open voice_Close"));
    row("wifi level", QStringLiteral("wifi1_0 wifi1_1 wifi1_2 wifi1_3 wifi1_4 "
                                     "wifi2_0 wifi2_1 wifi2_2 wifi2_3 wifi2_4"));
    row("4g level", QStringLiteral("4G_0 4G_1 4G_2 4G_3 4G_4"));
    row("tick", QStringLiteral("tick"));
}

void TestResources::variantsDiffer()
{
    QFETCH(QStringList, names);
    for (int i = 0; i < names.size(); ++i) {
        const QImage picture = image(names[i]);
        QVERIFY2(!picture.isNull(), qPrintable(names[i]));
        QVERIFY2(picture.hasAlphaChannel(), qPrintable(names[i]));
        for (int j = 0; j < i; ++j)
            QVERIFY2(picture != image(names[j]), qPrintable(names[i] + names[j]));
    }
}

void TestResources::switchesAreTwiceAsWideAsHigh()
{
    const QImage on = image(QStringLiteral("Switch_Open"));
    QCOMPARE(on.width(), 2 * on.height());
    QCOMPARE(image(QStringLiteral("Switch_Close")).size(), on.size());
}

void TestResources::animationNeverEnds()
{
    QImageReader reader(IMAGES + QStringLiteral("loading_more.gif"));
    QSet<QRgb> looks;
    for (QImage frame = reader.read(); !frame.isNull(); frame = reader.read()) {
        QCOMPARE(frame.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(reader.nextImageDelay(), 80);
        looks << frame.pixel(frame.width() / 2, 10);
    }
    QCOMPARE(reader.loopCount(), -1);
    QCOMPARE(looks.size(), 12); // each frame shows another dot at the top
}

void TestResources::translationsAreMapped_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("Chinese") << QStringLiteral("en_ch.qm");
    QTest::newRow("English") << QStringLiteral("ch_en.qm");
}

void TestResources::translationsAreMapped()
{
    QFETCH(QString, file);
    const QResource translation(QStringLiteral(":/Language/LangugePackage/") + file);
    QVERIFY(translation.isValid());
    QCOMPARE(translation.compressionAlgorithm(), QResource::NoCompression);
}

QTEST_MAIN(TestResources)

#include "tst_resources.moc"
