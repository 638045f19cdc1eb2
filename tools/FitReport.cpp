#include "tools/FitReport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <stdexcept>

namespace {

struct Key
{
    const char *name;
    QString Finding::*member;
};

constexpr Key KEYS[] = {{"size", &Finding::size},     {"language", &Finding::language},
                        {"state", &Finding::state},   {"kind", &Finding::kind},
                        {"widget", &Finding::widget}, {"detail", &Finding::detail}};

// Whether they differ in the state alone.
bool isSame(const Finding &one, const Finding &other)
{
    return one.size == other.size && one.language == other.language && one.kind == other.kind &&
           one.widget == other.widget && one.detail == other.detail;
}

} // namespace

QJsonObject toJson(const Finding &finding)
{
    QJsonObject object;
    for (const Key &key : KEYS)
        object.insert(QLatin1String(key.name), finding.*key.member);
    return object;
}

Finding findingOf(const QJsonObject &object)
{
    Finding finding;
    for (const Key &key : KEYS)
        finding.*key.member = object.value(QLatin1String(key.name)).toString();
    return finding;
}

FitReport::FitReport(const QString &waivers)
{
    QFile file(waivers);
    const bool open = file.open(QIODevice::ReadOnly);
    const QJsonDocument list = QJsonDocument::fromJson(open ? file.readAll() : QByteArray());
    if (!list.isArray())
        throw std::runtime_error(waivers.toStdString() + " is no list of waivers");
    const QJsonArray entries = list.array();
    for (const QJsonValue entry : entries)
        m_waivers.append(waiverOf(entry.toObject()));
}

FitReport::Waiver FitReport::waiverOf(const QJsonObject &entry)
{
    Waiver waiver;
    const QString reason = entry.value(QLatin1String("reason")).toString();
    for (const Key &key : KEYS) {
        const QString pattern = entry.value(QLatin1String(key.name)).toString();
        if (!pattern.isEmpty())
            waiver.terms.append(
                {key.member, QRegularExpression(QRegularExpression::anchoredPattern(pattern))});
    }
    waiver.text = entry.value(QLatin1String("widget")).toString() + QLatin1String(": ") + reason;
    if (reason.isEmpty() || waiver.terms.isEmpty())
        throw std::runtime_error("a waiver lacks its reason or widget: " +
                                 waiver.text.toStdString());
    return waiver;
}

bool FitReport::Waiver::covers(const Finding &finding) const
{
    return std::all_of(terms.begin(), terms.end(), [&](const auto &term) {
        return term.second.match(finding.*term.first).hasMatch();
    });
}

void FitReport::add(const Finding &finding)
{
    const auto waiver = std::find_if(m_waivers.begin(), m_waivers.end(),
                                     [&](const Waiver &one) { return one.covers(finding); });
    if (waiver != m_waivers.end()) {
        ++waiver->uses;
        ++m_nWaived;
        return;
    }
    const auto known = std::find_if(m_faults.begin(), m_faults.end(), [&](const Fault &fault) {
        return isSame(fault.first, finding);
    });
    if (known == m_faults.end())
        m_faults.append({finding, 0});
    else
        ++known->more;
}

QStringList FitReport::faults() const
{
    QStringList lines;
    for (const Fault &fault : m_faults) {
        const Finding &one = fault.first;
        lines += QStringLiteral("%1 %2 %3: %4: ").arg(one.size, one.language, one.state, one.kind) +
                 one.widget + QLatin1String(": ") + one.detail;
        if (fault.more > 0)
            lines.back() += QStringLiteral(" (in %1 more states)").arg(fault.more);
    }
    return lines;
}

QStringList FitReport::idleWaivers() const
{
    QStringList idle;
    for (const Waiver &waiver : m_waivers)
        if (waiver.uses == 0)
            idle.append(waiver.text);
    return idle;
}
