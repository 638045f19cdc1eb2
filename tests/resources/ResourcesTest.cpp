#include "resources/Resources.h"

#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QImage>
#include <QImageReader>
#include <QResource>
#include <QSet>

namespace {

QImage imageOf(const QString &name)
{
    return QImage(":/SysSet_images/SysSet_images/%1.png"_s.arg(name));
}

} // namespace

class ResourcesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }

    // The variants of a drawing come from its style sheet; a class that no rule knows would leave
    // two states with the same look.
    void variantsDiffer_data()
    {
        rows({"UsbInPut UsbOutPut", "EthInPut EthOutPut", "WiFiInPut WifiOutPut",
              "4gInPut 4gOutPut", "cloudok clouderr", "Question Information Warning Critical",
              "Switch_Open Switch_Close switch_veil", "eyeHide eyeShow delete space enter",
              "radio_checked radio_unchecked radio_checked_off radio_unchecked_off",
              "voice_Open voice_Close", "4G_0 4G_1 4G_2 4G_3 4G_4",
              "wifi1_0 wifi1_1 wifi1_2 wifi1_3 wifi1_4 wifi2_0 wifi2_1 wifi2_2 wifi2_3 wifi2_4",
              "tick", "chevron"});
    }
    void variantsDiffer()
    {
        QList<QImage> pictures;
        for (const QString &name : cell(0).split(u' ')) {
            const QImage picture = imageOf(name);
            QVERIFY2(picture.hasAlphaChannel() && !pictures.contains(picture), qPrintable(name));
            pictures << picture;
        }
    }

    // Border images are blurred where they are enlarged by much.
    void largePicturesReplaceSmallOnes()
    {
        const auto names =
            "Question Information Warning Critical Switch_Open Switch_Close 4G_0 4G_4"_s.split(
                u' ');
        QList<int> heights;
        for (const QString &name : names)
            heights << imageOf(name).height();
        loadLargePictures();
        for (const QString &name : names)
            QVERIFY2(imageOf(name).height() > heights.takeFirst(), qPrintable(name));
    }

    void animationNeverEnds()
    {
        QImageReader reader(":/SysSet_images/SysSet_images/loading_more.gif"_s);
        QSet<QRgb> looks;
        for (QImage frame = reader.read(); !frame.isNull(); frame = reader.read()) {
            QCOMPARE(frame.pixelColor(0, 0).alpha(), 0);
            QCOMPARE(reader.nextImageDelay(), 80);
            looks << frame.pixel(frame.width() / 2, 10);
        }
        QCOMPARE(reader.loopCount(), -1);
        QCOMPARE(looks.size(), 12); // each frame shows another dot at the top
    }

    // Read where they lie instead of being unpacked into the heap.
    void translationsAreMapped()
    {
        for (const QString &file : {"en_ch.qm"_s, "ch_en.qm"_s}) {
            const QResource translation(":/Language/LangugePackage/"_s + file);
            QVERIFY2(translation.isValid(), qPrintable(file));
            QCOMPARE(translation.compressionAlgorithm(), QResource::NoCompression);
        }
    }
};

QTEST_MAIN(ResourcesTest)
#include "ResourcesTest.moc"
