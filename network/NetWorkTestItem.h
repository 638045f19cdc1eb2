// One row of the network diagnosis.
#pragma once

#include "network/NetWorkTestTexts.h"

#include <QFrame>

#include <memory>

class QMovie;

namespace Ui {
class NetWorkTestItem;
}

// Shows one item, and keeps what it shows, so that it can say it again in another language. Its
// object name is the item's key. GUI thread.
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
    // Says everything again in the program's language.
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
