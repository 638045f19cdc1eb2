// The version page of the About group.
#pragma once

#include "platform/services.h"

#include <QWidget>

#include <memory>
#include <vector>

class QTreeWidget;
class VersionQuery;

// Lists what the panel's software says of itself: this program, what it is built with and runs on,
// and what the version service names, which is asked each time the page is shown. The page never
// waits for the service. GUI thread.
class Version : public QWidget
{
    Q_OBJECT

public:
    explicit Version(QWidget *parent = nullptr);
    ~Version() override;

    // Sets the page's texts and style again, after a language change.
    void retranslate();

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void slot_Answered();

private:
    enum class Service { Asked, Answered, Silent, NotAsked };

    void makeList();
    void ask();
    void showRows();
    void addRow(const QString &name, const QString &version);
    QString serviceState() const;

    QTreeWidget *m_pList = nullptr; // made when the page is first shown
    std::shared_ptr<VersionQuery> m_query;
    Service m_service = Service::NotAsked;
    std::vector<dsl::VersionEntry_T> m_entries; // of the latest answer
};
