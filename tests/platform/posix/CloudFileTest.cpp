#include "platform/posix/CloudFile.h"

#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QTemporaryDir>

#include <sys/stat.h>

namespace {

// What the words of a table stand for.
QByteArray spelledOut(QString content)
{
    return content.replace("SERVER"_s, "<server url=\" mqtt.example.com \" port=\"8883\"/>REST"_s)
        .replace("REST"_s, "<certificate url=\"cert.example.com\" port=\"443\"/>"
                           "<time url=\"ntp.example.com\"/></cloud>"_s)
        .replace("</cloud>CUT"_s, QString())
        .replace("SPACE"_s, " "_s.repeated(70000))
        .replace("NESTED"_s, "<a>"_s.repeated(20000))
        .toUtf8();
}

} // namespace

class CloudFileTest : public QObject
{
    Q_OBJECT

private slots:
    // content | result | server, port and region
    void reads_data()
    {
        rows({"<cloud>SERVER | 0 | mqtt.example.com 8883",
              "<cloud><region> China\n</region>SERVER | 0 | mqtt.example.com 8883 China",
              "<cloud><region>&lt;b&gt;</region>SERVER | 0 | mqtt.example.com 8883 <b>",
              "<cloud><x><server url=\"no\"/></x>SERVER | 0 | mqtt.example.com 8883",
              "<cloud><resource file=\"root.pem\"/>SERVER | 0 | mqtt.example.com 8883",
              "<cloud><resource file=\"other.pem\"/>SERVER | -3",
              "<cloud><resource file=\"../cloud/root.pem\"/>SERVER | -2",
              "<cloud><resource/>SERVER | -2", "| -2", "<cloud>SERVERCUT | -2",
              "url=mqtt.example.com | -2", "<clouds>SERVERs> | -2", "<cloud>REST | -2",
              "<cloud><server url=\"a\" port=\"x\"/>REST | -2",
              "<cloud><server url=\"a\" port=\"65536\"/>REST | -2",
              // Entities of its own, a file from outside, one that nobody knows.
              "<!DOCTYPE cloud [<!ENTITY a \"b\">]><cloud><region>&a;</region>SERVER | -2",
              "<!DOCTYPE cloud [<!ENTITY a SYSTEM \"/etc/fstab\">]><cloud>&a;SERVER | -2",
              "<cloud><region>&nbsp;</region>SERVER | -2",
              "<cloud><region><b/></region>SERVER | -2", "<cloud>SERVERSPACE | -2",
              "<cloud>NESTED | -2"});
    }
    void reads()
    {
        const QString path = m_folder.filePath("cloud.xml"_s);
        for (const QString &file : {path, m_folder.filePath("root.pem"_s)}) {
            QFile target(file);
            QVERIFY(target.open(QIODevice::WriteOnly));
            target.write(spelledOut(cell(0)));
        }
        netT::CloudConfig config;
        std::string region;
        QCOMPARE(os::readCloudFile(path.toStdString(), config, region), number(1));
        const QString read =
            QString::fromStdString(config.sUrl + " " + std::to_string(config.nPort) + " " + region);
        QCOMPARE(config.sUrl.empty() ? QString() : read.trimmed(), cellOrEmpty(2));
    }

    void whatIsNoFile()
    {
        netT::CloudConfig config;
        std::string region;
        const std::string folder = m_folder.path().toStdString();
        const std::string pipe = folder + "/pipe.xml"; // opening it would wait for a writer
        QCOMPARE(mkfifo(pipe.c_str(), 0600), 0);
        for (const std::string &path : {folder, folder + "/none.xml", pipe})
            QCOMPARE(os::readCloudFile(path, config, region), -1);
    }

private:
    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(CloudFileTest)
#include "CloudFileTest.moc"
