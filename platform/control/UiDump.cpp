#include "platform/control/UiWidgets.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTextEdit>

namespace control {
namespace {

Json json(const QString &text)
{
    return text.toStdString();
}

// A text without the marks of its keyboard shortcut: "&&" is shown as one ampersand.
QString asShown(const QString &text)
{
    QString shown;
    for (int i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('&') && i + 1 < text.size())
            ++i;
        shown += text[i];
    }
    return shown;
}

// Columns stand apart by a tab.
Json rowsOf(const QAbstractItemView &view)
{
    Json rows = Json::array();
    const QAbstractItemModel *model = view.model();
    const QModelIndex root = view.rootIndex();
    for (int row = 0; model != nullptr && row < model->rowCount(root); ++row) {
        QStringList columns;
        for (int column = 0; column < model->columnCount(root); ++column)
            columns += model->index(row, column, root).data().toString();
        rows.push_back(json(columns.join(QLatin1Char('\t'))));
    }
    return rows;
}

// One function a kind of widget; each adds the keys that the kind has.
void addLabel(Json &dump, const QLabel &label)
{
    dump["text"] = json(label.text());
}

void addButton(Json &dump, const QAbstractButton &button)
{
    dump["text"] = json(asShown(button.text()));
    if (button.isCheckable())
        dump["checked"] = button.isChecked();
}

void addLineEdit(Json &dump, const QLineEdit &edit)
{
    static const char *const echoNames[] = {"Normal", "NoEcho", "Password", "PasswordEchoOnEdit"};
    dump["text"] = json(edit.text());
    dump["echo"] = echoNames[edit.echoMode()];
}

void addSlider(Json &dump, const QAbstractSlider &slider)
{
    dump["value"] = slider.value();
}

void addSpinBox(Json &dump, const QSpinBox &box)
{
    dump["value"] = box.value();
    dump["text"] = json(box.text());
}

void addProgressBar(Json &dump, const QProgressBar &bar)
{
    dump["value"] = bar.value();
    dump["text"] = json(bar.text());
}

void addComboBox(Json &dump, const QComboBox &box)
{
    dump["text"] = json(box.currentText());
    dump["index"] = box.currentIndex();
    Json items = Json::array();
    for (int i = 0; i < box.count(); ++i)
        items.push_back(json(box.itemText(i)));
    dump["items"] = items;
}

void addItemView(Json &dump, const QAbstractItemView &view)
{
    dump["index"] = view.currentIndex().row();
    dump["items"] = rowsOf(view);
}

void addTabWidget(Json &dump, const QTabWidget &tabs)
{
    dump["index"] = tabs.currentIndex();
    Json items = Json::array();
    for (int i = 0; i < tabs.count(); ++i)
        items.push_back(json(asShown(tabs.tabText(i))));
    dump["items"] = items;
}

void addStack(Json &dump, const QStackedWidget &stack)
{
    dump["index"] = stack.currentIndex();
}

void addGroupBox(Json &dump, const QGroupBox &box)
{
    dump["title"] = json(asShown(box.title()));
    if (box.isCheckable())
        dump["checked"] = box.isChecked();
}

void addTextEdit(Json &dump, const QTextEdit &edit)
{
    dump["text"] = json(edit.toPlainText());
}

void addPlainTextEdit(Json &dump, const QPlainTextEdit &edit)
{
    dump["text"] = json(edit.toPlainText());
}

template <typename Kind>
void addIf(Json &dump, const QWidget *widget, void (*add)(Json &, const Kind &))
{
    if (const auto *kind = qobject_cast<const Kind *>(widget))
        add(dump, *kind);
}

void addContents(Json &dump, const QWidget *widget)
{
    addIf(dump, widget, addLabel);
    addIf(dump, widget, addButton);
    addIf(dump, widget, addLineEdit);
    addIf(dump, widget, addSlider);
    addIf(dump, widget, addSpinBox);
    addIf(dump, widget, addProgressBar);
    addIf(dump, widget, addComboBox);
    addIf(dump, widget, addItemView);
    addIf(dump, widget, addTabWidget);
    addIf(dump, widget, addStack);
    addIf(dump, widget, addGroupBox);
    addIf(dump, widget, addTextEdit);
    addIf(dump, widget, addPlainTextEdit);
    if (widget->isWindow())
        dump["title"] = json(widget->windowTitle());
}

Json dumpChildren(const QWidget *widget)
{
    Json children = Json::array();
    for (const QObject *child : widget->children())
        if (child->isWidgetType())
            children.push_back(dumpWidget(static_cast<const QWidget *>(child)));
    return children;
}

} // namespace

Json dumpWidget(const QWidget *widget)
{
    const QRect rect = screenRect(widget);
    Json dump = {{"name", json(widget->objectName())},
                 {"class", widget->metaObject()->className()},
                 {"visible", widget->isVisible()},
                 {"enabled", widget->isEnabled()},
                 {"rect", {rect.x(), rect.y(), rect.width(), rect.height()}},
                 {"style", json(widget->styleSheet())}};
    addContents(dump, widget);
    dump["children"] = dumpChildren(widget);
    return dump;
}

} // namespace control
