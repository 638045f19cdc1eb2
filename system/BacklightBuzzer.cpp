#include "system/BacklightBuzzer.h"

#include "app/look/WidgetLook.h"
#include "input/FieldKeyboard.h"
#include "platform/board.h"
#include "system/RuntimeWord.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>

#include <tuple>

namespace {

constexpr unsigned int OFF_TIME_WORD = 10590;
constexpr unsigned int BRIGHTNESS_WORD = 10591;
constexpr unsigned int BEEP_WORD = 10612;
constexpr unsigned int TONE_WORD = 10613;
constexpr unsigned int BEEP_TIME_WORD = 10614;

constexpr int LONGEST_OFF_TIME = 3600;
constexpr int LONGEST_BEEP = 1000;

// Reads words, and remembers whether the runtime gave all of them.
struct WordReader
{
    bool complete = true;

    // Returns the word, 0 where the runtime does not give it; the field is empty then.
    unsigned short show(unsigned int address, QLineEdit *field)
    {
        unsigned short value = 0;
        const bool known = read(address, value);
        field->setText(known ? QString::number(value) : QString());
        return value;
    }

    // An odd word says off. The switch writes 1 for on, so that a buzzer that was turned off sounds
    // again after the next start; this is intended. A word that cannot be read counts as even.
    bool isBeepOn()
    {
        unsigned short value = 0;
        return !read(BEEP_WORD, value) || value % 2 == 0;
    }

    bool read(unsigned int address, unsigned short &value)
    {
        const bool known = readWord(address, value) == 0;
        complete = complete && known;
        return known;
    }
};

// Writes a number, or the text of an entry. A refusal is not reported to the operator; the hardware
// gets the setting all the same.
template <typename Value>
void keepWord(unsigned int address, const Value &value)
{
    std::ignore = writeWord(address, value);
}

} // namespace

BacklightBuzzer::BacklightBuzzer(QWidget *page, const Widgets &widgets)
    : m_pPage(page), m_widgets(widgets)
{
    for (QLineEdit *field :
         {m_widgets.offTime, m_widgets.brightness, m_widgets.beepTime, m_widgets.tone})
        field->installEventFilter(page);
}

bool BacklightBuzzer::init()
{
    m_bRuntime = true;
    WordReader words;
    words.show(OFF_TIME_WORD, m_widgets.offTime);
    m_widgets.brightnessSlider->setValue(words.show(BRIGHTNESS_WORD, m_widgets.brightness));
    const bool on = words.isBeepOn();
    PLATFORM::CPlatBuzzer::setEnable(on ? 1 : 0);
    showBeep(on);
    const unsigned short beepTime = words.show(BEEP_TIME_WORD, m_widgets.beepTime);
    PLATFORM::CPlatBuzzer::setBeepTime(beepTime);
    const unsigned short tone = words.show(TONE_WORD, m_widgets.tone);
    m_widgets.toneSlider->setValue(tone);
    m_widgets.beepSwitch->setFlat(true);
    PLATFORM::CPlatBuzzer::init(on ? 1 : 0, tone, beepTime);
    return words.complete;
}

bool BacklightBuzzer::edit(const QObject *object)
{
    if (object == m_widgets.offTime)
        editOffTime();
    else if (object == m_widgets.brightness)
        editBrightness();
    else if (object == m_widgets.beepTime)
        editBeepTime();
    else if (object == m_widgets.tone)
        editTone();
    else
        return false;
    return true;
}

bool BacklightBuzzer::enter(QLineEdit *field, int min, int max)
{
    return editWithKeyboard(numberRequest(m_pPage, field, min, max));
}

void BacklightBuzzer::editOffTime()
{
    if (enter(m_widgets.offTime, 0, LONGEST_OFF_TIME))
        keepWord(OFF_TIME_WORD, m_widgets.offTime->text());
}

void BacklightBuzzer::editBrightness()
{
    const QSlider *slider = m_widgets.brightnessSlider;
    if (!enter(m_widgets.brightness, slider->minimum(), slider->maximum()))
        return;
    const QString text = m_widgets.brightness->text();
    const int percent = text.toInt();
    keepWord(BRIGHTNESS_WORD, text);
    m_widgets.brightnessSlider->setValue(percent);
    PLATFORM::CPlatLcd::setBrightness(percent);
}

void BacklightBuzzer::editBeepTime()
{
    if (!enter(m_widgets.beepTime, 0, LONGEST_BEEP))
        return;
    const QString text = m_widgets.beepTime->text();
    PLATFORM::CPlatBuzzer::setBeepTime(text.toUShort());
    keepWord(BEEP_TIME_WORD, text);
}

void BacklightBuzzer::editTone()
{
    const QSlider *slider = m_widgets.toneSlider;
    if (!enter(m_widgets.tone, slider->minimum(), slider->maximum()))
        return;
    const QString text = m_widgets.tone->text();
    keepWord(TONE_WORD, text);
    m_widgets.toneSlider->setValue(text.toInt());
    PLATFORM::CPlatBuzzer::setPwmType(text.toUShort());
}

void BacklightBuzzer::moveBrightness(int percent)
{
    m_widgets.brightness->setText(QString::number(percent));
    keepWord(BRIGHTNESS_WORD, static_cast<unsigned short>(percent));
    PLATFORM::CPlatLcd::setBrightness(percent);
}

void BacklightBuzzer::moveTone(int tone)
{
    const auto level = static_cast<unsigned short>(tone);
    m_widgets.tone->setText(QString::number(level));
    keepWord(TONE_WORD, level);
    PLATFORM::CPlatBuzzer::setPwmType(level);
    PLATFORM::CPlatBuzzer::open(); // so that the operator hears the tone
}

void BacklightBuzzer::toggleBeep()
{
    const bool on = PLATFORM::CPlatBuzzer::getEnable() <= 0;
    PLATFORM::CPlatBuzzer::setEnable(on ? 1 : 0);
    showBeep(on);
    if (m_bRuntime)
        keepWord(BEEP_WORD, static_cast<unsigned short>(on ? 1 : 0));
}

void BacklightBuzzer::showBeep(bool on)
{
    showSwitch(m_widgets.beepSwitch, on);
    showIcon(m_widgets.beepIcon,
             on ? QStringLiteral("voice_Open.png") : QStringLiteral("voice_Close.png"));
}
