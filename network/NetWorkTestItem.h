// One row of the network diagnosis.
#pragma once

#include "network/NetWorkTestTexts.h"

#include <QFrame>

#include <memory>

class QMovie;

namespace Ui {
class NetWorkTestItem;
}

// Keeps state and texts of its item, so that it can be retranslated. Its object name is the item's
// key. GUI thread.
class NetWorkTestItem : public QFrame
{
    Q_OBJECT

public:
    // `running` is the animation of a check under way; it must outlive the row.
    NetWorkTestItem(int item, QMovie *running, QWidget *parent);
    ~NetWorkTestItem() override;

    // `state` is a NetWorkTestState, `value` goes with it.
    void setState(int state, int value);
    bool hasFailed() const;
    // `region` is the cloud's, as the cloud names it; the rows of the cloud client show it.
    void setTexts(const NetWorkTestText &texts, const QString &region);
    // Sets the texts anew, after a language change.
    void retranslate();

private:
    void showState();
    void showTexts();

    std::unique_ptr<Ui::NetWorkTestItem> ui;
    const int m_nItem;
    QMovie *m_pRunning;
    int m_nState;
    int m_nValue = 0;
    NetWorkTestText m_texts;
    QString m_sRegion;
};
