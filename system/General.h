// The General page of the System group: clock, time zone, backlight and buzzer.
#pragma once

#include "system/BacklightBuzzer.h"
#include "system/ClockPanel.h"

#include <QWidget>

#include <memory>
#include <optional>

class ComParamLists;

namespace Ui {
class General;
}

// Owns the form and hands its events to the two halves. GUI thread.
class General : public QWidget
{
    Q_OBJECT

public:
    explicit General(QWidget *parent = nullptr);
    ~General() override;

    // Shows the time and the runtime's words and sets the buzzer up by them. `runtime` is the
    // settings object of the COM ports; null leaves the words alone, and the page will not write
    // the beep switch. Once, by the main window. Words that the runtime does not give are asked for
    // again every second while the page is seen.
    void init(const ComParamLists *runtime);

    // Sets the page's texts and style again, after a language change.
    void retranslate();

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void slot_comboxChange(int index);
    void slot_ButtonPressed();
    void slot_slider_Backlightness(int percent);
    void slot_slider_BeepType(int tone);

private:
    void sizeWidgets();
    void connectWidgets();
    void startClock();
    void readMissingWords();

    std::unique_ptr<Ui::General> ui;
    std::optional<ClockPanel> m_clock;
    std::optional<BacklightBuzzer> m_backlightBuzzer;
    int m_nClockTimer = 0; // 0 while the page is hidden
    bool m_bWordsMissing = false;
};
