// The dialog over the COM page in which one port's parameters are changed.
#pragma once

#include "system/ComParam.h"

#include <QDialog>

#include <memory>
#include <vector>

class QLineEdit;
class QPushButton;

namespace Ui {
class Communication;
}

// Two pages: the serial parameters, and the time-outs and retries. It changes texts alone; who has
// opened it asks for them when exec() gives QDialog::Accepted, and writes them. GUI thread.
class CommuniCation : public QDialog
{
    Q_OBJECT

public:
    enum Page { SERIAL = 0, TIMEOUTS = 1 };

    explicit CommuniCation(QWidget *parent);
    ~CommuniCation() override;

    // Fills the fields from the settings of `port` and makes the lists that are stepped through.
    // Of the connections, those are left out that another of `ports`, the ports in use, has on the
    // same physical port; never the one that `port` itself has. Fields that the settings lack stay
    // empty.
    void prepare(const ComPort &port, const std::vector<ComPort> &ports);

    // Shows the time-outs if `page` is not 0, else the serial parameters.
    void selectPage(int page);

    // The texts of a page, in the order of the port's fields, from firstField() on.
    QStringList values(int page) const;
    static ComField firstField(int page);

    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void slot_ButtonPressed();

private:
    // One of the port's fields.
    struct Field
    {
        QLineEdit *line;
        QPushButton *left;
        QPushButton *right;
        QStringList items; // of a field with a list
    };

    void findFields();
    QString stepped(int index, int direction) const;

    std::unique_ptr<Ui::Communication> ui;
    std::vector<Field> m_fields; // in the port's order
};
