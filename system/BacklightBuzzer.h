// The lower half of the General page: backlight and buzzer.
#pragma once

#include <QString>

class QLabel;
class QLineEdit;
class QObject;
class QPushButton;
class QSlider;
class QWidget;

// The runtime keeps each setting in a word; all but the off-time go to the hardware at once. Words
// that the runtime does not give or take are not reported to the operator. GUI thread.
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

    // Shows the runtime's words and sets the buzzer up by them. Until then the switch writes no
    // word. Returns whether the runtime gave all of them; may be called again.
    bool init();

    // Opens the keyboard if `object` is one of the fields, and applies an accepted value. Returns
    // whether it is one of them.
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
