#include "update/ResultText.h"

#include "app/look/OutsideText.h"
#include "platform/machine.h"
#include "update/UpdateJob.h"

#include <QCoreApplication>
#include <QStringList>
#include <QTextCodec>

#include <algorithm>
#include <array>

namespace {

// What a page says to one result code.
struct ResultRow
{
    int code;
    std::array<const char *, 4> lines; // source texts, the unused ones null
    // Two bytes of GB2312 that the text is stored with beyond its last line; null for none.
    const char *tail = nullptr;
};

// What it says to the code for a file that is made for another model.
struct ModelReport
{
    int code;
    const char *noFileModel; // null: the file's model is shown empty
    const char *noPanelModel;
    const char *panelModel; // captions
    const char *fileModel;
    const char *advice;
};

constexpr ResultRow PROJECT_ROWS[] = {
    {0, {QT_TRANSLATE_NOOP("DownLoadHmiPro", "Updated, please restart HMI!")}},
    {-1, {QT_TRANSLATE_NOOP("DownLoadHmiPro", "The project img file is not found in Udisk.")}},
    {-4, {QT_TRANSLATE_NOOP("DownLoadHmiPro", "Failed to get HMI model.")}},
    {-8,
     {QT_TRANSLATE_NOOP(
         "DownLoadHmiPro",
         "Project file unmatched. Please select the project that matches HMI firmware.")}},
};
constexpr ResultRow PROJECT_OTHER = {
    0, {QT_TRANSLATE_NOOP("DownLoadHmiPro", "Failed to update, please restart HMI!")}};
constexpr ModelReport PROJECT_MODEL = {
    -5,
    nullptr,
    QT_TRANSLATE_NOOP("DownLoadHmiPro", "Failed to get HMI model."),
    QT_TRANSLATE_NOOP("DownLoadHmiPro", "HMI model: "),
    QT_TRANSLATE_NOOP("DownLoadHmiPro", "Model settings in project: "),
    QT_TRANSLATE_NOOP("DownLoadHmiPro", "Model does not match, please modify it!"),
};

constexpr ResultRow IMAGE_ROWS[] = {
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
constexpr ResultRow IMAGE_OTHER = {0, {}};
constexpr ModelReport IMAGE_MODEL = {
    -11,
    QT_TRANSLATE_NOOP("DownLoadHmiImage", "Failed to get Udisk HMI model."),
    QT_TRANSLATE_NOOP("DownLoadHmiImage", "Failed to get Local HMI model."),
    QT_TRANSLATE_NOOP("DownLoadHmiImage", "HMI model: "),
    QT_TRANSLATE_NOOP("DownLoadHmiImage", "Model settings in firmware: "),
    QT_TRANSLATE_NOOP("DownLoadHmiImage",
                      "Model does not match, please re-select the firmware file!"),
};

constexpr ResultRow PLC_ROWS[] = {
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
constexpr ResultRow PLC_OTHER = {
    0, {QT_TRANSLATE_NOOP("DownLoadPlcPro", "Failed to set disable upload!")}};

// The only text of the program that is stored in GB2312.
QString decoded(const char *gb2312)
{
    if (gb2312 == nullptr)
        return {};
    const QTextCodec *codec = QTextCodec::codecForName("GB18030");
    return codec == nullptr ? QStringLiteral("!") : codec->toUnicode(gb2312);
}

QString rowText(const ResultRow &row, const char *context)
{
    QStringList lines;
    for (const char *line : row.lines) {
        if (line != nullptr)
            lines += QCoreApplication::translate(context, line);
    }
    return lines.join(QStringLiteral("\r\n")) + decoded(row.tail);
}

QString modelText(const ModelReport &report, const UpdateJob &job, const CDownloadThread &worker)
{
    const auto text = [&](const char *source) {
        return QCoreApplication::translate(job.texts.context, source);
    };
    std::string wanted;
    if (worker.fileModel(job, wanted) < 0 && report.noFileModel != nullptr)
        return text(report.noFileModel);
    std::string own;
    if (KVCORE::TMachine().GetHMIType(own) == 0)
        return text(report.noPanelModel);
    return text(report.panelModel) + shownBytes(own) + QLatin1Char('\n') + text(report.fileModel) +
           shownBytes(wanted) + QLatin1Char('\n') + text(report.advice);
}

} // namespace

struct ResultTexts
{
    const ResultRow *begin;
    const ResultRow *end;
    const ResultRow &other; // any other code
    const ModelReport *model = nullptr;
};

const ResultTexts PROJECT_RESULTS = {std::begin(PROJECT_ROWS), std::end(PROJECT_ROWS),
                                     PROJECT_OTHER, &PROJECT_MODEL};
const ResultTexts IMAGE_RESULTS = {std::begin(IMAGE_ROWS), std::end(IMAGE_ROWS), IMAGE_OTHER,
                                   &IMAGE_MODEL};
const ResultTexts PLC_RESULTS = {std::begin(PLC_ROWS), std::end(PLC_ROWS), PLC_OTHER};

QString resultText(const UpdateJob &job, int code, const CDownloadThread &worker)
{
    const ResultTexts &texts = job.results;
    if (texts.model != nullptr && code == texts.model->code)
        return modelText(*texts.model, job, worker);
    const ResultRow *found = std::find_if(
        texts.begin, texts.end, [code](const ResultRow &row) { return row.code == code; });
    return rowText(found == texts.end ? texts.other : *found, job.texts.context);
}
