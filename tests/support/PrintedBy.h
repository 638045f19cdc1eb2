// What the program prints, for tests of lines that others read.
#pragma once

#include <QByteArray>
#include <QTemporaryFile>

#include <cstdio>
#include <functional>
#include <unistd.h>

// What `action` prints on standard output, which it does not reach meanwhile.
inline QByteArray printedBy(const std::function<void()> &action)
{
    QTemporaryFile file;
    file.open();
    std::fflush(stdout);
    const int former = dup(STDOUT_FILENO);
    dup2(file.handle(), STDOUT_FILENO);
    action();
    std::fflush(stdout);
    dup2(former, STDOUT_FILENO);
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
