// What the three update pages have in common.
#pragma once

#include <QString>
#include <QWidget>

#include <string>
#include <vector>

class CDownloadThread;
class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;
struct UpdateJob;

// A file on the list, one a row, in the rows' order. Bytes as the file system has them: they need
// not be text, and go to the worker as they are.
struct UdiskFileEntry
{
    std::string directory;
    std::string name;
    std::string shown; // "U%d/%s": the number of the U-disk and the name
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

    // Sets the page's texts and styles again, after a language change.
    void retranslate();

protected:
    struct Widgets
    {
        QListWidget *list;
        QProgressBar *bar;
        QPushButton *button;
        QLabel *label;
    };

    explicit UpdatePage(const UpdateJob &job) : m_job(job) {}

    // Takes over the widgets of the page's form. Once.
    void setWidgets(const Widgets &widgets);
    CDownloadThread *worker() const { return m_pWorker; }
    QProgressBar *bar() const { return m_widgets.bar; }

    // What the slots do once they have found that the right object has sent the signal.
    void selectRow(const QString &itemText);
    void startDownload();
    // Shows the text of a result in the label. If the worker has just sent it, `finished`, also
    // shows it in a box and frees the page.
    void showResult(int code, bool finished);

    void timerEvent(QTimerEvent *event) override;

    virtual void translateForm() = 0;
    virtual void connectResult() = 0; // the worker's result signal to the page's slot
    // At each tick while a job is under way: adds one between two reports of the service.
    virtual void moveBar();

private:
    void setStatus(const QString &status);
    bool isListed(const std::string &name) const;
    void showBox(bool success, const QString &message);
    void connectWorker();
    void disconnectWorker();
    QString selectedText(const QString &itemText) const;
    QString text(const char *source) const; // in the context of the page's class
    QString commonText(const char *source) const;

    const UpdateJob &m_job;
    Widgets m_widgets{};
    CDownloadThread *m_pWorker = nullptr;
    std::vector<UdiskFileEntry> m_files;
    int m_nUdisk = 0; // number of the U-disk listed last
    bool m_bUdiskPresent = false;
    int m_nTimer = 0;
};
