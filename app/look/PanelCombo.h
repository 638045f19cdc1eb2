// A list of choices that opens on the panel's screen.
#pragma once

#include <QComboBox>

// Opens its list below itself where there is room, else as far up as it needs, over the box. Qt
// alone would go by the desktop's screen, and cut the list short where a small panel has room above
// and below. It opens when the finger is lifted: Qt opens at the press, and takes a finger that
// stays longer than a double click lasts, as one in a glove does, for a choice. GUI thread.
class PanelCombo : public QComboBox
{
public:
    using QComboBox::QComboBox;

    void showPopup() override;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    bool m_hasList = false;   // made when the box is first opened
    bool m_isPressed = false; // a press that closes the list goes to the list
};
