// The upper half of the General page: the clock and the time zone.
#pragma once

#include "system/Clock.h"

class QComboBox;
class QLineEdit;
class QObject;
class QWidget;

// Shows the panel's clock, ticking from whatever time the operator has typed until it is saved.
// GUI thread.
class ClockPanel
{
public:
    // Years first, seconds last; the field of a ClockField has its index.
    using Fields = std::array<QLineEdit *, CLOCK_FIELDS>;

    // Fills the list with the zones, the kept one chosen. `page` and the widgets must outlive the
    // object.
    ClockPanel(QWidget *page, const Fields &fields, QComboBox *zones);

    // Shows the time.
    void refresh();

    // Locks the list of zones unless the runtime lets the clock be set.
    void lockZones();

    // Opens the keyboard if `object` is one of the six fields; the clock ticks on from an accepted
    // value. Returns whether it is one of them.
    bool edit(const QObject *object);

    // Sets the runtime's clock to what the fields show, and tells the operator if that fails.
    void save();

    // Applies the zone of row `index`.
    void applyZone(int index);

private:
    void editField(ClockField field);
    ClockTexts texts() const;

    QWidget *m_pPage;
    Fields m_fields;
    QComboBox *m_pZones;
    std::int64_t m_nTimeOffset = 0; // seconds from the panel's clock to the typed time
};
