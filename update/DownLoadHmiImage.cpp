#include "update/DownLoadHmiImage.h"

#include "app/look/MessageBox.h"
#include "app/look/Screen.h"
#include "app/look/WidgetLook.h"
#include "ui_DownLoadHmiImage.h"
#include "update/UpdateJob.h"

#include <QListWidget>

namespace {

// Shares of the page's size.
constexpr double CONFIRM_WIDTH = 0.7;
constexpr double CONFIRM_HEIGHT = 0.6;

} // namespace

DownLoadHmiImage::DownLoadHmiImage()
    : UpdatePage(IMAGE_JOB), ui(std::make_unique<Ui::DownLoadHmiImage>())
{
    ui->setupUi(this);
    setWidgets({ui->list_Image, ui->bar_Image, ui->btn_DownLoadImage, ui->lab_Image});
    connect(ui->list_Image, &QListWidget::itemClicked, this,
            &DownLoadHmiImage::slot_ListItemClicked);
    connect(ui->btn_DownLoadImage, &QPushButton::clicked, this,
            &DownLoadHmiImage::slot_ButtonPressed);
}

DownLoadHmiImage::~DownLoadHmiImage() = default;

void DownLoadHmiImage::slot_ListItemClicked(QListWidgetItem *item)
{
    keyClick();
    if (sender() == ui->list_Image)
        selectRow(item->text());
}

void DownLoadHmiImage::slot_ShowDownImageReResult(int code)
{
    showResult(code, sender() == worker());
}

void DownLoadHmiImage::slot_ButtonPressed()
{
    keyClick();
    if (sender() == ui->btn_DownLoadImage)
        startDownload();
}

void DownLoadHmiImage::translateForm()
{
    ui->retranslateUi(this);
}

void DownLoadHmiImage::connectResult()
{
    connect(worker(), &CDownloadThread::sglDownLoadImageResult, this,
            &DownLoadHmiImage::slot_ShowDownImageReResult);
}

void DownLoadHmiImage::setWorker(CDownloadThread *worker)
{
    UpdatePage::setWorker(worker);
    connect(worker, &CDownloadThread::sglConfirm, this, &DownLoadHmiImage::slot_Confirm);
}

void DownLoadHmiImage::slot_Confirm()
{
    MessageBox box(BOX_QUESTION, this);
    box.setText(tr("The firmware is a newer version. You risk data loss if you click \"OK\". Exit "
                   "and compile HMI project with new version recommended. "));
    box.setStretch(1, 3, 1);
    const QSize size = fractionOf(geometry().size(), CONFIRM_WIDTH, CONFIRM_HEIGHT);
    placeOverPage(&box, size, this, {(width() - size.width()) / 2, (height() - size.height()) / 2});
    if (box.exec() == 1)
        worker()->setConfirmed();
}
