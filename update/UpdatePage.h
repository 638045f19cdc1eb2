// What the three update pages have in common.
#pragma once

#include "update/CDownloadThread.h"

#include <QString>
#include <QWidget>

#include <array>
#include <string>
#include <vector>

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;

// A file on the list, one a row, in the rows' order. Bytes of file names.
struct UdiskFileEntry
{
    std::string directory;
    std::string name;
    std::string shown; // "U%d/%s": the number of the U-disk and the name
};

// How a page differs from the other two. Texts are source texts, in the context of the page's class
// but where said otherwise.
struct UpdatePageKind
{
    const char *context;
    const char *prompt; // in the context of all classes
    const char *selected;
    const char *downloading;
    const char *caution; // while it downloads
    const char *succeeded;
    const char *failed;
    std::array<const char *, 3> patterns; // a name that contains one of them is listed
    CDownloadThread::Function function;
    int timerMs;
    int noResult; // the stored result that says nothing
    // The project page resets its own result at the choice of a row, and so does the firmware page.
    // The PLC page resets the project's and never its own; this is intended.
    int (CDownloadThread::*storedResult)() const;
    void (CDownloadThread::*resetResult)(int);
    void (CDownloadThread::*resultSignal)(int);
    void (CDownloadThread::*barSignal)(int); // null: the page moves its bar by itself
    enum { CONNECT_FIRST, CONNECT_AFTER_START } order;
};

// Lists the matching files of the U-disk, has the worker install the one that is chosen, and tells
// the result. The slots stand in the pages, each its own. GUI thread.
class UpdatePage : public QWidget
{
public:
    ~UpdatePage() override = default;

    virtual void setWorker(CDownloadThread *worker) { m_pWorker = worker; }

    // Whether there is a U-disk, for the text after a language change.
    void setUdiskPresent(bool present) { m_bUdiskPresent = present; }
    // Adds the matching files of the U-disk mounted at `mountPath`.
    void listUdisk(const std::string &mountPath);
    // Forgets all files. A job under way goes on.
    void clearUdisk();

    // Says the page's texts and takes its styles again, after a language change.
    void retranslate();

protected:
    struct Widgets
    {
        QListWidget *list;
        QProgressBar *bar;
        QPushButton *button;
        QLabel *label;
    };

    explicit UpdatePage(const UpdatePageKind &kind) : m_kind(kind) {}

    // Takes over the widgets of the page's form. Once.
    void setWidgets(const Widgets &widgets);
    CDownloadThread *worker() const { return m_pWorker; }
    QProgressBar *bar() const { return m_widgets.bar; }

    // What the slots do, if it is the right object that has sent the signal.
    void selectRow(const QString &itemText);
    void startDownload();
    // `finished` if the worker tells it: then the page is free again, and the operator is told.
    void showResult(int code, bool finished);

    // A text of the page's own in the program's language.
    QString text(const char *source) const;

    void timerEvent(QTimerEvent *event) override;

    virtual void translateForm() = 0;
    virtual void connectResult() = 0; // the worker's result signal to the page's slot
    virtual QString resultTextOf(int code) const = 0;
    // At each tick while a job is under way: on by one between two reports.
    virtual void moveBar();

private:
    void say(const QString &said);
    bool isListed(const std::string &name) const;
    void tell(bool success, const QString &said);
    void connectWorker();
    void disconnectWorker();
    QString selectedText(const QString &itemText) const;
    QString generic(const char *source) const;

    const UpdatePageKind &m_kind;
    Widgets m_widgets{};
    CDownloadThread *m_pWorker = nullptr;
    std::vector<UdiskFileEntry> m_files;
    int m_nUdisk = 0; // number of the U-disk listed last
    bool m_bUdiskPresent = false;
    int m_nTimer = 0;
};
