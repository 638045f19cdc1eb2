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
// once. What could not be written, or could not be read in full before, is shown again as the
// runtime holds it, and a line below says so until another port is shown or a change is written.
// GUI thread.
class CommSetting : public QWidget
{
    Q_OBJECT

public:
    explicit CommSetting(QWidget *parent = nullptr);
    ~CommSetting() override;

    // Looks which ports are in use and shows "COM1-1", in use or not; without any the page is
    // disabled. `lists` must outlive the page.
    void init(const ComParamLists *lists);

    // Says the page's texts and takes its styles again, after a language change.
    void retranslate();

    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void slot_ButtonPressed();

private:
    int readPort(QString &settings);
    void load(const QString &name);
    void reload();
    void showFields();
    void showSummaries();
    void editStation(QLineEdit *line, ComField field);
    void editParameters(int page);
    void write(const QStringList &fields);
    int writePort(const QStringList &fields);
    void showRefusal();

    std::unique_ptr<Ui::ComSetting> ui;
    const ComParamLists *m_pLists = nullptr;
    QStringList m_fields;     // of the port that is shown, in full; empty without one
    bool m_bComplete = false; // the runtime gave all of them
    int m_nWritten = 0;       // what the last write came to, as ComParamLists::writePort()
};
