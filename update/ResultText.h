// The result codes of the three jobs and their texts.
#pragma once

#include <QString>

class CDownloadThread;
struct UpdateJob;

// The codes of a job with their texts; ResultText.cpp has the tables.
struct ResultTexts;
extern const ResultTexts PROJECT_RESULTS;
extern const ResultTexts IMAGE_RESULTS;
extern const ResultTexts PLC_RESULTS;

// The text of `code` in the program's language; lines end with "\r\n", those of a report on
// models with "\n". `worker` knows the model that the chosen file is made for. GUI thread.
QString resultText(const UpdateJob &job, int code, const CDownloadThread &worker);
