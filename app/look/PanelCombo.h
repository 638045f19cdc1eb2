// A list of choices that opens on the panel's screen.
#pragma once

#include <QComboBox>

// Opens its list below itself where there is room, else as far up as it needs, over the box. Qt
// alone would go by the desktop's screen, and cut the list short where a small panel has room above
// and below. GUI thread.
class PanelCombo : public QComboBox
{
public:
    using QComboBox::QComboBox;

    void showPopup() override;

private:
    bool m_hasList = false; // made when the box is first opened
};
