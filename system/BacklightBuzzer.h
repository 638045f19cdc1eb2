// The lower half of the General page: backlight and buzzer.
#pragma once

#include <QString>

class QLabel;
class QLineEdit;
class QObject;
class QPushButton;
class QSlider;
class QWidget;

// Each setting is one word of the runtime, which keeps it, and most of them go to the hardware at
// once. What the runtime does not take or give is not reported. GUI thread.
class BacklightBuzzer
{
public:
    struct Widgets
    {
        QLineEdit *offTime;    // of the backlight, in seconds
        QLineEdit *brightness; // in percent
        QSlider *brightnessSlider;
        QPushButton *beepSwitch;
        QLabel *beepIcon;
        QLineEdit *beepTime; // in milliseconds
        QLineEdit *tone;
        QSlider *toneSlider;
    };

    // `page` and the widgets must outlive the object.
    BacklightBuzzer(QWidget *page, const Widgets &widgets);

    // Shows the runtime's words and sets the buzzer up by them. Without it the switch does not
    // write.
    void init();

    // Opens the keyboard on the field that `object` is, if it is one of these; an accepted value is
    // applied. Returns whether it is one.
    bool edit(const QObject *object);

    void moveBrightness(int percent);
    void moveTone(int tone);
    void toggleBeep();

private:
    bool enter(QLineEdit *field, int min, int max);
    void editOffTime();
    void editBrightness();
    void editBeepTime();
    void editTone();
    void showBeep(bool on);

    QWidget *m_pPage;
    Widgets m_widgets;
    bool m_bRuntime = false;
};
