// Measures inside one program: a language change and the opening of the keyboard, each beside its
// limit in turn.

#include "app/MainWin.h"
#include "app/Program.h"
#include "bench/Statistics.h"
#include "input/SoftKeyboard.h"
#include "platform/sim/SimProgram.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int RUNS = 31;
constexpr double LANGUAGE_LIMIT = 7;
constexpr double KEYBOARD_LIMIT = 3.3;

void drain()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

// The texts that the window shows now, hidden pages included.
QStringList textsOf(const QWidget &window)
{
    QStringList texts;
    for (const QLabel *label : window.findChildren<QLabel *>())
        texts << label->text();
    for (const QAbstractButton *button : window.findChildren<QAbstractButton *>())
        texts << button->text();
    for (const QTabWidget *tabs : window.findChildren<QTabWidget *>()) {
        for (int tab = 0; tab < tabs->count(); ++tab)
            texts << tabs->tabText(tab);
    }
    texts.removeAll(QString());
    return texts;
}

// As many bare labels as there are texts, in a window of their own.
class BareLabels : public QWidget
{
public:
    explicit BareLabels(int count)
    {
        auto *layout = new QVBoxLayout(this);
        layout->setSpacing(0);
        for (int i = 0; i < count; ++i) {
            m_labels.append(new QLabel(this));
            layout->addWidget(m_labels.last());
        }
    }

    void show(const QStringList &texts)
    {
        for (int i = 0; i < texts.size(); ++i)
            m_labels[i]->setText(texts[i]);
    }

private:
    QVector<QLabel *> m_labels;
};

bool measureLanguage(MainWin &window)
{
    // Every page has been seen once, as on a panel that has been used.
    for (const char *button : {"btn_Net", "btn_UpData", "btn_Sysset", "btn_Machine"}) {
        window.findChild<QAbstractButton *>(QString::fromLatin1(button))->click();
        drain();
    }
    QStringList texts[2];
    for (int language : {1, 0}) {
        window.slot_LanguageChange(language);
        texts[language] = textsOf(window);
    }
    BareLabels labels(std::max(texts[0].size(), texts[1].size()));
    labels.QWidget::show();
    drain();

    std::vector<double> panelMs;
    std::vector<double> labelsMs;
    for (int run = 0; run < RUNS; ++run) {
        const int language = run % 2 == 0 ? 1 : 0;
        panelMs.push_back(bench::timed([&] {
            window.slot_LanguageChange(language);
            drain();
        }));
        labelsMs.push_back(bench::timed([&] {
            labels.show(texts[language]);
            drain();
        }));
    }
    return bench::report("language change, " + std::to_string(texts[0].size()) + " texts",
                         bench::median(panelMs), bench::median(labelsMs), "ms", LANGUAGE_LIMIT);
}

// Ends `dialog`'s modal loop after its first paint.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QDialog *dialog) : m_dialog(dialog) { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_dialog && event->type() == QEvent::Paint) {
            qApp->removeEventFilter(this);
            QTimer::singleShot(0, m_dialog, &QDialog::hide);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QDialog *m_dialog;
};

bool measureKeyboard(MainWin &window)
{
    const QSize size(window.width() * 55 / 100, window.height() * 7 / 10);
    std::vector<double> keyboardMs;
    std::vector<double> dialogMs;
    for (int run = 0; run < RUNS; ++run) {
        drain();
        keyboardMs.push_back(bench::timed([&] {
            SoftKeyboard keyboard(&window, QStringLiteral("9600"));
            keyboard.setFixedSize(size);
            keyboard.setMaxLength(32);
            const FirstPaint painted(&keyboard);
            keyboard.setMode(KB_MODE_TEXT);
        }));
        drain();
        dialogMs.push_back(bench::timed([&] {
            QDialog dialog(&window);
            dialog.setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
            dialog.setFixedSize(size);
            const FirstPaint painted(&dialog);
            dialog.exec();
        }));
    }
    return bench::report("keyboard to first paint", bench::median(keyboardMs),
                         bench::median(dialogMs), "ms", KEYBOARD_LIMIT);
}

} // namespace

int main(int argc, char **argv)
{
    const int refused = sim::startFromEnvironment();
    if (refused != 0)
        return refused;
    QApplication application(argc, argv);
    loadAppearance();
    auto *window = new MainWin; // its end would restart the panel
    window->start();
    drain();
    const bool language = measureLanguage(*window);
    const bool keyboard = measureKeyboard(*window);
    std::fflush(stdout);
    std::_Exit(language && keyboard ? 0 : 1);
}
