// The one on-screen keyboard: every editable field of the program is filled through it, and in
// its password mode it is the gate before the settings.
#pragma once

#include <QDialog>
#include <QHash>

#include <memory>
#include <optional>

namespace Ui {
class SoftKeyboard;
}

enum KeyboardMode {
    KB_MODE_PASSWORD = 0,    // the gate: asks for the password of setPassword()
    KB_MODE_NUMBER = 1,      // an integer in the range of setRange()
    KB_MODE_TEXT = 2,        // text of at most setMaxLength() characters
    KB_MODE_HIDDEN_TEXT = 3, // the same, masked until the eye is opened
};

// One keyboard serves one edit. The caller sizes and places it, sets what the mode needs, and
// calls setMode() last, which runs it. GUI thread.
class SoftKeyboard : public QDialog
{
    Q_OBJECT

public:
    // Edits `text`; the first character key replaces it.
    SoftKeyboard(QWidget *parent, const QString &text);
    ~SoftKeyboard() override;

    // Says in the title strip what is edited. Nothing until set.
    void setCaption(const QString &caption);

    // The integers that number mode accepts, both ends included. 0 to 0 until set.
    void setRange(int min, int max);

    // The most characters (UTF-16 code units) that the keys build. Modes 0, 2 and 3 need it: it
    // is 0 until set. Only space and "&" obey it always; the other keys obey it as long as the
    // eye is closed, and so neither in number mode nor while an entry is revealed.
    void setMaxLength(int length);

    // Makes this the gate that opens to `password`, and that nothing else dismisses.
    void setPassword(const QString &password);

    // Takes the look of a KeyboardMode, shows the keyboard and runs it modally; returns when it
    // has hidden itself. Any other number does nothing.
    void setMode(int mode);

    // The entered text: 0, or -1 with `out` untouched if no new value was entered. Always -1 in
    // modes 0 and 2: text mode gives its text by the signal alone.
    int getText(QString &out) const;

signals:
    // A valid entry, in modes 1, 2 and 3. Comes before the keyboard hides.
    void Sgl_InputText(QString text);

protected:
    void paintEvent(QPaintEvent *event) override;

private slots:
    void slot_Btnclicked();

private:
    using Action = void (SoftKeyboard::*)();

    void connectKeys();
    void loadIcons();
    void tableActions();
    void fitToScreen();
    void showText();
    void showEye();

    void enter();
    void enterPassword();
    void enterNumber();
    void enterText();
    void enterHiddenText();
    void finish(const QString &text);
    void removeLast();
    void closeUnchanged();
    void showLetters();
    void showSymbols();
    void showNumbers();
    void addSpace();
    void addAmpersand();
    void toggleEye();
    void toggleShift();
    void addCharacter();
    void appendWithinLength(const QString &added);
    bool isOutOfRange() const;

    std::unique_ptr<Ui::SoftKeyboard> ui;
    QHash<const QObject *, Action> m_actions; // of every key but the character keys
    QString m_text;
    const QString m_initialText;
    std::optional<QString> m_password;
    int m_nMinValue = 0;
    int m_nMaxValue = 0;
    int m_nMaxLength = 0;
    int m_nMode = KB_MODE_PASSWORD;
    int m_nAccepted = 0;
    int m_nEyeClosed = 1;
    bool m_bFirstKeyClears = true;
};
