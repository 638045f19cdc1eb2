// A folder of its own that stands for the panel's file system.
#pragma once

#include <QDir>
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

private:
    QTemporaryDir m_folder;
};
