// The three jobs of the Update tabs, each described once: for its page and for the worker.
#pragma once

#include "platform/cos_thread.h"
#include "update/CDownloadThread.h"

#include <array>
#include <string>

struct ResultTexts;

struct UpdateJob
{
    using Signal = void (CDownloadThread::*)(int);

    // Source texts, in the context of the page's class but where said otherwise.
    struct Texts
    {
        const char *context; // the name of that class
        const char *prompt;  // in the context of all classes
        const char *selected;
        const char *downloading;
        const char *caution; // while it downloads
        const char *succeeded;
        const char *failed;
    };

    // What the worker does for an install by the update service.
    struct Install
    {
        const char *timer; // the poller's name
        COS::CCosRateTimer::Function task;
        unsigned int startTimeoutMs;
        int checkFailed;    // result
        int versionUnfit;   // result
        bool asksForNewer;  // a file of an unfit version is installed if the operator wants it
        int wrongModel;     // result
        Signal startedBar;  // filled when the install has started, or never will
        Signal mismatchBar; // filled when the models differ
        int (*panelModel)(std::string &model); // negative on failure
        const char *modelTrace;                // of the panel's and the file's, if they differ
        const char *resultTrace;               // of the error number at the end; null for none
    };

    CDownloadThread::Function function;
    std::array<const char *, 3> patterns; // a name that contains one of them is listed
    Texts texts;
    const ResultTexts &results;
    int tickMs; // of the page's bar
    // The PLC page connects only after the start, so its result comes through the event loop.
    enum { CONNECT_FIRST, CONNECT_AFTER_START } order;
    int noResult; // the stored result that says nothing
    int (CDownloadThread::*storedResult)() const;
    void (CDownloadThread::*resetResult)(int); // at the choice of a row
    Signal resultSignal;
    Signal barSignal;       // null: the page moves its bar by itself
    const Install *install; // null: the worker sends the file to the PLC itself
};

extern const UpdateJob PROJECT_JOB;
extern const UpdateJob IMAGE_JOB; // the HMI firmware
extern const UpdateJob PLC_JOB;

// The job of a function code; null if there is none.
const UpdateJob *updateJob(int function);
