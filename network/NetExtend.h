// The Extend page of the Network group: the preferred link, and the way to the diagnosis.
#pragma once

#include <QWidget>

#include <atomic>
#include <memory>
#include <string>

class NetWorkTestUi;

namespace Ui {
class NetExtend;
}

// Shows no preferred link until the network service has named one. GUI thread, but for what is
// marked otherwise.
class NetExtend : public QWidget
{
    Q_OBJECT

public:
    explicit NetExtend(QWidget *parent = nullptr);
    ~NetExtend() override;

    // The dialog that the button opens.
    NetWorkTestUi *diagnosis() const { return m_pDiagnosis; }

    // Asks the network service for the preferred link and shows it, until it has once answered in
    // this process; returns at once from then on. Blocks up to five seconds. Any thread.
    void refreshPriority();

    // Sets texts and style sheets anew, after a language change.
    void retranslate();

private slots:
    void slot_ButtonPressed();
    void slot_comboxChange(int index);

private:
    void showPriority(const std::string &kind);

    std::unique_ptr<Ui::NetExtend> ui;
    NetWorkTestUi *m_pDiagnosis;
    std::atomic<int> m_nChoices{0}; // made so far: an answer from before the latest is old
};
