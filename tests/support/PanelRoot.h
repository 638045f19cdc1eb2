// A folder of its own that stands for the panel's file system.
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <filesystem>

// SYSSET_ROOT names the folder as long as the object lives; then it is removed with all that is in
// it, also names that are not UTF-8, which QDir cannot remove. To be made before anything asks for
// a path.
class PanelRoot
{
public:
    PanelRoot() { qputenv("SYSSET_ROOT", m_folder.path().toLocal8Bit()); }
    ~PanelRoot()
    {
        std::error_code error; // the folder itself warns then
        std::filesystem::remove_all(m_folder.path().toStdString(), error);
    }
    Q_DISABLE_COPY(PanelRoot)

    QString path() const { return m_folder.path(); }

    // Removes everything that was written.
    void clear() const
    {
        const std::filesystem::path folder = m_folder.path().toStdString();
        std::filesystem::remove_all(folder);
        std::filesystem::create_directory(folder);
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
