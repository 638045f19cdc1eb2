#include "update/UpdateJob.h"

#include "platform/board.h"
#include "platform/machine.h"
#include "update/ResultText.h"

#include <QtGlobal>

namespace {

int projectPanelModel(std::string &model)
{
    return KVCORE::TMachine().GetHMIType(model);
}

// The bars are crossed: a project that does not match fills the firmware's, and the start of a
// firmware install the project's; this is intended.
constexpr UpdateJob::Install PROJECT_INSTALL = {
    "UpDatePro",
    UpDatePro,
    8000,  // ms for the start
    -8,    // the check has failed
    -8,    // unfit version
    false, // refused, then
    -5,    // another model
    &CDownloadThread::sglProBarValue,
    &CDownloadThread::sglImageBarValue, // another model
    projectPanelModel,
    nullptr,
    nullptr,
};

constexpr UpdateJob::Install IMAGE_INSTALL = {
    "UpDateImg",
    UpDateImg,
    3000, // ms for the start
    -11,  // the check has failed
    -9,   // unfit version, declined
    true, // the operator is asked
    -11,  // another model
    &CDownloadThread::sglProBarValue,
    &CDownloadThread::sglImageBarValue, // another model
    PLATFORM::CPlatBoard::getKVxxx,
    "===========[%s][%s]\n",
    "emit pDownloadThread->sglDownLoadImageResult(udiskUpdate.nErrNumber); = [%d]\n",
};

} // namespace

const UpdateJob PROJECT_JOB = {
    CDownloadThread::FUNC_DOWNLOAD_PRO,
    {".tmt3"},
    {
        "DownLoadHmiPro",
        QT_TRANSLATE_NOOP("QObject", "Please select HMI project."),
        QT_TRANSLATE_NOOP("DownLoadHmiPro", "Selected HMI project:"),
        QT_TRANSLATE_NOOP("DownLoadHmiPro", "Downloading HMI project:"),
        QT_TRANSLATE_NOOP("DownLoadHmiPro", "Please do not shut down or replug the device!"),
        QT_TRANSLATE_NOOP("DownLoadHmiPro", "Download successfully!"),
        QT_TRANSLATE_NOOP("DownLoadHmiPro", "Download failure!"),
    },
    PROJECT_RESULTS,
    400, // ms
    UpdateJob::CONNECT_FIRST,
    0,
    &CDownloadThread::projectResult,
    &CDownloadThread::setProjectResult,
    &CDownloadThread::sglDownLoadProResult,
    &CDownloadThread::sglProBarValue,
    &PROJECT_INSTALL,
};

const UpdateJob IMAGE_JOB = {
    CDownloadThread::FUNC_DOWNLOAD_IMAGE,
    {".osf3", "logo.osf2", "logos.osf2"},
    {
        "DownLoadHmiImage",
        QT_TRANSLATE_NOOP("QObject", "Please select HMI firmware."),
        QT_TRANSLATE_NOOP("DownLoadHmiImage", "Selected HMI firmware:"),
        QT_TRANSLATE_NOOP("DownLoadHmiImage", "Downloading HMI firmware:"),
        QT_TRANSLATE_NOOP("DownLoadHmiImage", "Please do not shut down or replug the device!"),
        QT_TRANSLATE_NOOP("DownLoadHmiImage", "Update Successful"),
        QT_TRANSLATE_NOOP("DownLoadHmiImage", "Update failure!"),
    },
    IMAGE_RESULTS,
    200, // ms
    UpdateJob::CONNECT_FIRST,
    0,
    &CDownloadThread::imageResult,
    &CDownloadThread::setImageResult,
    &CDownloadThread::sglDownLoadImageResult,
    &CDownloadThread::sglImageBarValue,
    &IMAGE_INSTALL,
};

// The choice of a row resets the project's result and never the PLC's own; this is intended.
const UpdateJob PLC_JOB = {
    CDownloadThread::FUNC_DOWNLOAD_PLCPRO,
    {".bin"},
    {
        "DownLoadPlcPro",
        QT_TRANSLATE_NOOP("QObject", "Please select PLC project."),
        QT_TRANSLATE_NOOP("DownLoadPlcPro", "Selected PLC project:"),
        QT_TRANSLATE_NOOP("DownLoadPlcPro", "Downloading PLC project:"),
        QT_TRANSLATE_NOOP("DownLoadPlcPro", "Please do not shut down or replug the device!"),
        QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download successfully!"),
        QT_TRANSLATE_NOOP("DownLoadPlcPro", "Download failure!"),
    },
    PLC_RESULTS,
    1000, // ms
    UpdateJob::CONNECT_AFTER_START,
    1,
    &CDownloadThread::plcResult,
    &CDownloadThread::setProjectResult,
    &CDownloadThread::sglDownLoadPlcProResult,
    nullptr,
    nullptr,
};

const UpdateJob *updateJob(int function)
{
    for (const UpdateJob *job : {&PROJECT_JOB, &IMAGE_JOB, &PLC_JOB}) {
        if (job->function == function)
            return job;
    }
    return nullptr;
}
