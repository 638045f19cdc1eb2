#include "system/ClockPanel.h"

#include "app/look/BoxHelpers.h"
#include "app/look/Screen.h"
#include "input/FieldKeyboard.h"
#include "platform/runtime.h"
#include "system/TimeZone.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QLineEdit>

#include <algorithm>

namespace {

constexpr int VISIBLE_ZONES = 8;

// The keyboard's captions in the fields' order; on the page one label stands for all six.
constexpr std::array<const char *, CLOCK_FIELDS> CAPTIONS = {
    QT_TRANSLATE_NOOP("General", "Year"),   QT_TRANSLATE_NOOP("General", "Month"),
    QT_TRANSLATE_NOOP("General", "Day"),    QT_TRANSLATE_NOOP("General", "Hour"),
    QT_TRANSLATE_NOOP("General", "Minute"), QT_TRANSLATE_NOOP("General", "Second"),
};

void fillZones(QComboBox *zones)
{
    for (const TimeZoneRow &row : TIME_ZONE_ROWS)
        zones->addItem(QString::fromLatin1(row.label));
    zones->setCurrentIndex(loadTimeZone());
}

} // namespace

ClockPanel::ClockPanel(QWidget *page, const Fields &fields, QComboBox *zones)
    : m_pPage(page), m_fields(fields), m_pZones(zones)
{
    fillZones(zones);
    lockZones();
    for (QLineEdit *field : m_fields)
        field->installEventFilter(page);
}

void ClockPanel::refresh()
{
    const ClockTexts shown =
        clockTexts(COS::CosTime::TimeStampToZoneTime(COS::CosTime::GetTimeStamp() + m_nTimeOffset));
    for (std::size_t i = 0; i < m_fields.size(); ++i) {
        if (m_fields[i]->text() != shown[i]) // most ticks change the seconds alone
            m_fields[i]->setText(shown[i]);
    }
}

void ClockPanel::lockZones()
{
    const bool allowed = backstage_AllowSetTime() != 0;
    m_pZones->setEnabled(allowed);
    if (allowed)
        m_pZones->setMaxVisibleItems(VISIBLE_ZONES);
}

ClockTexts ClockPanel::texts() const
{
    ClockTexts shown;
    std::transform(m_fields.begin(), m_fields.end(), shown.begin(),
                   [](const QLineEdit *field) { return field->text(); });
    return shown;
}

bool ClockPanel::edit(const QObject *object)
{
    const auto field = std::find(m_fields.begin(), m_fields.end(), object);
    if (field == m_fields.end())
        return false;
    editField(static_cast<ClockField>(field - m_fields.begin()));
    return true;
}

void ClockPanel::editField(ClockField field)
{
    const ClockRange range = clockRange(field, texts());
    QLineEdit *line = m_fields[field];
    KeyboardRequest request = numberRequest(m_pPage, line, range.min, range.max);
    request.caption = QCoreApplication::translate("General", CAPTIONS[field]);
    QString entered;
    if (!editWithKeyboard(request, &entered))
        return;
    // Again: a tick between the entry and the keyboard's end may have written over it.
    line->setText(QString::number(entered.toInt()));
    if (field == CLOCK_YEAR)
        m_fields[CLOCK_DAY]->setText(dayAfterYear(texts()));
    else if (field == CLOCK_MONTH)
        m_fields[CLOCK_DAY]->setText(dayAfterMonth(texts()));
    measureOffset(texts(), m_nTimeOffset);
    refresh();
}

void ClockPanel::save()
{
    const QStringList values = clockValues(texts());
    m_nTimeOffset = 0;
    if (writeClock(values) >= 0)
        return;
    const QSize corner = fractionOf(m_pPage->size(), 0.25, 0.25);
    runBox(BOX_WARNING, m_pPage, QCoreApplication::translate("General", "Failed to update time!"),
           fractionOf(screenSize(), 0.5, 0.5), {corner.width(), corner.height()});
}

void ClockPanel::applyZone(int index)
{
    applyTimeZone(index, m_nTimeOffset);
}
