// The threads of this process as the kernel sees them (proc(5)).
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>

inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// How many threads of that name there are; in `switches` how often they went to sleep so far.
inline int threadsNamed(const char *name, int *switches = nullptr)
{
    int count = 0;
    for (const QFileInfo &task :
         QDir(QStringLiteral("/proc/self/task")).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (contentOf(task.filePath() + QStringLiteral("/comm")).trimmed() != name)
            continue;
        ++count;
        const QByteArray status = contentOf(task.filePath() + QStringLiteral("/status"));
        const int at = status.indexOf("\nvoluntary_ctxt_switches:") + 25;
        if (switches)
            *switches += status.mid(at, status.indexOf('\n', at) - at).trimmed().toInt();
    }
    return count;
}
