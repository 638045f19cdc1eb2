// The page that installs an HMI project from the U-disk.
#pragma once

#include "update/UpdatePage.h"

#include <memory>

class QListWidgetItem;

namespace Ui {
class DownLoadHmiPro;
}

// GUI thread.
class DownLoadHmiPro : public UpdatePage
{
    Q_OBJECT

public:
    DownLoadHmiPro();
    ~DownLoadHmiPro() override;

private slots:
    void slot_ListItemClicked(QListWidgetItem *item);
    void slot_ShowDownProReResult(int code);
    void slot_ButtonPressed();

private:
    void translateForm() override;
    void connectResult() override;

    std::unique_ptr<Ui::DownLoadHmiPro> ui;
};
