// A folder of its own that stands for the panel's file system.
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

// SYSSET_ROOT names the folder as long as the object lives. To be made before anything asks for
// a path.
class PanelRoot
{
public:
    PanelRoot() { qputenv("SYSSET_ROOT", m_folder.path().toLocal8Bit()); }

    // Takes away everything that was written.
    void clear() const
    {
        QDir(m_folder.path()).removeRecursively();
        QDir().mkpath(m_folder.path());
    }

    // Makes a file of the panel, such as "/mnt/data/prj/LangugeSet.cof", and its folder.
    void write(const QString &path, const QByteArray &bytes) const
    {
        QFile file(m_folder.path() + path);
        QDir().mkpath(QFileInfo(file).path());
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("%s cannot be written", qPrintable(file.fileName()));
    }

private:
    QTemporaryDir m_folder;
};
