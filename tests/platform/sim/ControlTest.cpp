#include "platform/sim/ControlServer.h"
#include "platform/sim/Panel.h"
#include "platform/sim/SimProgram.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QComboBox>
#include <QDialog>
#include <QListWidget>
#include <QLocalSocket>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>

#include <future>
#include <sys/socket.h>

using sim::Json;

namespace {

// What a client in another process sees: it blocks until the reply is there, so it must not run
// on the GUI thread. It says at once that nothing more will come, as a client in a pipe does.
QByteArray exchange(const QString &path, const QByteArray &lines, int replies = 1)
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
    return received;
}

QByteArray request(const std::vector<std::string> &words)
{
    const std::vector<std::string> args(words.begin() + 1, words.end());
    return QByteArray::fromStdString(Json{{"verb", words[0]}, {"args", args}}.dump()) + '\n';
}

std::vector<std::string> split(const char *words)
{
    std::vector<std::string> list;
    for (const QByteArray &word : QByteArray(words).split(' '))
        list.push_back(word.toStdString());
    return list;
}

class Window : public QDialog
{
public:
    Window()
    {
        setObjectName("main"_s);
        resize(400, 500);
        auto *layout = new QVBoxLayout(this);
        const std::pair<const char *, QWidget *> widgets[] = {
            {"button", button}, {"disabled", disabled}, {"slider", slider},
            {"list", list},     {"combo", combo},       {"tabs", tabs}};
        for (const auto &[name, widget] : widgets) {
            widget->setObjectName(QLatin1String(name));
            layout->addWidget(widget);
        }
        disabled->setEnabled(false);
        slider->setRange(1, 100);
        for (int i = 0; i < 50; ++i) {
            list->addItem(QString::number(i));
            combo->addItem(QString::number(i));
        }
        tabs->addTab(new QWidget, "one"_s);
        tabs->addTab(new QWidget, "two"_s);
    }

    QPushButton *button = new QPushButton("A && &B"_s);
    QPushButton *disabled = new QPushButton;
    QSlider *slider = new QSlider(Qt::Horizontal);
    QListWidget *list = new QListWidget;
    QComboBox *combo = new QComboBox;
    QTabWidget *tabs = new QTabWidget;
};

} // namespace

class ControlTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { m_window.reset(); }

    void initTestCase() { QVERIFY2(m_server.start(m_socket), qPrintable(m_server.errorString())); }

    void init()
    {
        m_window = std::make_unique<Window>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    // An error for each, and the next line is served.
    void answersBadLines_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("garbage") << QByteArray("\x00\xff{\n", 4);
        QTest::newRow("deep") << QByteArray(100000, '[') + '\n';
        QTest::newRow("too long") << QByteArray(3 << 20, 'x') + '\n';
        for (const char *line : {"", "[1]", "{}", R"({"verb": "get", "args": [1]})"})
            QTest::newRow(line) << QByteArray(line) + '\n';
        for (const char *words :
             {"fly", "set lcd.width", "set lcd.width wide", "get lcd.depth", "usb push /a",
              "hotplug insert x /a", "fail Beep", "delay Beep -1", "calls all", "ui", "ui wave",
              "ui press", "ui press list -1", "ui slide slider x", "ui slide slider 101",
              "ui slide button 1", "ui shot /nowhere/shot.png"})
            QTest::newRow(words) << request(split(words));
    }
    void answersBadLines()
    {
        QFETCH(QByteArray, line);
        const QByteArrayList replies =
            sendLines(line + request({"get", "lcd.width"}), 2).split('\n');
        QCOMPARE(replies.size(), 3);
        const Json reply = Json::parse(replies[0].toStdString());
        QVERIFY(reply["ok"] == false);
        QVERIFY(!reply["error"].get<std::string>().empty());
        QVERIFY(Json::parse(replies[1].toStdString())["value"] == 1024);
    }

    void dumpsWhatIsShown()
    {
        const Json button = send({"ui", "dump", "button"})["value"][0];
        QVERIFY(button["text"] == "A & B");
        const QPoint corner = m_window->button->pos();
        QVERIFY(button["rect"][0] == corner.x() && button["rect"][1] == corner.y());
        QVERIFY(send({"ui", "dump"})["value"]["children"].size() >= 6);
        QVERIFY(send({"ui", "dump", "nobody"})["value"] == Json::array());
    }

    void pressesRows_data() { rows({"list 0", "list 49", "combo 3", "combo 49", "tabs 1"}); }
    void pressesRows()
    {
        const std::vector<std::string> row = split(QTest::currentDataTag());
        QSignalSpy clicks(m_window->list, &QListWidget::itemClicked);
        QVERIFY(send({"ui", "press", row[0], row[1]})["ok"] == true);
        const auto shown = [&] { return send({"ui", "dump", row[0]})["value"][0]["index"]; };
        QTRY_COMPARE(shown().get<int>(), std::stoi(row[1]));
        QCOMPARE(clicks.count(), row[0] == "list" ? 1 : 0);
    }

    void twoQuickPressesAreTwoClicks()
    {
        QSignalSpy clicks(m_window->button, &QPushButton::clicked);
        sendLines(request({"ui", "press", "button"}) + request({"ui", "press", "button"}), 2);
        QTRY_COMPARE(clicks.count(), 2);
    }

    void refusesPresses()
    {
        const std::array<const char *, 3> cases[] = {
            {"nobody", "0", "there is no nobody"},   {"disabled", "0", "is disabled"},
            {"button", "1", "there is no button 1"}, {"list", "50", "has no row 50"},
            {"combo", "50", "has no row 50"},        {"tabs", "2", "has no row 2"}};
        for (const auto &[object, index, error] : cases) {
            const std::string reply = send({"ui", "press", object, index}).dump();
            QVERIFY2(reply.find(error) != std::string::npos, reply.c_str());
        }
    }

    void shootsTheScreen()
    {
        QDialog dialog(m_window.get());
        dialog.setStyleSheet("background: red"_s);
        dialog.setGeometry(QRect(m_window->mapToGlobal(QPoint(100, 100)), QSize(50, 50)));
        dialog.show();
        const QString file = m_folder.filePath("shot.png"_s);
        QVERIFY(send({"ui", "shot", file.toStdString()})["ok"] == true);
        const QImage image(file);
        QCOMPARE(image.size(), QSize(1024, 600));
        QCOMPARE(image.pixelColor(125, 125), QColor(Qt::red));
        QVERIFY(image.pixelColor(90, 90) != QColor(Qt::red));
    }

    // The GUI thread waits here without running its loop.
    void answersWhileTheGuiThreadIsBusy()
    {
        auto reply = std::async(std::launch::async, [this] {
            return exchange(m_socket, request({"get", "lcd.width"}));
        });
        QCOMPARE(reply.wait_for(std::chrono::seconds(10)), std::future_status::ready);
        QVERIFY(reply.get().contains("1024"));
        sim::ControlServer impatient(std::chrono::milliseconds(100));
        const QString path = m_folder.filePath("impatient.sock"_s);
        QVERIFY(impatient.start(path));
        const QByteArray replies =
            std::async(std::launch::async, [&] {
                return exchange(path, request({"ui", "dump"}) + request({"get", "lcd"}), 2);
            }).get();
        const int refusal = replies.indexOf("the panel does not answer");
        QVERIFY(refusal != -1 && refusal < replies.indexOf("1024")); // not overtaken
        QCoreApplication::processEvents(); // what is left of the request, now without a server
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
    // Lets the GUI thread's loop run until the reply is there.
    QByteArray sendLines(const QByteArray &lines, int replies = 1)
    {
        auto reply = std::async(std::launch::async,
                                [=, path = m_socket] { return exchange(path, lines, replies); });
        while (reply.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents,
                                            5);
        return reply.get();
    }
    Json send(const std::vector<std::string> &words)
    {
        return Json::parse(sendLines(request(words)).toStdString(), nullptr, false);
    }

    QTemporaryDir m_folder;
    QString m_socket = m_folder.filePath("panel.sock"_s);
    sim::ControlServer m_server;
    std::unique_ptr<Window> m_window;
};

QTEST_MAIN(ControlTest)
#include "ControlTest.moc"
