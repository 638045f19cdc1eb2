#include "update/DownLoadPlcPro.h"

#include "app/look/WidgetLook.h"
#include "ui_DownLoadPlcPro.h"
#include "update/Progress.h"
#include "update/ResultText.h"

#include <QListWidget>

namespace {

constexpr const char *CONTEXT = "DownLoadPlcPro";

constexpr UpdatePageKind KIND = {
    CONTEXT,
    QT_TRANSLATE_NOOP("QObject", "Please select PLC project."),
    QT_TRANSLATE_NOOP("DownLoadPlcPro", "Selected PLC project:"),
    QT_TRANSLATE_NOOP("DownLoadPlcPro", "Downloading PLC project:"),
    QT_TRANSLATE_NOOP("DownLoadPlcPro", "Please do not shut down or replug the device!"),
    QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download successfully!"),
    QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download failure!"),
    {".bin"},
    CDownloadThread::FUNC_DOWNLOAD_PLCPRO,
    1000, // ms a tick
    1,    // the stored result that says nothing
    &CDownloadThread::plcResult,
    &CDownloadThread::setProjectResult, // at the choice of a row
    &CDownloadThread::sglDownLoadPlcProResult,
    nullptr, // no signal: the page moves its bar by itself
    UpdatePageKind::CONNECT_AFTER_START,
};

constexpr ResultRow RESULTS[] = {
    {0, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Updated PLC program!")}},
    {-1, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to update PLC program!")}},
    {-2, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to open COM !!")}},
    {-3,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download timeout,"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "The reasons may be as follows:"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "1.Communication parameter setting error"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "2.Communication cable is abnormal")}},
    {-4, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download password error!!")}},
    {-5, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Unable to communicate with the PLC!")}},
    {-6, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Unable to stop PLC")}, "\xA3\xA1"},
    {-7, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Unable to communicate with the PLC!")}},
    {-8, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to read file !!")}},
    {-9,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download the PLC program failed!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "1.please check the PLC program!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "2.Communication cable is abnormal")}},
    {-10,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download the PLC comment failed!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "1.please check the PLC comment!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "2.Communication cable is abnormal")}},
    {-11,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download the PLC memory failed!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "1.please check the PLC memory!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "2.Communication cable is abnormal")}},
    {-12,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to download the electronic CAM table!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "1.please check the related parameters!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "2.Communication cable is abnormal")}},
    {-13, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Unable to communicate with the PLC!")}},
    {-14, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to set disable upload!")}},
    {-15, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to read file !!")}},
    {-16, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "PLC type does not match!!")}},
    {-17,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download the PLC parameter failed!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "1.please check the PLC parameter setting!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "2.Communication cable is abnormal")}},
    {-18,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download the PLC parameter failed!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "1.please check the PLC parameter setting!"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "2.Communication cable is abnormal")}},
    {-19, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "PLC version does not match!!")}},
    {-20, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to update PLC program!")}},
    {-21, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to open COM !!")}},
    {-22, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to read file !!")}},
    {-23, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "PLC version does not match!!")}},
    {-24, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download password error!!")}},
    {-25,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download timeout,"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "The reasons may be as follows:"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "1.Communication parameter setting error"),
      QT_TRANSLATE_NOOP("DownLoadPlcPro", "2.Communication cable is abnormal")}},
    {-26, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to update PLC subprogram!!")}},
    {-27,
     {QT_TRANSLATE_NOOP(
         "DownLoadPlcPro",
         "The file contains prohibit uploading setting, but this PLC does not support it!!")}},
    {-28,
     {QT_TRANSLATE_NOOP(
         "DownLoadPlcPro",
         "The file contains subroutine encryption setting, but this PLC does not support it!!")}},
    {-29,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro",
                        "The file contains program ID, but this PLC does not support it!!")}},
    {-30, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "The program ID error!!")}},
    {-31,
     {QT_TRANSLATE_NOOP("DownLoadPlcPro", "The program ID required by the PLC isn't found in the "
                                          "update file, the download error!!")}},
    {-32, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Program exceeds capacity range!!")}},
    {-33, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Comment exceeds capacity range!!")}},
};
constexpr ResultRow OTHER = {
    0, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to set disable upload!")}};

} // namespace

DownLoadPlcPro::DownLoadPlcPro() : UpdatePage(KIND), ui(std::make_unique<Ui::DownLoadPlcPro>())
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

QString DownLoadPlcPro::resultTextOf(int code) const
{
    return resultText(RESULTS, OTHER, code, CONTEXT);
}

// The download writes the same number as it goes.
void DownLoadPlcPro::moveBar()
{
    bar()->setValue(++g_Progress.nPercent);
}
