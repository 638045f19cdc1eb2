// What the whole-program tests share.
#pragma once

#include "tests/support/Text.h"
#include "tools/PanelProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

// An operator before the whole program: touches it, reads it and waits for it.
class Operator : public PanelProcess
{
public:
    QString text(const QString &object) { return widget(object, "text"_s).toString(); }
    QString style(const QString &object) { return widget(object, "style"_s).toString(); }
    int index(const QString &object) { return widget(object, "index"_s).toInt(-1); }
    QJsonArray items(const QString &object) { return widget(object, "items"_s).toArray(); }
    bool isEnabled(const QString &object) { return widget(object, "enabled"_s).toBool(); }

    // All of these wait.
    bool presses(const QString &object, int row = -1)
    {
        return wait([&] { return press(object, row); });
    }
    bool appears(const QString &object)
    {
        return wait([&] { return isVisible(object); });
    }
    bool goes(const QString &object)
    {
        return wait([&] { return !isVisible(object); });
    }
    bool shows(const QString &object, const QString &text)
    {
        return wait([&] { return this->text(object) == text; });
    }
    bool looksLike(const QString &object, const QString &partOfStyle)
    {
        return wait([&] { return style(object).contains(partOfStyle); });
    }
    bool becomes(const QString &path, const QJsonValue &value)
    {
        return wait([&] { return get(path) == value; });
    }
    bool prints(const char *line)
    {
        return wait([&] { return output().contains(line); });
    }

    // Presses keys of the open keyboard's page: 'c' the letters, 'n' the numbers. The very first
    // key of a process has no effect, and the keyboard drops keys that follow too soon.
    bool type(char page, const QString &characters, const QString &last = "enter"_s)
    {
        QStringList keys;
        for (const QChar character : characters)
            keys << character;
        keys << last;
        return appears("SoftKeyboard"_s) && std::all_of(keys.begin(), keys.end(), [&](auto &key) {
                   QTest::qSleep(170);
                   return press("btn_%1_%2"_s.arg(QLatin1Char(page)).arg(key));
               });
    }

    // Makes a file of the panel, and its folder.
    bool write(const QString &path, const QByteArray &bytes) const
    {
        QFile out(file(path));
        return QDir().mkpath(QFileInfo(out).path()) && out.open(QIODevice::WriteOnly) &&
               out.write(bytes) == bytes.size();
    }
    bool writeEnglish() const
    {
        return write("/mnt/data/prj/LangugeSet.cof"_s, "[HMI]\nLANGUAGEID=1\nALLOWSCHANGE=1\n");
    }
};
