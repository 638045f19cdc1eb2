// Containers of pages that leave alone what nobody sees yet.
#pragma once

#include <QStackedWidget>
#include <QTabWidget>

#include <memory>

// Both containers ask every page, hidden ones too, for the size that it would like, which lays out
// the whole program before its first frame. Here the screen decides, so nobody asks; nor for the
// height that a wrapped text would like, which the status strip would have to give.

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

// A tab whose page stays outside the window until it is first seen: showing a window polishes
// everything in it, hidden or not, and a style sheet set on it goes through everything again.
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

    // Takes a page that is not seen out of the window again, until it is; before the window gets
    // another style sheet.
    void parkPage();

protected:
    void showEvent(QShowEvent *event) override;

private:
    std::unique_ptr<QWidget> m_page; // while it is not in the window
};
