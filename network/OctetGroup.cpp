#include "network/OctetGroup.h"

#include <QLineEdit>
#include <QStringList>

#include <algorithm>

std::optional<std::array<QString, 4>> octetsOf(const std::string &dotted)
{
    const QStringList parts = QString::fromStdString(dotted).split(QLatin1Char('.'));
    if (parts.size() != 4)
        return std::nullopt;
    return {{parts[0], parts[1], parts[2], parts[3]}};
}

void OctetGroup::fill(const std::string &dotted)
{
    const auto octets = octetsOf(dotted);
    if (!octets) {
        clear();
        return;
    }
    for (std::size_t i = 0; i < m_fields.size(); ++i)
        m_fields[i]->setText((*octets)[i]);
}

void OctetGroup::clear()
{
    for (QLineEdit *field : m_fields)
        field->clear();
}

std::string OctetGroup::join() const
{
    QStringList octets;
    for (const QLineEdit *field : m_fields)
        octets.append(field->text());
    return octets.join(QLatin1Char('.')).toStdString();
}

bool OctetGroup::isComplete() const
{
    return std::none_of(m_fields.begin(), m_fields.end(),
                        [](const QLineEdit *field) { return field->text().isEmpty(); });
}

bool OctetGroup::contains(const QObject *object) const
{
    return std::find(m_fields.begin(), m_fields.end(), object) != m_fields.end();
}

void OctetGroup::limitSize(const QSize &largest)
{
    for (QLineEdit *field : m_fields)
        field->setMaximumSize(largest);
}

void OctetGroup::setEnabled(bool enabled)
{
    for (QLineEdit *field : m_fields)
        field->setEnabled(enabled);
}

void OctetGroup::watch(QObject *filter)
{
    for (QLineEdit *field : m_fields)
        field->installEventFilter(filter);
}
