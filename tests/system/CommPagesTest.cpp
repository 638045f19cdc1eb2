#include "platform/sim/Panel.h"
#include "system/CommSetting.h"
#include "system/CommuniCation.h"
#include "tests/support/Dialogs.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace {

QString lineText(const QWidget *window, const QString &name)
{
    return window->findChild<QLineEdit *>(name)->text();
}

void press(const QWidget *window, const QString &name)
{
    auto *target = window->findChild<QWidget *>(name);
    const int clicks = sim::panel().get("buzzer.opens").get<int>();
    QTest::mouseClick(target, Qt::LeftButton);
    if (target->isEnabled())
        QVERIFY(sim::panel().get("buzzer.opens").get<int>() > clicks);
}

// Presses the buttons, one after the other, of the dialog that opens next.
void pressInDialog(const QStringList &buttons)
{
    for (const QString &button : buttons) {
        whenOpen("CommuniCation", [button](const QWidget *dialog) {
            press(dialog, button);
            return true;
        });
    }
}

QString words(unsigned int base)
{
    QStringList texts;
    for (unsigned int i = 0; i < COM_FIELDS; ++i)
        texts << QString::fromStdString(
            sim::panel().get("words." + std::to_string(base + i)).dump());
    return texts.join(QLatin1Char(' '));
}

void setWord(unsigned int address, const sim::Json &word)
{
    sim::panel().set("words." + std::to_string(address), word);
}

constexpr unsigned int FIRST = 10061;
const QString FIRST_WORDS = "2 3 8 1 0 20 100 3 2 1 1"_s;

} // namespace

Q_DECLARE_METATYPE(sim::Json)

class CommPagesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void stepsThroughPortsInUse();
    void isDisabledWithoutPorts();
    void showsNoFieldsBeforeItHasLists();
    void setsStation_data();
    void setsStation();
    void writesWhatTheDialogSaves_data();
    void writesWhatTheDialogSaves();
    void writesNothingThatItHasNotRead();
    void stepsAField_data();
    void stepsAField();
    void fieldsTakeTheKeyboard();
    void offersFreeConnections_data();
    void offersFreeConnections();

private:
    bool saysNotSaved() { return m_page->findChild<QLabel *>("lab_NotSaved"_s)->isVisible(); }

    ComParamLists m_lists;
    std::unique_ptr<CommSetting> m_page;
};

void CommPagesTest::init()
{
    sim::panel().reset();
    listSeralType.clear();
    m_page = std::make_unique<CommSetting>();
    m_page->retranslate();
    m_page->resize(640, 390);
    m_page->show();
}

void CommPagesTest::stepsThroughPortsInUse()
{
    for (const unsigned int base : {10072U, 10083U, 10120U}) // one word is enough
        setWord(base + COM_DEVICE_STATION, 1);
    m_page->init(&m_lists);
    QString shown = lineText(m_page.get(), "line_ComNum"_s);
    for (const char *button : {"btn_ComL", "btn_ComR", "btn_ComR", "btn_ComR", "btn_ComR",
                               "btn_ComR", "btn_ComR", "btn_ComR"}) {
        press(m_page.get(), QLatin1String(button));
        shown += QLatin1Char(' ') + lineText(m_page.get(), "line_ComNum"_s);
    }
    QCOMPARE(shown, "COM1-1 COM3 COM1-1 COM1-2 COM1-3 COM2-1 COM3 COM1-1 COM1-2"_s);
    QCOMPARE(lineText(m_page.get(), "line_SerialCommiation"_s), "RS485_1,115200,8,1,EVEN"_s);
    QCOMPARE(lineText(m_page.get(), "line_TimeCommiation"_s), "50,500,3,5"_s);
    QCOMPARE(lineText(m_page.get(), "line_HmiStation"_s), "1"_s);
    QCOMPARE(lineText(m_page.get(), "line_StandStation"_s), "2"_s);

    for (unsigned int i = 0; i < COM_FIELDS; ++i)
        setWord(FIRST + i, 0);
    for (const char *step : {"btn_ComL COM3", "btn_ComR COM1-2"}) {
        m_page->init(&m_lists); // COM1-1 comes first, though not in use
        QCOMPARE(lineText(m_page.get(), "line_ComNum"_s), "COM1-1"_s);
        press(m_page.get(), QLatin1String(step).left(8));
        QCOMPARE(lineText(m_page.get(), "line_ComNum"_s), QString(QLatin1String(step).mid(9)));
    }
}

void CommPagesTest::isDisabledWithoutPorts()
{
    sim::panel().fail("backstage.AddrRead", -1);
    m_page->init(&m_lists);
    QVERIFY(!m_page->isEnabled() && listSeralType.isEmpty());
    press(m_page.get(), "line_HmiStation"_s); // would not return from an open keyboard
    sim::panel().clearFailures();
    m_page->init(&m_lists);
    QVERIFY(m_page->isEnabled());
}

void CommPagesTest::showsNoFieldsBeforeItHasLists()
{
    listSeralType << "COM3"_s;
    press(m_page.get(), "btn_ComR"_s);
    QCOMPARE(lineText(m_page.get(), "line_ComNum"_s), "COM3"_s);
    QCOMPARE(lineText(m_page.get(), "line_SerialCommiation"_s), "NULL,1200,0,0,NONE"_s);
    press(m_page.get(), "btn_CommunIndetail"_s); // would not return from an open dialog
    typeOnKeyboard("7\n"_s);
    press(m_page.get(), "line_HmiStation"_s);
    QCOMPARE(words(10083), "0 0 0 0 0 0 0 0 0 0 0"_s);
}

void CommPagesTest::setsStation_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<sim::Json>("retries"); // word before it is typed
    QTest::addColumn<QString>("after");
    const auto row = [](const char *name, const QString &field, const QString &keys,
                        const sim::Json &retries, const QString &after) {
        QTest::newRow(name) << field << keys << retries << after;
    };
    row("own", "line_HmiStation"_s, "255\n"_s, 3, "2 3 8 1 0 20 100 3 2 255 1"_s);
    row("device", "line_StandStation"_s, "0\n"_s, 3, "2 3 8 1 0 20 100 3 2 1 0"_s);
    row("too large", "line_HmiStation"_s, "256\n\x1b"_s, 3, "2 3 8 1 0 20 100 3 2 1 1"_s);
    row("changed by others", "line_HmiStation"_s, "9\n"_s, 4, "2 3 8 1 0 20 100 4 2 9 1"_s);
    row("not readable", "line_HmiStation"_s, "9\n"_s, nullptr, "2 3 8 1 0 20 100 null 2 1 1"_s);
}

void CommPagesTest::setsStation()
{
    QFETCH(QString, field);
    QFETCH(QString, keys);
    QFETCH(sim::Json, retries);
    m_page->init(&m_lists);
    setWord(FIRST + COM_RETRIES, retries);
    typeOnKeyboard(keys);
    press(m_page.get(), field);
    QTEST(words(FIRST), "after");
}

void CommPagesTest::writesWhatTheDialogSaves_data()
{
    QTest::addColumn<QStringList>("presses"); // on the page, then in the dialog
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("shown"); // the summaries
    const auto row = [](const char *name, const QString &presses, const QString &after,
                        const char *shown) {
        QTest::newRow(name) << presses.split(QLatin1Char(' ')) << after
                            << QString::fromLatin1(shown);
    };
    row("serial", "btn_CommunIndetail btn_Communication_L btn_Parity_R btn_StopBits_R btn_Save"_s,
        "0 3 8 2 1 20 100 3 2 1 1"_s, "RS232,9600,8,2,ODD 20,100,3,2");
    row("time-outs", "btn_TimeOutIndetail btn_WaitTimeOut_R btn_RetryTimeOut_L btn_Save"_s,
        "2 3 8 1 0 30 100 3 1 1 1"_s, "RS422,9600,8,1,NONE 30,100,3,1");
    row("left", "btn_TimeOutIndetail btn_WaitTimeOut_R btn_Canl"_s, FIRST_WORDS,
        "RS422,9600,8,1,NONE 20,100,3,2");
    // Eighth behind 9600 stands the rate that the codec has with blanks alone.
    row("refused",
        "btn_CommunIndetail btn_Parity_R"_s + " btn_BaudRate_R"_s.repeated(8) + " btn_Save"_s,
        FIRST_WORDS, "RS422,9600,8,1,NONE 20,100,3,2");
}

// On a page that is too narrow for its summaries.
void CommPagesTest::writesWhatTheDialogSaves()
{
    QFETCH(QStringList, presses);
    m_page->resize(300, 390);
    m_page->init(&m_lists);
    QVERIFY(lineText(m_page.get(), "line_SerialCommiation"_s).endsWith(QChar(0x2026)));
    pressInDialog(presses.mid(1));
    press(m_page.get(), presses.first());
    QTEST(words(FIRST), "after");
    QCOMPARE(saysNotSaved(), QLatin1String(QTest::currentDataTag()) == QLatin1String("refused"));
    m_page->resize(640, 390);
    QTEST(lineText(m_page.get(), "line_SerialCommiation"_s) + QLatin1Char(' ') +
              lineText(m_page.get(), "line_TimeCommiation"_s),
          "shown");
}

// Words that the runtime gave too late would be overwritten with 0.
void CommPagesTest::writesNothingThatItHasNotRead()
{
    setWord(FIRST + COM_BAUD, 11);
    setWord(FIRST + COM_WAIT_TIMEOUT, nullptr);
    m_page->init(&m_lists);
    QCOMPARE(lineText(m_page.get(), "line_TimeCommiation"_s), "0,0,0,0"_s);
    setWord(FIRST + COM_WAIT_TIMEOUT, 20);
    pressInDialog({"btn_Parity_R"_s, "btn_Save"_s});
    press(m_page.get(), "btn_CommunIndetail"_s);
    QCOMPARE(words(FIRST), "2 11 8 1 0 20 100 3 2 1 1"_s);
    QCOMPARE(lineText(m_page.get(), "line_TimeCommiation"_s), "20,100,3,2"_s);
    QVERIFY(saysNotSaved());
    // Now it has; the white space in front of the rate goes back with it.
    pressInDialog({"btn_Parity_R"_s, "btn_Save"_s});
    press(m_page.get(), "btn_CommunIndetail"_s);
    QCOMPARE(words(FIRST), "2 11 8 1 1 20 100 3 2 1 1"_s);
    QCOMPARE(lineText(m_page.get(), "line_SerialCommiation"_s), "RS422,500000,8,1,ODD"_s);
    QVERIFY(!saysNotSaved());
}

void CommPagesTest::stepsAField_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("steps"); // from, to the left, to the right
    const auto row = [](const char *name, ComField field, const char *steps) {
        QTest::newRow(name) << int(field) << QString::fromLatin1(steps);
    };
    row("Communication", COM_CONNECTION, "RS232/RS485_1/RS422|NULL/RS485_1/RS232");
    row("BaudRate", COM_BAUD,
        "4000000/3500000/1200|1200/4000000/2400|460800/230400/500000|?9600/4000000/1200|"
        "\t\t\t\t\t\t  500000/4000000/1200");
    row("ByteSize", COM_DATA_BITS, "8/7/7|7/8/8|0/8/8|65535/7/7");
    row("StopBits", COM_STOP_BITS, "2/1/1|1/2/2|/2/1");
    row("Parity", COM_PARITY, "NONE/Mark/ODD|Mark/SPACE/NONE|mark/Mark/NONE");
    row("WaitTimeOut", COM_WAIT_TIMEOUT, "995/985/1000|5/0/15|ten/0/10");
    row("ReadTimeOut", COM_READ_TIMEOUT, "1000/990/1000|2147483647/1000/1000");
    row("RetryTime", COM_RETRIES, "10/9/10|0/0/1");
    row("RetryTimeOut", COM_RETRY_TIMEOUT, "20/19/20|-2147483648/0/0");
}

void CommPagesTest::stepsAField()
{
    QFETCH(int, field);
    QFETCH(QString, steps);
    const QString name = QLatin1String(QTest::currentDataTag());
    sim::panel().set("machine.sn", nullptr);
    for (const QString &step : steps.split(QLatin1Char('|'))) {
        const QStringList texts = step.split(QLatin1Char('/'));
        for (const auto &[button, expected] :
             {std::pair{"btn_%1_L"_s, texts[1]}, std::pair{"btn_%1_R"_s, texts[2]}}) {
            CommuniCation dialog(nullptr);
            dialog.prepare({"COM3"_s, QString(field, QLatin1Char(',')) + texts[0]}, {});
            dialog.selectPage(field / COM_WAIT_TIMEOUT * 7); // all but 0 is the second page
            dialog.show();
            press(&dialog, button.arg(name));
            QCOMPARE(lineText(&dialog, "line_"_s + name), expected);
        }
    }
}

// Each with a number out of its range first, which the keyboard does not give away.
void CommPagesTest::fieldsTakeTheKeyboard()
{
    m_page->init(&m_lists);
    for (const auto &[button, edits] :
         {std::pair{"btn_CommunIndetail"_s, "line_ByteSize 9\n\b7\n line_StopBits 3\n\b2\n"_s},
          std::pair{"btn_TimeOutIndetail"_s, "line_WaitTimeOut 1000\n line_ReadTimeOut 1001\n\b0\n "
                                             "line_RetryTime 11\n\b0\n "
                                             "line_RetryTimeOut 21\n\b0\n"_s}}) {
        const QStringList parts = edits.split(QLatin1Char(' '));
        for (int i = 0; i < parts.size(); i += 2) {
            // Queued, for the press does not return before the keyboard has closed.
            whenOpen("CommuniCation", [name = parts[i]](const QWidget *dialog) {
                auto *line = dialog->findChild<QLineEdit *>(name);
                QTimer::singleShot(0, line, [line] { QTest::mouseClick(line, Qt::LeftButton); });
                return true;
            });
            typeOnKeyboard(parts[i + 1]);
        }
        pressInDialog({"btn_Save"_s});
        press(m_page.get(), button);
    }
    QCOMPARE(words(FIRST), "2 3 7 2 0 1000 1000 10 20 1 1"_s);
}

void CommPagesTest::offersFreeConnections_data()
{
    QTest::addColumn<QString>("serialNumber");
    QTest::addColumn<QString>("own");
    QTest::addColumn<QString>("ports"); // name and connection of those in use
    QTest::addColumn<QString>("offered");
    const auto row = [](const char *serialNumber, const QString &own, const QString &ports,
                        const QString &offered) {
        QTest::addRow("%s %s in %s", serialNumber, qPrintable(own), qPrintable(ports))
            << QString::fromLatin1(serialNumber) << own << ports << offered;
    };
    for (const char *longer : {"A1", "S", "K2", "U3"})
        row(longer, "COM3 RS232"_s, "COM3 RS232"_s, "RS232 RS422 RS485_1 RS485_2"_s);
    for (const char *shorter : {"", "B1", "a1", "1A"})
        row(shorter, "COM3 RS232"_s, "COM3 RS232"_s, "RS232 RS422 RS485_1"_s);
    row("A", "COM1-1 RS232"_s, "COM1-1 RS232,COM1-2 RS422,COM1-3 RS485_2"_s, "RS232 RS485_1"_s);
    row("A", "COM2-1 RS232"_s, "COM1-2 RS422,COM3 RS485_1"_s, "RS232 RS422 RS485_1 RS485_2"_s);
    row("A", "COM1-1 RS422"_s, "COM1-2 RS422"_s, "RS232 RS422 RS485_1 RS485_2"_s); // its own stays
    row("A", "COM1-1 NULL"_s, "COM1-2 NULL,COM1-3 ?9"_s, "RS232 RS422 RS485_1 RS485_2"_s);
}

void CommPagesTest::offersFreeConnections()
{
    QFETCH(QString, serialNumber);
    QFETCH(QString, own);
    QFETCH(QString, ports);
    sim::panel().set("machine.sn", serialNumber.toStdString());
    const auto port = [](const QString &text) {
        return ComPort{text.section(QLatin1Char(' '), 0, 0), text.section(QLatin1Char(' '), 1)};
    };
    std::vector<ComPort> inUse;
    for (const QString &text : ports.split(QLatin1Char(',')))
        inUse.push_back(port(text));
    CommuniCation dialog(nullptr);
    dialog.show();
    dialog.prepare(port(own), inUse);
    dialog.findChild<QLineEdit *>("line_Communication"_s)->clear();
    QStringList offered;
    for (;;) {
        press(&dialog, "btn_Communication_R"_s);
        const QString next = lineText(&dialog, "line_Communication"_s);
        if (offered.contains(next))
            break;
        offered << next;
    }
    QTEST(offered.join(QLatin1Char(' ')), "offered");
}

QTEST_MAIN(CommPagesTest)
#include "CommPagesTest.moc"
