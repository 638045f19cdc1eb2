#include "services/words/ScreenSaver.h"

#include "tests/support/Rows.h"

namespace {

// Writes down what it is asked: g grab, u no longer, d dark, l light.
class LoggedScreen : public words::Screen
{
public:
    bool setDark(bool dark) override
    {
        log += QLatin1Char(dark ? 'd' : 'l');
        return canBeDark;
    }
    void grab(bool on) override { log += QLatin1Char(on ? 'g' : 'u'); }
    bool isPressed() override { return pressed; }

    QString log;
    bool canBeDark = true;
    bool pressed = false; // between the last event and the grab
};

} // namespace

class ScreenSaverTest : public QObject
{
    Q_OBJECT

private slots:
    // Seconds of the setting, what happens at which second, and what the screen is asked: p press,
    // r release, k both at once, m something moved, t timer, n no device is left, c one comes, the
    // time set to h ten or z zero; b the screen cannot be darkened, f a finger gets there first.
    void goesDarkAndWakes_data()
    {
        rows({
            "0  | 0t 9999t           |",       "10 | 9t                 |",
            "10 | 10t 30t            | gd",    "10 | 5m 10t 14t         |",
            "10 | 5m 15t             | gd",
            "10 | 5p 100t            |", // as long as a finger is on it
            "10 | 5p 100r 109t       |",       "10 | 5p 100r 110t       | gd",
            "10 | 10t 20p            | gdl", // others hear nothing until it is lifted
            "10 | 10t 20p 25m 50t    | gdl",   "10 | 10t 20p 25r        | gdlu",
            "10 | 10t 20k            | gdlu",  "10 | 10t 20m            | gd",
            "10 | 10t 20k 29t        | gdlu",  "10 | 10t 20k 30t        | gdlugd",
            "10 | 10t 20n            | gdglu", // nothing could wake it
            "10 | 5n 10t             |",       "10 | 5n 8c 17t          |",
            "10 | 5n 8c 18t          | gd",    "10 | 10t 20c            | gdg",
            "10 | 10t 20z            | gdlu",  "0  | 5h 14t             |",
            "0  | 5h 15t             | gd",    "10 | 0f 10t             | gu",
            "10 | 0b 10t 19t         | gdu",   "10 | 0b 10t 20t         | gdugdu",
        });
    }
    void goesDarkAndWakes()
    {
        LoggedScreen screen;
        words::ScreenSaver saver(screen, 0);
        saver.setTime(static_cast<unsigned>(number(0)), 0);
        saver.setDevices(true, false, 0);
        bool down = false;
        for (const QString &step : cell(1).split(QLatin1Char(' '))) {
            const auto now = step.chopped(1).toULongLong() * 1000000;
            const char what = step.back().toLatin1();
            down = what == 'p' || (down && what == 'm');
            screen.canBeDark = screen.canBeDark && what != 'b';
            screen.pressed = screen.pressed || what == 'f';
            if (what == 't')
                saver.tick(now);
            else if (what == 'n' || what == 'c')
                saver.setDevices(what == 'c', false, now);
            else if (what == 'h' || what == 'z')
                saver.setTime(what == 'h' ? 10 : 0, now);
            else if (what != 'b' && what != 'f')
                saver.touched(what == 'p' || what == 'k', down, now);
        }
        QCOMPARE(screen.log, cell(2));
    }
};

QTEST_GUILESS_MAIN(ScreenSaverTest)
#include "ScreenSaverTest.moc"
