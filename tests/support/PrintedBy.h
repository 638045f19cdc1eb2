// What the program prints, for tests of lines that others read.
#pragma once

#include <QByteArray>
#include <QTemporaryFile>

#include <cstdio>
#include <functional>
#include <unistd.h>

// What `action` prints on standard output, or `stream`, which it does not reach meanwhile.
inline QByteArray printedBy(const std::function<void()> &action, std::FILE *stream = stdout)
{
    QTemporaryFile file;
    file.open();
    std::fflush(stream);
    const int former = dup(fileno(stream));
    dup2(file.handle(), fileno(stream));
    action();
    std::fflush(stream);
    dup2(former, fileno(stream));
    close(former);
    file.seek(0);
    QByteArray printed;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        if (!line.startsWith("QWARN")) // the test framework's own
            printed += line;
    }
    return printed;
}
