// Four line edits that hold the octets of one dotted IPv4 text. GUI thread.
#pragma once

#include <QString>

#include <array>
#include <optional>
#include <string>

class QLineEdit;
class QObject;
class QSize;

// An octet is 0 to this.
constexpr int LARGEST_OCTET = 255;

// The parts of a dotted text; nothing unless there are exactly four.
std::optional<std::array<QString, 4>> octetsOf(const std::string &dotted);

class OctetGroup
{
public:
    using Fields = std::array<QLineEdit *, 4>;

    // The fields, first octet first; they must outlive the group.
    explicit OctetGroup(const Fields &fields) : m_fields(fields) {}

    // Puts the parts of `dotted` into the fields; clears them unless there are exactly four.
    void fill(const std::string &dotted);
    void clear();

    const QLineEdit *first() const { return m_fields.front(); }

    // The four texts joined by dots.
    std::string join() const;
    // Whether no field is empty.
    bool isComplete() const;
    bool contains(const QObject *object) const;

    // How large each field may grow.
    void limitSize(const QSize &largest);
    void setEnabled(bool enabled);
    // Lets `filter` see the events of all four fields.
    void watch(QObject *filter);

private:
    Fields m_fields;
};
