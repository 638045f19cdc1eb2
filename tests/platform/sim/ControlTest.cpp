#include "platform/sim/ControlServer.h"
#include "platform/sim/Panel.h"
#include "platform/sim/SimProgram.h"

#include <QComboBox>
#include <QDialog>
#include <QListWidget>
#include <QLocalSocket>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>
#include <QVBoxLayout>

#include <future>

using sim::Json;

namespace {

// What a client in another process sees: it blocks until the reply is there, so it must not run
// on the GUI thread.
QByteArray exchange(const QString &path, const QByteArray &lines, int replies = 1)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    socket.write(lines);
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

class Window : public QDialog
{
public:
    Window()
    {
        setObjectName(QStringLiteral("main"));
        resize(400, 500);
        auto *layout = new QVBoxLayout(this);
        for (QWidget *widget :
             std::initializer_list<QWidget *>{button, disabled, slider, list, combo, tabs})
            layout->addWidget(widget);
        button->setObjectName(QStringLiteral("button"));
        disabled->setObjectName(QStringLiteral("disabled"));
        disabled->setEnabled(false);
        slider->setObjectName(QStringLiteral("slider"));
        slider->setRange(1, 100);
        list->setObjectName(QStringLiteral("list"));
        combo->setObjectName(QStringLiteral("combo"));
        tabs->setObjectName(QStringLiteral("tabs"));
        for (int i = 0; i < 50; ++i) {
            list->addItem(QStringLiteral("row %1").arg(i));
            combo->addItem(QStringLiteral("choice %1").arg(i));
        }
        for (const char *title : {"one", "two"})
            tabs->addTab(new QWidget, QString::fromLatin1(title));
    }

    QPushButton *button = new QPushButton(QStringLiteral("A && &B"));
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
    void initTestCase();
    void init();
    void cleanup() { m_window.reset(); }

    void answersBadLines_data();
    void answersBadLines();
    void answersInOrder();
    void dumpsWhatIsShown();
    void pressesRows_data();
    void pressesRows();
    void twoQuickPressesAreTwoClicks();
    void refusesPresses_data();
    void refusesPresses();
    void slidesToTheValue_data();
    void slidesToTheValue();
    void worksThroughAModalDialog();
    void shootsTheScreen();
    void answersWhileTheGuiThreadIsBusy();
    void refusesASecondProgram();
    void refusesTheEnvironment_data();
    void refusesTheEnvironment();

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
    QString m_socket = m_folder.filePath(QStringLiteral("panel.sock"));
    sim::ControlServer m_server;
    std::unique_ptr<Window> m_window;
};

void ControlTest::initTestCase()
{
    QVERIFY2(m_server.start(m_socket), qPrintable(m_server.errorString()));
}

void ControlTest::init()
{
    m_window = std::make_unique<Window>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void ControlTest::answersBadLines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray("\n");
    QTest::newRow("garbage") << QByteArray("\x00\xff{\n", 4);
    QTest::newRow("no object") << QByteArray("[1]\n");
    QTest::newRow("no verb") << QByteArray("{}\n");
    QTest::newRow("args no texts") << QByteArray("{\"verb\": \"get\", \"args\": [1]}\n");
    QTest::newRow("deep") << QByteArray(100000, '[') + '\n';
    QTest::newRow("endless") << QByteArray(1100 * 1024, 'x');
    for (const std::vector<std::string> &words :
         std::vector<std::vector<std::string>>{{"fly"},
                                               {"set", "lcd.width"},
                                               {"set", "lcd.width", "wide"},
                                               {"get", "lcd.depth"},
                                               {"usb", "push", "/a"},
                                               {"hotplug", "insert", "x", "/a"},
                                               {"fail", "Beep"},
                                               {"fail", "Beep", "1", "0"},
                                               {"delay", "Beep", "-1"},
                                               {"calls", "all"},
                                               {"ui"},
                                               {"ui", "wave"},
                                               {"ui", "press"},
                                               {"ui", "slide", "slider", "x"}})
        QTest::newRow(request(words).constData()) << request(words);
}

void ControlTest::answersBadLines()
{
    QFETCH(QByteArray, line);
    const Json reply = Json::parse(sendLines(line).toStdString());
    QVERIFY(reply["ok"] == false);
    QVERIFY(!reply["error"].get<std::string>().empty());
}

// A request for the GUI thread does not let the next of its connection overtake.
void ControlTest::answersInOrder()
{
    const QByteArray replies =
        sendLines(request({"ui", "dump", "button"}) + request({"get", "lcd.width"}), 2);
    QVERIFY(Json::parse(replies.split('\n')[0].toStdString())["value"].is_array());
    QVERIFY(Json::parse(replies.split('\n')[1].toStdString())["value"] == 1024);
}

void ControlTest::dumpsWhatIsShown()
{
    const Json button = send({"ui", "dump", "button"})["value"][0];
    QVERIFY(button["text"] == "A & B");
    QVERIFY(button["visible"] == true);
    const QPoint corner = m_window->button->pos();
    QVERIFY(button["rect"][0] == corner.x() && button["rect"][1] == corner.y());
    const Json tree = send({"ui", "dump"})["value"];
    QVERIFY(tree["name"] == "main");
    QVERIFY(tree["children"].size() >= 6);
    QVERIFY(send({"ui", "dump", "nobody"})["value"] == Json::array());
}

void ControlTest::pressesRows_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<QByteArray>("index");
    for (const char *row : {"0", "3", "49"}) {
        QTest::newRow(qPrintable(QString::asprintf("list %s", row)))
            << QByteArray("list") << QByteArray(row);
        QTest::newRow(qPrintable(QString::asprintf("combo %s", row)))
            << QByteArray("combo") << QByteArray(row);
    }
    QTest::newRow("tabs 1") << QByteArray("tabs") << QByteArray("1");
}

void ControlTest::pressesRows()
{
    QFETCH(QByteArray, object);
    QFETCH(QByteArray, index);
    QSignalSpy clicks(m_window->list, &QListWidget::itemClicked);
    QVERIFY(send({"ui", "press", object.data(), index.data()})["ok"] == true);
    const auto shown = [&] { return send({"ui", "dump", object.data()})["value"][0]["index"]; };
    QTRY_VERIFY(shown() == index.toInt());
    QCOMPARE(clicks.count(), object == "list" ? 1 : 0);
}

void ControlTest::twoQuickPressesAreTwoClicks()
{
    QSignalSpy clicks(m_window->button, &QPushButton::clicked);
    sendLines(request({"ui", "press", "button"}) + request({"ui", "press", "button"}), 2);
    QTRY_COMPARE(clicks.count(), 2);
}

void ControlTest::refusesPresses_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<QByteArray>("index");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("unknown") << QByteArray("nobody") << QByteArray("0")
                             << QByteArray("there is no nobody");
    QTest::newRow("disabled") << QByteArray("disabled") << QByteArray("0")
                              << QByteArray("is disabled");
    QTest::newRow("second") << QByteArray("button") << QByteArray("1")
                            << QByteArray("there is no button 1");
    QTest::newRow("row") << QByteArray("list") << QByteArray("50") << QByteArray("has no row 50");
    QTest::newRow("choice") << QByteArray("combo") << QByteArray("50")
                            << QByteArray("has no row 50");
    QTest::newRow("tab") << QByteArray("tabs") << QByteArray("2") << QByteArray("has no row 2");
    QTest::newRow("negative") << QByteArray("list") << QByteArray("-1") << QByteArray("0 or more");
}

void ControlTest::refusesPresses()
{
    QFETCH(QByteArray, object);
    QFETCH(QByteArray, index);
    QFETCH(QByteArray, error);
    const Json reply = send({"ui", "press", object.data(), index.data()});
    QVERIFY2(reply["error"].get<std::string>().find(error.data()) != std::string::npos,
             reply.dump().c_str());
}

void ControlTest::slidesToTheValue_data()
{
    QTest::addColumn<int>("value");
    for (const int value : {1, 37, 100})
        QTest::addRow("%d", value) << value;
}

void ControlTest::slidesToTheValue()
{
    QFETCH(int, value);
    QSignalSpy moves(m_window->slider, &QSlider::sliderMoved);
    m_window->slider->setValue(50);
    QVERIFY(send({"ui", "slide", "slider", std::to_string(value)})["ok"] == true);
    QTRY_COMPARE(m_window->slider->value(), value);
    QVERIFY(!moves.isEmpty());
    QTRY_VERIFY(!m_window->slider->isSliderDown());
    QVERIFY(send({"ui", "slide", "slider", "101"})["ok"] == false);
    QVERIFY(send({"ui", "slide", "button", "1"})["ok"] == false);
}

// The dialog's loop runs while the socket is asked, the button behind it cannot be pressed, and
// the dialog's own can.
void ControlTest::worksThroughAModalDialog()
{
    QDialog dialog(m_window.get());
    QPushButton close(QStringLiteral("close"), &dialog);
    close.setObjectName(QStringLiteral("close"));
    connect(&close, &QPushButton::clicked, &dialog, &QDialog::accept);
    auto refusal = std::async(std::launch::async, [this] {
        const auto ask = [this](const std::vector<std::string> &words) {
            return Json::parse(exchange(m_socket, request(words)).toStdString());
        };
        while (ask({"ui", "dump", "close"})["value"][0]["visible"] != true)
            ;
        const Json behind = ask({"ui", "press", "button"});
        ask({"ui", "press", "close"});
        return behind.value("error", std::string());
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(refusal.get(), std::string("button is behind a modal dialog"));
}

void ControlTest::shootsTheScreen()
{
    QDialog dialog(m_window.get());
    dialog.setStyleSheet(QStringLiteral("background: red"));
    dialog.setGeometry(QRect(m_window->mapToGlobal(QPoint(100, 100)), QSize(50, 50)));
    dialog.show();
    const QString file = m_folder.filePath(QStringLiteral("shot.png"));
    QVERIFY(send({"ui", "shot", file.toStdString()})["ok"] == true);
    const QImage image(file);
    QCOMPARE(image.size(), QSize(1024, 600));
    QCOMPARE(image.pixelColor(125, 125), QColor(Qt::red));
    QVERIFY(image.pixelColor(90, 90) != QColor(Qt::red));
    QVERIFY(send({"ui", "shot", "/nowhere/shot.png"})["ok"] == false);
}

// The GUI thread waits here without running its loop.
void ControlTest::answersWhileTheGuiThreadIsBusy()
{
    auto reply = std::async(std::launch::async, [this] {
        return exchange(m_socket, request({"get", "lcd.width"}));
    });
    QCOMPARE(reply.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    QVERIFY(reply.get().contains("1024"));
    sim::ControlServer impatient(std::chrono::milliseconds(100));
    const QString path = m_folder.filePath(QStringLiteral("impatient.sock"));
    QVERIFY(impatient.start(path));
    auto late = std::async(std::launch::async, [&] {
        return exchange(path, request({"ui", "dump"}) + request({"get", "lcd.width"}), 2);
    });
    const QByteArray replies = late.get();
    QVERIFY(replies.contains("the panel does not answer"));
    QVERIFY(replies.contains("1024"));
    QCoreApplication::processEvents(); // what is left of the request, now without a server
}

void ControlTest::refusesTheEnvironment_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("value");
    for (const char *size : {"800", "0x600", "800x", "-1x5", "800x480x2", "99999x1"})
        QTest::newRow(size) << QByteArray("SYSSET_LCD") << QByteArray(size);
    QTest::newRow("scenario") << QByteArray("SYSSET_SCENARIO") << QByteArray("nowhere");
}

void ControlTest::refusesTheEnvironment()
{
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, value);
    const QString root = m_folder.filePath(QStringLiteral("refused"));
    qputenv("SYSSET_ROOT", root.toLocal8Bit());
    qputenv(variable, value);
    QCOMPARE(sim::startFromEnvironment(), 2);
    QVERIFY(!QFile::exists(root));
    qunsetenv(variable);
}

void ControlTest::refusesASecondProgram()
{
    qputenv("SYSSET_ROOT", m_folder.path().toLocal8Bit());
    QCOMPARE(sim::startFromEnvironment(), 0);
    QCOMPARE(sim::startFromEnvironment(), 1);
}

QTEST_MAIN(ControlTest)
#include "ControlTest.moc"
