// The networks in range, a row each.
#pragma once

#include "platform/net.h"

#include <QListWidget>

#include <optional>
#include <vector>

class ListItem;

// A row as high as a touch for each access point. Only the rows in view have widgets: a handful of
// ListItems follows the view, so that a scan of five hundred costs what a scan of ten does. A row
// of the list stays when its access point changes, and the view keeps its place. GUI thread.
class AccessPointList : public QListWidget
{
    Q_OBJECT

public:
    explicit AccessPointList(QWidget *parent = nullptr);

    // Shows the access points in their order. A level outside 0 to 100 is
    // replaced by the former one of the same network.
    void setAccessPoints(const std::vector<netT::stApInfo_tag> &accessPoints);

    // The text in the middle of a list without rows.
    void setEmptyText(const QString &text);

    // The access point that a click on `item` means: the one that was in the row when the finger
    // went down.
    std::optional<netT::stApInfo_tag> chosen(const QListWidgetItem *item) const;

    // The name in a row, as shown.
    QString nameIn(int row) const;

    void retranslate();

protected:
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    struct Touch
    {
        int row;
        netT::stApInfo_tag accessPoint;
    };

    std::optional<netT::stApInfo_tag> in(int row) const;
    void keepLevels();
    void placeWidgets();
    void arrangeWidgets(int first, int end);
    ListItem *newWidget();

    std::vector<netT::stApInfo_tag> m_accessPoints;
    std::vector<netT::stApInfo_tag> m_former;
    std::vector<ListItem *> m_widgets; // in the order of the rows in view
    std::optional<Touch> m_touch;
    QString m_sEmpty;
    int m_nRowHeight;
};
