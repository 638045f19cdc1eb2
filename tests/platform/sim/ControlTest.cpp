#include "platform/control/ControlServer.h"
#include "platform/control/UiDriver.h"
#include "platform/sim/Panel.h"
#include "platform/sim/Requests.h"
#include "platform/sim/SimProgram.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QComboBox>
#include <QDialog>
#include <QListWidget>
#include <QLocalSocket>
#include <QPushButton>
#include <QSlider>
#include <QSplitter>
#include <QTabWidget>
#include <QTemporaryDir>

#include <sys/socket.h>

using sim::Json;

namespace {

// What a client in another process receives. It shuts its end down at once, as one in a pipe does.
// Blocks, so that the GUI thread answers nothing meanwhile.
QByteArrayList exchange(const QString &path, const QByteArray &lines, int replies)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    socket.write(lines);
    while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(15000))
        continue;
    ::shutdown(static_cast<int>(socket.socketDescriptor()), SHUT_WR);
    QByteArray received;
    while (received.count('\n') < replies && socket.waitForReadyRead(15000))
        received += socket.readAll();
    return received.trimmed().split('\n');
}

// Does as is typed, "ui press list 3". Returns the value, or the error.
Json run(const QByteArray &typed)
{
    control::Request request{typed.split(' ')[0].toStdString(), {}};
    for (const QByteArray &word : typed.split(' ').mid(1))
        request.args.push_back(word.toStdString());
    try {
        return control::isUiRequest(request) ? control::runUiRequest(request)
                                             : sim::runRequest(request);
    } catch (const sim::BadRequest &error) {
        return error.what();
    }
}

// A window with a widget of each kind.
struct Window : QSplitter
{
    Window() : QSplitter(Qt::Vertical)
    {
        const char *const names[] = {"button", "disabled", "slider", "list", "combo", "tabs"};
        for (int i = 0; i < count(); ++i)
            widget(i)->setObjectName(QLatin1String(names[i]));
        disabled->setEnabled(false);
        const QStringList items = QString(49, u'\n').split(u'\n'); // 50 of them
        list->addItems(items);
        combo->addItems(items);
        tabs->addTab(new QWidget, "one"_s);
        tabs->addTab(new QWidget, "two"_s);
        resize(400, 500);
    }

    QPushButton *button = new QPushButton("A && &B"_s, this);
    QPushButton *disabled = new QPushButton(this);
    QSlider *slider = new QSlider(this);
    QListWidget *list = new QListWidget(this);
    QComboBox *combo = new QComboBox(this);
    QTabWidget *tabs = new QTabWidget(this);
};

} // namespace

class ControlTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(m_server.start(m_socket), qPrintable(m_server.errorString())); }

    void init()
    {
        m_window = std::make_unique<Window>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    // An error for each, and the next line is served.
    // times | text
    void answersBadLines_data()
    {
        rows({"1 | \xff{", "100000 | [", "3000000 | x", "0 |", "1 | [1]", "1 | {}",
              "1 | {\"verb\": \"get\", \"args\": [1]}"});
    }
    void answersBadLines()
    {
        const QByteArray line = cell(1).toUtf8().repeated(number(0)) + '\n';
        const QByteArrayList replies = exchange(m_socket, line + GET_WIDTH, 2);
        QVERIFY2(replies[0].contains(R"("ok":false)"), replies[0].constData());
        QCOMPARE(replies[1], QByteArray(R"({"ok":true,"value":1024})"));
    }

    void waitsForTheGuiThreadInTurn()
    {
        control::ControlServer impatient(sim::runRequest, std::chrono::milliseconds(100));
        const QString path = m_folder.filePath("impatient.sock"_s);
        QVERIFY(impatient.start(path));
        const QByteArray dump = R"({"verb": "ui", "args": ["dump"]})";
        const QByteArrayList replies = exchange(path, dump + '\n' + GET_WIDTH, 2);
        QVERIFY(replies[0].contains("does not answer") && replies[1].contains("1024"));
        QCoreApplication::processEvents(); // what is left of the request, now without a server
    }

    // request | error
    void refuses_data()
    {
        rows({"fly | no such verb", "set lcd.width | wrong number", "set lcd.width wide | no JSON",
              "get lcd.depth | no such path", "usb push /a | either insert or remove",
              "hotplug insert x /a | CODE must be", "fail Beep | fail OPERATION CODE",
              "delay Beep -1 | MS must be 0", "calls all | calls clear",
              // about widgets
              "ui | ui dump", "ui wave | ui dump", "ui press | wrong number",
              "ui press list -1 | INDEX must be", "ui slide slider x | VALUE must be",
              "ui slide slider 101 | goes from 0 to 99", "ui slide button 1 | is no slider",
              "ui shot /nowhere/shot.png | cannot write", "ui press nobody | there is no nobody",
              "ui press disabled | is disabled", "ui press button 1 | there is no button 1",
              "ui press list 50 | has no row 50", "ui press combo 50 | has no row 50",
              "ui press tabs 2 | has no row 2"});
    }
    void refuses()
    {
        const std::string error = run(cell(0).toUtf8()).dump();
        QVERIFY2(error.find(cell(1).toStdString()) != std::string::npos, error.c_str());
    }

    void dumpsWhatIsShown()
    {
        const Json button = run("ui dump button")[0];
        QVERIFY(button["text"] == "A & B");
        const QPoint corner = m_window->button->pos();
        QVERIFY(button["rect"][0] == corner.x() && button["rect"][1] == corner.y());
        QVERIFY(run("ui dump nobody").empty() && run("ui dump")["children"].size() >= 6);
    }

    void pressesRows_data() { rows({"list 0", "list 49", "combo 3", "combo 49", "tabs 1"}); }
    void pressesRows()
    {
        const QByteArray row = QTest::currentDataTag(); // "list 49"
        QSignalSpy clicks(m_window->list, &QListWidget::itemClicked);
        QVERIFY(run("ui press " + row).is_null());
        const QByteArray object = row.split(' ')[0];
        QTRY_COMPARE(run("ui dump " + object)[0]["index"].get<int>(), row.split(' ')[1].toInt());
        QCOMPARE(clicks.count(), object == "list" ? 1 : 0);
    }

    void tellsWhereAFingerTouches()
    {
        const QRect button(m_window->button->pos(), m_window->button->size());
        const Json point = run("ui where button");
        QCOMPARE(QPoint(point[0], point[1]), button.center());
        QVERIFY(run("ui where tabs 1")[0] > run("ui where tabs 0")[0]);
        const Json way = run("ui way slider 99");
        QVERIFY(way[0] == run("ui way slider 0")[0] && way[1][1] < way[0][1]); // upright
    }

    void twoQuickPressesAreTwoClicks()
    {
        QSignalSpy clicks(m_window->button, &QPushButton::clicked);
        run("ui press button");
        run("ui press button");
        QTRY_COMPARE(clicks.count(), 2);
    }

    void shootsTheScreen()
    {
        QDialog dialog(m_window.get());
        dialog.setStyleSheet("background: red"_s);
        dialog.setGeometry(QRect(m_window->mapToGlobal(QPoint(100, 100)), QSize(50, 50)));
        dialog.show();
        const QString file = m_folder.filePath("shot.png"_s);
        QVERIFY(run("ui shot " + file.toUtf8()).is_null());
        const QImage image(file);
        QCOMPARE(image.size(), QSize(1024, 600));
        QCOMPARE(image.pixelColor(125, 125), QColor(Qt::red));
        QVERIFY(image.pixelColor(90, 90) != QColor(Qt::red));
    }

    void refusesTheEnvironment()
    {
        const QString root = m_folder.filePath("refused"_s);
        qputenv("SYSSET_ROOT", root.toLocal8Bit());
        for (const char *size : {"800", "0x600", "800x", "-1x5", "800x480x2", "99999x1"}) {
            qputenv("SYSSET_LCD", size);
            QVERIFY2(sim::startFromEnvironment() == 2 && !QFile::exists(root), size);
        }
    }

private:
    const QByteArray GET_WIDTH = "{\"verb\": \"get\", \"args\": [\"lcd.width\"]}\n";
    QTemporaryDir m_folder;
    QString m_socket = m_folder.filePath("panel.sock"_s);
    control::ControlServer m_server{sim::runRequest};
    std::unique_ptr<Window> m_window;
};

QTEST_MAIN(ControlTest)
#include "ControlTest.moc"
