// The findings of a fit audit, sorted by the list of waivers.
#pragma once

#include <QJsonObject>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVector>

// One finding, and where: `widget` and `detail` as the control socket's `ui fit` says them.
struct Finding
{
    QString size;     // "480x272"
    QString language; // "en" or "zh"
    QString state;    // of the walk, "ethernet-static"
    QString kind;
    QString widget;
    QString detail;
};

// All strings of it, by their names.
QJsonObject toJson(const Finding &finding);
Finding findingOf(const QJsonObject &object);

class FitReport
{
public:
    // `waivers`: path of a JSON list of {"kind", "widget", "reason"} and, where the waiver is for
    // less than everything, "size", "language", "state", "detail"; all but the reason are regular
    // expressions for the whole of it. Throws std::runtime_error if it is none or lacks a reason.
    explicit FitReport(const QString &waivers);

    void add(const Finding &finding);

    // Findings that no waiver lets pass, a line each: the state that had it first, and in how many
    // more it was.
    QStringList faults() const;
    // How many were let pass.
    int waived() const { return m_nWaived; }
    // Waivers that let nothing pass, by their widget and reason: they are to be taken off the list.
    QStringList idleWaivers() const;

private:
    struct Waiver
    {
        QVector<QPair<QString Finding::*, QRegularExpression>> terms;
        QString text;
        int uses = 0;

        bool covers(const Finding &finding) const;
    };

    struct Fault
    {
        Finding first;
        int more = 0;
    };

    static Waiver waiverOf(const QJsonObject &entry);

    QVector<Waiver> m_waivers;
    QVector<Fault> m_faults;
    int m_nWaived = 0;
};
