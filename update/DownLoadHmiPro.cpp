#include "update/DownLoadHmiPro.h"

#include "app/look/WidgetLook.h"
#include "ui_DownLoadHmiPro.h"
#include "update/UpdateJob.h"

#include <QListWidget>

DownLoadHmiPro::DownLoadHmiPro()
    : UpdatePage(PROJECT_JOB), ui(std::make_unique<Ui::DownLoadHmiPro>())
{
    ui->setupUi(this);
    setWidgets({ui->list_Pro, ui->bar_Project, ui->btn_DownLoadPro, ui->lab_Pro});
    connect(ui->list_Pro, &QListWidget::itemClicked, this, &DownLoadHmiPro::slot_ListItemClicked);
    connect(ui->btn_DownLoadPro, &QPushButton::clicked, this, &DownLoadHmiPro::slot_ButtonPressed);
}

DownLoadHmiPro::~DownLoadHmiPro() = default;

void DownLoadHmiPro::slot_ListItemClicked(QListWidgetItem *item)
{
    keyClick();
    if (sender() == ui->list_Pro)
        selectRow(item->text());
}

void DownLoadHmiPro::slot_ShowDownProReResult(int code)
{
    showResult(code, sender() == worker());
}

void DownLoadHmiPro::slot_ButtonPressed()
{
    keyClick();
    if (sender() == ui->btn_DownLoadPro)
        startDownload();
}

void DownLoadHmiPro::translateForm()
{
    ui->retranslateUi(this);
}

void DownLoadHmiPro::connectResult()
{
    connect(worker(), &CDownloadThread::sglDownLoadProResult, this,
            &DownLoadHmiPro::slot_ShowDownProReResult);
}
