// The page that installs HMI firmware from the U-disk.
#pragma once

#include "update/UpdatePage.h"

#include <memory>

class QListWidgetItem;

namespace Ui {
class DownLoadHmiImage;
}

// GUI thread.
class DownLoadHmiImage : public UpdatePage
{
    Q_OBJECT

public:
    DownLoadHmiImage();
    ~DownLoadHmiImage() override;

    void setWorker(CDownloadThread *worker) override;

private slots:
    void slot_ListItemClicked(QListWidgetItem *item);
    void slot_ShowDownImageReResult(int code);
    void slot_ButtonPressed();
    void slot_Confirm();

private:
    void translateForm() override;
    void connectResult() override;

    std::unique_ptr<Ui::DownLoadHmiImage> ui;
};
