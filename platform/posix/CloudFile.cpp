#include "platform/posix/CloudFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace os {
namespace {

using netT::CloudConfig;

constexpr qint64 LARGEST_FILE = 65536;
constexpr qint64 LARGEST_RESOURCE = 262144;
constexpr int LARGEST_TCP_PORT = 65535;

// What the file says; a port that is missing or makes no sense is 0.
struct CloudFile
{
    CloudConfig config;
    std::string region;
    QString resource;
    bool namesResource = false;
};

std::string attribute(const QXmlStreamReader &xml, const char *name)
{
    return xml.attributes().value(QLatin1String(name)).trimmed().toString().toStdString();
}

int port(const QXmlStreamReader &xml)
{
    bool isNumber = false;
    const int value = xml.attributes().value(QLatin1String("port")).toInt(&isNumber);
    return isNumber && value >= 1 && value <= LARGEST_TCP_PORT ? value : 0;
}

// Takes the element that the reader stands on, to its end.
void readElement(QXmlStreamReader &xml, CloudFile &file)
{
    const QStringRef name = xml.name();
    if (name == QLatin1String("region")) {
        file.region = xml.readElementText().trimmed().toStdString();
        return;
    }
    if (name == QLatin1String("server")) {
        file.config.sUrl = attribute(xml, "url");
        file.config.nPort = port(xml);
    } else if (name == QLatin1String("certificate")) {
        file.config.sCertUrl = attribute(xml, "url");
        file.config.nCertPort = port(xml);
    } else if (name == QLatin1String("time")) {
        file.config.sNtpUrl = attribute(xml, "url");
    } else if (name == QLatin1String("resource")) {
        file.namesResource = true;
        file.resource = xml.attributes().value(QLatin1String("file")).toString();
    }
    xml.skipCurrentElement();
}

// Walks through the document; false if it is no cloud file.
bool readDocument(const QByteArray &bytes, CloudFile &file)
{
    QXmlStreamReader xml(bytes);
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::DTD)
            return false;
        if (token != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() != QLatin1String("cloud"))
            return false;
        while (xml.readNextStartElement())
            readElement(xml, file);
    }
    return !xml.hasError();
}

bool isComplete(const CloudFile &file)
{
    const CloudConfig &config = file.config;
    return !config.sUrl.empty() && !config.sCertUrl.empty() && !config.sNtpUrl.empty() &&
           config.nPort != 0 && config.nCertPort != 0;
}

// A plain name: the file stands beside the cloud file and nowhere else.
bool isPlainName(const QString &name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/')) && name != QLatin1String("..");
}

bool isResource(const QFileInfo &file)
{
    return file.isFile() && file.isReadable() && file.size() > 0 && file.size() <= LARGEST_RESOURCE;
}

// 0 or a CloudFileError.
int load(const QFileInfo &info, CloudFile &file)
{
    QFile source(info.filePath());
    // A folder or a pipe of that name is no file.
    if (!info.isFile() || !source.open(QIODevice::ReadOnly))
        return CLOUD_NO_FILE;
    const QByteArray bytes = source.read(LARGEST_FILE + 1);
    if (bytes.size() > LARGEST_FILE || !readDocument(bytes, file) || !isComplete(file))
        return CLOUD_BAD_FILE;
    if (file.namesResource && !isPlainName(file.resource))
        return CLOUD_BAD_FILE;
    if (file.namesResource && !isResource(QFileInfo(info.dir(), file.resource)))
        return CLOUD_NO_RESOURCE;
    return 0;
}

} // namespace

int readCloudFile(const std::string &path, CloudConfig &config, std::string &region)
{
    CloudFile file;
    if (const int error = load(QFileInfo(QString::fromStdString(path)), file))
        return error;
    config.sUrl = file.config.sUrl;
    config.sCertUrl = file.config.sCertUrl;
    config.sNtpUrl = file.config.sNtpUrl;
    config.nPort = file.config.nPort;
    config.nCertPort = file.config.nCertPort;
    region = file.region;
    return 0;
}

int readCloudTrust(const std::string &path, std::string &pem)
{
    const QFileInfo info(QString::fromStdString(path));
    CloudFile file;
    if (const int error = load(info, file))
        return error;
    QByteArray bytes;
    if (file.namesResource) {
        QFile resource(info.dir().filePath(file.resource));
        if (resource.open(QIODevice::ReadOnly))
            bytes = resource.read(LARGEST_RESOURCE);
        if (bytes.isEmpty())
            return CLOUD_NO_RESOURCE;
    }
    pem = bytes.toStdString();
    return 0;
}

} // namespace os
