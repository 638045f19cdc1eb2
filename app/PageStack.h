// Containers of pages that take the room they are given.
#pragma once

#include <QStackedWidget>
#include <QTabWidget>

// Both containers ask every page, hidden ones too, for the size that it would like, which lays out
// the whole program before its first frame. Here the screen decides, so nobody asks.

class PageStack : public QStackedWidget
{
public:
    using QStackedWidget::QStackedWidget;
    QSize sizeHint() const override { return {0, 0}; }
    QSize minimumSizeHint() const override { return {0, 0}; }
};

class PageTabs : public QTabWidget
{
public:
    using QTabWidget::QTabWidget;
    QSize sizeHint() const override { return {0, 0}; }
    QSize minimumSizeHint() const override { return {0, 0}; }
};
