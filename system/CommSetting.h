// The COM page of the System group.
#pragma once

#include "system/ComParam.h"

#include <QWidget>

#include <memory>

class QLineEdit;

namespace Ui {
class ComSetting;
}

// Shows the COM ports one at a time, as the control runtime holds them, and writes every change at
// once. After a write that fails, or is refused because the port was not read in full, the page
// shows what the runtime holds, and a line says why until another port is shown or a change is
// written. What the runtime does not give is asked for again every second while the page is seen.
// GUI thread.
class CommSetting : public QWidget
{
    Q_OBJECT

public:
    explicit CommSetting(QWidget *parent = nullptr);
    ~CommSetting() override;

    // Finds the ports in use and shows "COM1-1", in use or not; without any the page is disabled.
    // `lists` must outlive the page.
    void init(const ComParamLists *lists);

    // Sets the page's texts and style again, after a language change.
    void retranslate();

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void slot_ButtonPressed();

private:
    void findPorts();
    bool isMissing() const;
    void readMissing();
    void watchMissing();
    [[nodiscard]] int readPort(QString &settings);
    void load(const QString &name);
    void reload();
    void showFields();
    void editStation(QLineEdit *line, ComField field);
    void editParameters(int page);
    void write(const QStringList &fields);
    [[nodiscard]] int writePort(const QStringList &fields);
    void showRefusal();

    std::unique_ptr<Ui::ComSetting> ui;
    const ComParamLists *m_pLists = nullptr;
    QStringList m_fields;         // of the port that is shown, in full; empty without one
    bool m_bComplete = false;     // the runtime gave all of them
    bool m_bPortsComplete = true; // and all words of all ports, when they were last sought
    int m_nTimer = 0;             // 0 while nothing is missing, and while the page is hidden
    int m_nWriteResult = 0;       // of the last write, as ComParamLists::writePort()
};
