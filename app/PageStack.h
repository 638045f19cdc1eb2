// Containers of pages that are neither measured nor styled until they are first seen.
#pragma once

#include <QStackedWidget>
#include <QTabWidget>

#include <memory>

// Qt's containers ask hidden pages too for their size hints, which lays out the whole program
// before its first frame. Here the screen decides the size. Height for width is off because a long
// wrapped text would take its height from the status strip.

class PageStack : public QStackedWidget
{
public:
    using QStackedWidget::QStackedWidget;
    QSize sizeHint() const override { return {0, 0}; }
    QSize minimumSizeHint() const override { return {0, 0}; }
    bool hasHeightForWidth() const override { return false; }
};

class PageTabs : public QTabWidget
{
public:
    using QTabWidget::QTabWidget;
    QSize sizeHint() const override { return {0, 0}; }
    QSize minimumSizeHint() const override { return {0, 0}; }
    bool hasHeightForWidth() const override { return false; }
};

// A tab whose page joins the window when it is first seen: showing a window polishes everything in
// it, hidden or not.
class PageTab : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    // Makes the page, which the tab owns. Once.
    template <typename Page>
    Page *setPage()
    {
        auto page = std::make_unique<Page>();
        Page *made = page.get();
        m_page = std::move(page);
        return made;
    }

    // Takes a page that is not seen out of the window until it is seen again: before the window
    // gets another style sheet, which would be applied to the page too.
    void parkPage();

protected:
    void showEvent(QShowEvent *event) override;

private:
    std::unique_ptr<QWidget> m_page; // while it is not in the window
};
