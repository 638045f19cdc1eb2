#include "system/General.h"

#include "app/look/Screen.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "ui_General.h"

#include <QTimerEvent>

#include <utility>

namespace {

constexpr int CLOCK_MS = 1000;

} // namespace

General::General(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::General>())
{
    ui->setupUi(this);
    sizeWidgets();
    m_clock.emplace(this,
                    ClockPanel::Fields{ui->line_Year, ui->line_Month, ui->line_Day, ui->line_Hour,
                                       ui->line_Minute, ui->line_Second},
                    ui->comboBox);
    m_backlightBuzzer.emplace(
        this,
        BacklightBuzzer::Widgets{ui->line_BacklightTime, ui->line_Backlightness,
                                 ui->slider_Backlightness, ui->btn_BeepSwitch, ui->lab_BeepVal,
                                 ui->line_BeepTime, ui->line_BeepType, ui->slider_BeepType});
    connectWidgets();
    startClock();
}

General::~General() = default;

// Large enough for a finger.
void General::sizeWidgets()
{
    const int side = touchHeight();
    ui->btn_BeepSwitch->setFixedSize(2 * side, side);
    ui->lab_BeepVal->setFixedSize(side, side);
    ui->btn_SetTime->setMinimumHeight(side);
    ui->comboBox->setMinimumHeight(side);
    for (QLineEdit *field :
         {ui->line_Month, ui->line_Day, ui->line_Hour, ui->line_Minute, ui->line_Second,
          ui->line_BacklightTime, ui->line_Backlightness, ui->line_BeepTime, ui->line_BeepType})
        field->setMinimumWidth(side);
    ui->line_Year->setMinimumWidth(side * 5 / 4); // four digits
}

void General::connectWidgets()
{
    // Also when the same row is chosen again: the zone that is shown need not be in force.
    connect(ui->comboBox, qOverload<int>(&QComboBox::activated), this, &General::slot_comboxChange);
    connect(ui->btn_SetTime, &QPushButton::clicked, this, &General::slot_ButtonPressed);
    connect(ui->btn_BeepSwitch, &QPushButton::clicked, this, &General::slot_ButtonPressed);
    connect(ui->slider_Backlightness, &QSlider::sliderMoved, this,
            &General::slot_slider_Backlightness);
    connect(ui->slider_BeepType, &QSlider::sliderMoved, this, &General::slot_slider_BeepType);
}

void General::init(const ComParamLists *runtime)
{
    m_clock->refresh();
    m_bWordsMissing = runtime != nullptr && !m_backlightBuzzer->init();
}

// Whether the clock may be set is asked again too: the answer has been no without the runtime.
void General::readMissingWords()
{
    if (!m_bWordsMissing)
        return;
    m_bWordsMissing = !m_backlightBuzzer->init();
    if (!m_bWordsMissing)
        m_clock->lockZones();
}

void General::retranslate()
{
    ui->retranslateUi(this);
    setStyleWhenSeen(this, generalStyle());
}

bool General::eventFilter(QObject *watched, QEvent *event)
{
    if (isPress(watched, event) && !m_clock->edit(watched))
        m_backlightBuzzer->edit(watched);
    return QWidget::eventFilter(watched, event);
}

void General::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_nClockTimer)
        QWidget::timerEvent(event);
    else if (isVisible()) {
        m_clock->refresh();
        readMissingWords();
    } else // a clock that is not seen wakes no idle panel
        killTimer(std::exchange(m_nClockTimer, 0));
}

// Precise, since a coarse timer skips a second now and then.
void General::startClock()
{
    if (m_nClockTimer == 0)
        m_nClockTimer = startTimer(CLOCK_MS, Qt::PreciseTimer);
}

void General::showEvent(QShowEvent *event)
{
    m_clock->refresh();
    readMissingWords();
    startClock();
    QWidget::showEvent(event);
}

void General::slot_comboxChange(int index)
{
    keyClick();
    m_clock->applyZone(index);
}

void General::slot_ButtonPressed()
{
    keyClick();
    if (sender() == ui->btn_SetTime)
        m_clock->save();
    else
        m_backlightBuzzer->toggleBeep();
}

void General::slot_slider_Backlightness(int percent)
{
    m_backlightBuzzer->moveBrightness(percent);
}

void General::slot_slider_BeepType(int tone)
{
    m_backlightBuzzer->moveTone(tone);
}
