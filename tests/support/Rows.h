// Data tables of few lines: the name of a row is its data.
#pragma once

#include <QtTest>

// Adds a row for each text; its cells stand apart by "|", blanks around them do not count.
inline void rows(std::initializer_list<const char *> names)
{
    QTest::addColumn<bool>("named"); // a table needs a column
    for (const char *name : names)
        QTest::newRow(name) << true;
}

// The cell of the row that is being tested, from 0 on; empty behind the last.
inline QString cell(int index)
{
    const QString name = QString::fromUtf8(QTest::currentDataTag());
    return name.section(QLatin1Char('|'), index, index).trimmed();
}

// The same as a number; 0 if it is none.
inline int number(int index)
{
    return cell(index).toInt();
}
