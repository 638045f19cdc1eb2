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
inline QString cellOrEmpty(int index)
{
    const QString name = QString::fromUtf8(QTest::currentDataTag());
    return name.section(QLatin1Char('|'), index, index).trimmed();
}

// Fails the test for a cell of that row.
inline void failCell(int index, const char *fault)
{
    const QByteArray row = QTest::currentDataTag();
    const QByteArray column = QByteArray::number(index);
    QTest::qFail("row \"" + row + "\", column " + column + " " + fault, __FILE__, __LINE__);
}

// The same of a column that every row has: one that is missing fails the test.
inline QString cell(int index)
{
    if (index > QByteArray(QTest::currentDataTag()).count('|'))
        failCell(index, "is missing");
    return cellOrEmpty(index);
}

// The same as a number; one that is none fails the test.
inline int number(int index)
{
    bool isNumber = false;
    const int value = cell(index).toInt(&isNumber);
    if (!isNumber)
        failCell(index, "is no number");
    return value;
}
