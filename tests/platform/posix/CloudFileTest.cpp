#include "platform/cloud_file.h"
#include "platform/net.h"

#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

namespace {

const QByteArray REST = "<certificate url=\"cert.example.com\" port=\"443\"/>"
                        "<time url=\"ntp.example.com\"/></cloud>";
const QByteArray SERVER = "<server url=\" mqtt.example.com \" port=\"8883\"/>";

} // namespace

class CloudFileTest : public QObject
{
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void whatIsNoFile();

private:
    QTemporaryDir m_folder;
};

void CloudFileTest::reads_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("said"); // server, port, region

    const QString good = QStringLiteral("mqtt.example.com 8883 ");
    const auto row = [](const char *name, const QByteArray &content, int result,
                        const QString &said = {}) {
        QTest::newRow(name) << content << result << said;
    };
    const QByteArray whole = "<cloud>" + SERVER + REST;
    row("whole", whole, 0, good);
    row("with a region", "<cloud><region> China\n</region>" + SERVER + REST, 0,
        good + QStringLiteral("China"));
    row("region as it stands", "<cloud><region>&lt;b&gt;</region>" + SERVER + REST, 0,
        good + QStringLiteral("<b>"));
    row("unknown elements", "<cloud><x><server url=\"no\"/></x>" + SERVER + REST, 0, good);
    row("resource there", "<cloud><resource file=\"root.pem\"/>" + SERVER + REST, 0, good);
    row("resource missing", "<cloud><resource file=\"other.pem\"/>" + SERVER + REST, -3);
    row("resource elsewhere", "<cloud><resource file=\"../cloud/root.pem\"/>" + SERVER + REST, -2);
    row("resource without a name", "<cloud><resource/>" + SERVER + REST, -2);
    row("empty", "", -2);
    row("cut off", whole.left(whole.size() - 9), -2);
    row("no XML", "url=mqtt.example.com", -2);
    row("another document", "<clouds>" + SERVER + REST + "s>", -2);
    row("no server", "<cloud>" + REST, -2);
    row("port no number", "<cloud><server url=\"a\" port=\"x\"/>" + REST, -2);
    row("port too large", "<cloud><server url=\"a\" port=\"65536\"/>" + REST, -2);
    row("entities of its own",
        "<!DOCTYPE cloud [<!ENTITY a \"b\"><!ENTITY c \"&a;&a;&a;\">]><cloud><region>&c;</region>" +
            SERVER + REST,
        -2);
    row("a file from outside",
        "<!DOCTYPE cloud [<!ENTITY a SYSTEM \"file:///etc/passwd\">]><cloud><region>&a;</region>" +
            SERVER + REST,
        -2);
    row("unknown entity", "<cloud><region>&nbsp;</region>" + SERVER + REST, -2);
    row("markup in the region", "<cloud><region><b/></region>" + SERVER + REST, -2);
    row("far too long", whole + QByteArray(70000, ' '), -2);
    row("nested without end", QByteArray("<cloud>") + QByteArray("<a>").repeated(20000), -2);
}

void CloudFileTest::reads()
{
    QFETCH(QByteArray, content);
    QFETCH(int, result);
    QFETCH(QString, said);
    const QString path = m_folder.filePath(QStringLiteral("cloud.xml"));
    for (const QString &file : {path, m_folder.filePath(QStringLiteral("root.pem"))}) {
        QFile target(file);
        QVERIFY(target.open(QIODevice::WriteOnly));
        target.write(content);
    }
    netT::CloudConfig config;
    std::string region;
    QCOMPARE(netT::readCloudFile(path.toStdString(), config, region), result);
    const QString read = config.sUrl.empty() ? QString()
                                             : QStringLiteral("%1 %2 %3")
                                                   .arg(QString::fromStdString(config.sUrl))
                                                   .arg(config.nPort)
                                                   .arg(QString::fromStdString(region));
    QCOMPARE(read, said);
}

void CloudFileTest::whatIsNoFile()
{
    netT::CloudConfig config;
    std::string region;
    const std::string folder = m_folder.path().toStdString();
    QCOMPARE(netT::readCloudFile(folder, config, region), -1);
    QCOMPARE(netT::readCloudFile(folder + "/none.xml", config, region), -1);
    const std::string pipe = folder + "/pipe.xml"; // opening it would wait for a writer
    QCOMPARE(mkfifo(pipe.c_str(), 0600), 0);
    QCOMPARE(netT::readCloudFile(pipe, config, region), -1);
}

QTEST_GUILESS_MAIN(CloudFileTest)
#include "CloudFileTest.moc"
