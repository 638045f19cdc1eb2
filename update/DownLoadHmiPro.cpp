#include "update/DownLoadHmiPro.h"

#include "app/look/OutsideText.h"
#include "app/look/WidgetLook.h"
#include "platform/machine.h"
#include "ui_DownLoadHmiPro.h"
#include "update/ResultText.h"

#include <QListWidget>

namespace {

constexpr const char *CONTEXT = "DownLoadHmiPro";

constexpr UpdatePageKind KIND = {
    CONTEXT,
    QT_TRANSLATE_NOOP("QObject", "Please select HMI project."),
    QT_TRANSLATE_NOOP("DownLoadHmiPro", "Selected HMI project:"),
    QT_TRANSLATE_NOOP("DownLoadHmiPro", "Downloading HMI project:"),
    QT_TRANSLATE_NOOP("DownLoadHmiPro", "Please do not shut down or replug the device!"),
    QT_TRANSLATE_NOOP("DownLoadHmiPro", "Download successfully!"),
    QT_TRANSLATE_NOOP("DownLoadHmiPro", "Download failure!"),
    {".tmt3"},
    CDownloadThread::FUNC_DOWNLOAD_PRO,
    400, // ms a tick
    0,   // the stored result that says nothing
    &CDownloadThread::projectResult,
    &CDownloadThread::setProjectResult, // at the choice of a row
    &CDownloadThread::sglDownLoadProResult,
    &CDownloadThread::sglProBarValue, // moves the bar
    UpdatePageKind::CONNECT_FIRST,
};

constexpr int MODEL_DIFFERS = -5;

constexpr ResultRow RESULTS[] = {
    {0, {QT_TRANSLATE_NOOP("DownLoadHmiPro", "Updated, please restart HMI!")}},
    {-1, {QT_TRANSLATE_NOOP("DownLoadHmiPro", "The project img file is not found in Udisk.")}},
    {-4, {QT_TRANSLATE_NOOP("DownLoadHmiPro", "Failed to get HMI model.")}},
    {-8,
     {QT_TRANSLATE_NOOP(
         "DownLoadHmiPro",
         "Project file unmatched. Please select the project that matches HMI firmware.")}},
};
constexpr ResultRow OTHER = {
    0, {QT_TRANSLATE_NOOP("DownLoadHmiPro", "Failed to update, please restart HMI!")}};

} // namespace

DownLoadHmiPro::DownLoadHmiPro() : UpdatePage(KIND), ui(std::make_unique<Ui::DownLoadHmiPro>())
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

QString DownLoadHmiPro::resultTextOf(int code) const
{
    return code == MODEL_DIFFERS ? modelReport() : resultText(RESULTS, OTHER, code, CONTEXT);
}

QString DownLoadHmiPro::modelReport() const
{
    std::string own;
    if (KVCORE::TMachine().GetHMIType(own) == 0)
        return tr("Failed to get HMI model.");
    std::string wanted;
    worker()->projectModel(wanted);
    return tr("HMI model: ") + shownBytes(own) + QLatin1Char('\n') +
           tr("Model settings in project: ") + shownBytes(wanted) + QLatin1Char('\n') +
           tr("Model does not match, please modify it!");
}
