// The page that downloads a PLC program from the U-disk.
#pragma once

#include "update/UpdatePage.h"

#include <memory>

class QListWidgetItem;

namespace Ui {
class DownLoadPlcPro;
}

// GUI thread.
class DownLoadPlcPro : public UpdatePage
{
    Q_OBJECT

public:
    DownLoadPlcPro();
    ~DownLoadPlcPro() override;

private slots:
    void slot_ListItemClicked(QListWidgetItem *item);
    void slot_ShowDownPlcProReResult(int code);
    void slot_ButtonPressed();

private:
    void translateForm() override;
    void connectResult() override;
    void moveBar() override;

    std::unique_ptr<Ui::DownLoadPlcPro> ui;
};
