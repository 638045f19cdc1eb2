#include "update/DownLoadHmiImage.h"

#include "app/look/MessageBox.h"
#include "app/look/OutsideText.h"
#include "app/look/Screen.h"
#include "app/look/WidgetLook.h"
#include "platform/machine.h"
#include "ui_DownLoadHmiImage.h"
#include "update/ResultText.h"

#include <QListWidget>

namespace {

constexpr const char *CONTEXT = "DownLoadHmiImage";

constexpr UpdatePageKind KIND = {
    CONTEXT,
    QT_TRANSLATE_NOOP("QObject", "Please select HMI firmware."),
    QT_TRANSLATE_NOOP("DownLoadHmiImage", "Selected HMI firmware:"),
    QT_TRANSLATE_NOOP("DownLoadHmiImage", "Downloading HMI firmware:"),
    QT_TRANSLATE_NOOP("DownLoadHmiImage", "Please do not shut down or replug the device!"),
    QT_TRANSLATE_NOOP("DownLoadHmiImage", "Update Successful"),
    QT_TRANSLATE_NOOP("DownLoadHmiImage", "Update failure!"),
    {".osf3", "logo.osf2", "logos.osf2"},
    CDownloadThread::FUNC_DOWNLOAD_IMAGE,
    200, // ms a tick
    0,   // the stored result that says nothing
    &CDownloadThread::imageResult,
    &CDownloadThread::setImageResult, // at the choice of a row
    &CDownloadThread::sglDownLoadImageResult,
    &CDownloadThread::sglImageBarValue, // moves the bar
    UpdatePageKind::CONNECT_FIRST,
};

constexpr int MODEL_DIFFERS = -11;

constexpr ResultRow RESULTS[] = {
    {0,
     {QT_TRANSLATE_NOOP("DownLoadHmiImage", "Updated firmware"),
      QT_TRANSLATE_NOOP("DownLoadHmiImage", "Please restart HMI!!")}},
    {-1, {QT_TRANSLATE_NOOP("DownLoadHmiImage", "Failed to get Udisk HMI firmware.")}},
    {-4, {QT_TRANSLATE_NOOP("DownLoadHmiImage", "Failed to get HMI model.")}},
    {-8,
     {QT_TRANSLATE_NOOP(
         "DownLoadHmiImage",
         "Project file unmatched. Please select the project that matches HMI firmware.")}},
    {-9,
     {QT_TRANSLATE_NOOP(
         "DownLoadHmiImage",
         "Project file unmatched. Please select the project that matches HMI firmware.")}},
};
constexpr ResultRow OTHER = {0, {}};

// Of the page.
constexpr double CONFIRM_WIDTH = 0.7;
constexpr double CONFIRM_HEIGHT = 0.6;

} // namespace

DownLoadHmiImage::DownLoadHmiImage()
    : UpdatePage(KIND), ui(std::make_unique<Ui::DownLoadHmiImage>())
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

QString DownLoadHmiImage::resultTextOf(int code) const
{
    return code == MODEL_DIFFERS ? modelReport() : resultText(RESULTS, OTHER, code, CONTEXT);
}

QString DownLoadHmiImage::modelReport() const
{
    std::string wanted;
    if (worker()->imageModel(wanted) < 0)
        return tr("Failed to get Udisk HMI model.");
    std::string own;
    if (KVCORE::TMachine().GetHMIType(own) == 0)
        return tr("Failed to get Local HMI model.");
    return tr("HMI model: ") + shownBytes(own) + QLatin1Char('\n') +
           tr("Model settings in firmware: ") + shownBytes(wanted) + QLatin1Char('\n') +
           tr("Model does not match, please re-select the firmware file!");
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
