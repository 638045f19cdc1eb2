#include "update/DownLoadPlcPro.h"

#include "app/look/WidgetLook.h"
#include "ui_DownLoadPlcPro.h"
#include "update/Progress.h"
#include "update/UpdateJob.h"

#include <QListWidget>

DownLoadPlcPro::DownLoadPlcPro() : UpdatePage(PLC_JOB), ui(std::make_unique<Ui::DownLoadPlcPro>())
{
    ui->setupUi(this);
    setWidgets({ui->list_PlcPro, ui->bar_PlcPro, ui->btn_DownLoadPlcPro, ui->lab_PlcPro});
    connect(ui->list_PlcPro, &QListWidget::itemClicked, this,
            &DownLoadPlcPro::slot_ListItemClicked);
    connect(ui->btn_DownLoadPlcPro, &QPushButton::clicked, this,
            &DownLoadPlcPro::slot_ButtonPressed);
}

DownLoadPlcPro::~DownLoadPlcPro() = default;

void DownLoadPlcPro::slot_ListItemClicked(QListWidgetItem *item)
{
    keyClick();
    if (sender() == ui->list_PlcPro)
        selectRow(item->text());
}

void DownLoadPlcPro::slot_ShowDownPlcProReResult(int code)
{
    showResult(code, sender() == worker());
}

void DownLoadPlcPro::slot_ButtonPressed()
{
    keyClick();
    if (sender() == ui->btn_DownLoadPlcPro)
        startDownload();
}

void DownLoadPlcPro::translateForm()
{
    ui->retranslateUi(this);
}

void DownLoadPlcPro::connectResult()
{
    connect(worker(), &CDownloadThread::sglDownLoadPlcProResult, this,
            &DownLoadPlcPro::slot_ShowDownPlcProReResult);
}

// The download writes the same number as it goes.
void DownLoadPlcPro::moveBar()
{
    bar()->setValue(++g_Progress.nPercent);
}
