#include "platform/sim/Panel.h"
#include "system/CommSetting.h"
#include "system/CommuniCation.h"
#include "tests/support/Dialogs.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

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

// Touches fields of the dialog that opens next, types into each, and saves.
void touchInDialog(std::initializer_list<std::pair<const char *, const char *>> edits)
{
    for (const auto &[name, keys] : edits) {
        // Queued, for the press does not return before the keyboard has closed.
        whenOpen("CommuniCation", [field = QLatin1String(name)](const QWidget *dialog) {
            auto *line = dialog->findChild<QLineEdit *>(field);
            QTimer::singleShot(0, line, [line] { QTest::mouseClick(line, Qt::LeftButton); });
            return true;
        });
        typeOnKeyboard(QLatin1String(keys));
    }
    pressInDialog({"btn_Save"_s});
}

QString words(unsigned int base)
{
    QStringList texts;
    for (unsigned int i = 0; i < COM_FIELDS; ++i)
        texts << QString::fromStdString(
            sim::panel().get("words." + std::to_string(base + i)).dump());
    return texts.join(u' ');
}

void setWord(unsigned int address, const sim::Json &word)
{
    sim::panel().set("words." + std::to_string(address), word);
}

constexpr unsigned int FIRST = 10061;

} // namespace

class CommPagesTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        sim::panel().reset();
        listSeralType.clear();
        m_page = std::make_unique<CommSetting>();
        m_page->retranslate();
        m_page->resize(640, 390);
        m_page->show();
    }

    void stepsThroughPortsInUse()
    {
        for (const unsigned int base : {10072U, 10083U, 10120U}) // one word is enough
            setWord(base + COM_DEVICE_STATION, 1);
        m_page->init(&m_lists);
        QString ports = shown("line_ComNum");
        for (const QChar step : "LRRRRRRR"_s) {
            press(m_page.get(), "btn_Com"_s + step);
            ports += u' ' + shown("line_ComNum");
        }
        QCOMPARE(ports, "COM1-1 COM3 COM1-1 COM1-2 COM1-3 COM2-1 COM3 COM1-1 COM1-2"_s);
        QCOMPARE(summaries(), "RS485_1,115200,8,1,EVEN 50,500,3,5"_s);
        QCOMPARE(shown("line_HmiStation") + shown("line_StandStation"), "12"_s);

        for (unsigned int i = 0; i < COM_FIELDS; ++i)
            setWord(FIRST + i, 0);
        for (const auto &[button, port] :
             {std::pair{"btn_ComL"_s, "COM3"_s}, {"btn_ComR"_s, "COM1-2"_s}}) {
            m_page->init(&m_lists); // COM1-1 comes first, though not in use
            QCOMPARE(shown("line_ComNum"), "COM1-1"_s);
            press(m_page.get(), button);
            QCOMPARE(shown("line_ComNum"), port);
        }
    }

    void isDisabledWithoutPorts()
    {
        sim::panel().fail("backstage.AddrRead", -1);
        m_page->init(&m_lists);
        QVERIFY(!m_page->isEnabled() && listSeralType.isEmpty());
        press(m_page.get(), "line_HmiStation"_s); // would not return from an open keyboard
        sim::panel().clearFailures();
        m_page->init(&m_lists);
        QVERIFY(m_page->isEnabled());
    }

    void showsNoFieldsBeforeItHasLists()
    {
        listSeralType << "COM3"_s;
        press(m_page.get(), "btn_ComR"_s);
        QCOMPARE(shown("line_ComNum"), "COM3"_s);
        QCOMPARE(summaries(), "NULL,1200,0,0,NONE "_s);
        press(m_page.get(), "btn_CommunIndetail"_s); // would not return from an open dialog
        typeOnKeyboard("7\n"_s);
        press(m_page.get(), "line_HmiStation"_s);
        QCOMPARE(words(10083), "0 0 0 0 0 0 0 0 0 0 0"_s);
    }

    // field | keys | retry word when they are typed, 3 before | the port then
    void setsStation_data()
    {
        rows({"line_HmiStation | 255 | 3 | 2 3 8 1 0 20 100 3 2 255 1",
              "line_StandStation | 0 | 3 | 2 3 8 1 0 20 100 3 2 1 0",
              "line_HmiStation | 256 | 3 | 2 3 8 1 0 20 100 3 2 1 1",
              "line_HmiStation | 9 | 4 | 2 3 8 1 0 20 100 4 2 9 1",
              "line_HmiStation | 9 | null | 2 3 8 1 0 20 100 null 2 1 1"});
    }
    void setsStation()
    {
        m_page->init(&m_lists);
        setWord(FIRST + COM_RETRIES, sim::Json::parse(cell(2).toStdString()));
        typeOnKeyboard(cell(1) + (cell(1) == "256"_s ? "\n\x1b"_s : "\n"_s));
        press(m_page.get(), cell(0));
        QCOMPARE(words(FIRST), cell(3));
    }

    // button of the page | buttons of the dialog | the port then | the page then
    void writesWhatTheDialogSaves_data()
    {
        rows({"btn_CommunIndetail | btn_Communication_L btn_Parity_R btn_StopBits_R btn_Save | "
              "0 3 8 2 1 20 100 3 2 1 1 | RS232,9600,8,2,ODD 20,100,3,2",
              "btn_TimeOutIndetail | btn_WaitTimeOut_R btn_Canl | "
              "2 3 8 1 0 20 100 3 2 1 1 | RS422,9600,8,1,NONE 20,100,3,2",
              // Eighth behind 9600 stands the rate that the codec has with blanks alone.
              "btn_CommunIndetail | btn_Parity_R btn_BaudRate_R btn_BaudRate_R btn_BaudRate_R "
              "btn_BaudRate_R btn_BaudRate_R btn_BaudRate_R btn_BaudRate_R btn_BaudRate_R "
              "btn_Save | 2 3 8 1 0 20 100 3 2 1 1 | RS422,9600,8,1,NONE 20,100,3,2 | baud rate"});
    }
    // On a page that is too narrow for its summaries.
    void writesWhatTheDialogSaves()
    {
        m_page->resize(300, 390);
        m_page->init(&m_lists);
        QVERIFY(shown("line_SerialCommiation").endsWith(QChar(0x2026)));
        pressInDialog(cell(1).split(u' '));
        press(m_page.get(), cell(0));
        QCOMPARE(words(FIRST), cell(2));
        QVERIFY(saysWhyNotSaved(cellOrEmpty(4)));
        m_page->resize(640, 390);
        QCOMPARE(summaries(), cell(3));
    }

    // Words that the runtime gave too late would be overwritten with 0.
    void writesNothingThatItHasNotRead()
    {
        setWord(FIRST + COM_BAUD, 11);
        setWord(FIRST + COM_WAIT_TIMEOUT, nullptr);
        m_page->init(&m_lists);
        QCOMPARE(shown("line_TimeCommiation"), "0,0,0,0"_s);
        setWord(FIRST + COM_WAIT_TIMEOUT, 20);
        pressInDialog({"btn_Parity_R"_s, "btn_Save"_s});
        press(m_page.get(), "btn_CommunIndetail"_s);
        QCOMPARE(words(FIRST), "2 11 8 1 0 20 100 3 2 1 1"_s);
        QCOMPARE(summaries(), "RS422,500000,8,1,NONE 20,100,3,2"_s);
        QVERIFY(saysWhyNotSaved("not all settings were read"_s));
        // Now it has; the white space in front of the rate goes back with it.
        pressInDialog({"btn_Parity_R"_s, "btn_Save"_s});
        press(m_page.get(), "btn_CommunIndetail"_s);
        QCOMPARE(words(FIRST), "2 11 8 1 1 20 100 3 2 1 1"_s);
        QCOMPARE(summaries(), "RS422,500000,8,1,ODD 20,100,3,2"_s);
        QVERIFY(saysWhyNotSaved(QString()));
    }

    // field | its number | text, with the left button, with the right one
    void stepsAField_data()
    {
        rows({"Communication | 0 | RS232/RS485_1/RS422 NULL/RS485_1/RS232",
              ("BaudRate | 1 | 4000000/3500000/1200 1200/4000000/2400 460800/230400/500000 "
               "?9600/4000000/1200 BLANKS500000/4000000/1200"),
              "ByteSize | 2 | 8/7/7 7/8/8 0/8/8 65535/7/7", "StopBits | 3 | 2/1/1 1/2/2 /2/1",
              "Parity | 4 | NONE/Mark/ODD Mark/SPACE/NONE mark/Mark/NONE",
              "WaitTimeOut | 5 | 995/985/1000 5/0/15 ten/0/10",
              "ReadTimeOut | 6 | 1000/990/1000 2147483647/1000/1000",
              "RetryTime | 7 | 10/9/10 0/0/1", "RetryTimeOut | 8 | 20/19/20 -2147483648/0/0"});
    }
    void stepsAField()
    {
        const int field = number(1);
        sim::panel().set("machine.sn", nullptr);
        for (const QString &step : cell(2).split(u' ')) {
            const QStringList texts = step.split(u'/');
            const QString from = QString(texts[0]).replace("BLANKS"_s, "\t\t\t\t\t\t  "_s);
            for (const auto &[button, expected] :
                 {std::pair{"btn_%1_L"_s, texts[1]}, {"btn_%1_R"_s, texts[2]}}) {
                CommuniCation dialog(nullptr);
                dialog.prepare({"COM3"_s, QString(field, u',') + from}, {});
                dialog.selectPage(field / COM_WAIT_TIMEOUT * 7); // all but 0 is the second page
                dialog.show();
                press(&dialog, button.arg(cell(0)));
                QCOMPARE(lineText(&dialog, "line_"_s + cell(0)), expected);
            }
        }
    }

    // Each with a number out of its range first, which the keyboard does not give away.
    void fieldsTakeTheKeyboard()
    {
        m_page->init(&m_lists);
        touchInDialog({{"line_ByteSize", "9\n\b7\n"}, {"line_StopBits", "3\n\b2\n"}});
        press(m_page.get(), "btn_CommunIndetail"_s);
        touchInDialog({{"line_WaitTimeOut", "1000\n"},
                       {"line_ReadTimeOut", "1001\n\b0\n"},
                       {"line_RetryTime", "11\n\b0\n"},
                       {"line_RetryTimeOut", "21\n\b0\n"}});
        press(m_page.get(), "btn_TimeOutIndetail"_s);
        QCOMPARE(words(FIRST), "2 3 7 2 0 1000 1000 10 20 1 1"_s);
    }

    // serial numbers | the port with its connection | those in use | offered
    void offersFreeConnections_data()
    {
        rows({"A1,S,K2,U3 | COM3 RS232 | COM3 RS232 | RS232 RS422 RS485_1 RS485_2",
              ",B1,a1,1A | COM3 RS232 | COM3 RS232 | RS232 RS422 RS485_1",
              "A | COM1-1 RS232 | COM1-1 RS232,COM1-2 RS422,COM1-3 RS485_2 | RS232 RS485_1",
              "A | COM2-1 RS232 | COM1-2 RS422,COM3 RS485_1 | RS232 RS422 RS485_1 RS485_2",
              "A | COM1-1 RS422 | COM1-2 RS422 | RS232 RS422 RS485_1 RS485_2", // its own stays
              "A | COM3 RS232 | COM3 RS422 | RS232 RS422 RS485_1 RS485_2",     // changed by others
              "A | COM1-1 NULL | COM1-2 NULL,COM1-3 ?9 | RS232 RS422 RS485_1 RS485_2"});
    }
    void offersFreeConnections()
    {
        const auto port = [](const QString &text) {
            return ComPort{text.section(u' ', 0, 0), text.section(u' ', 1)};
        };
        std::vector<ComPort> inUse;
        for (const QString &text : cell(2).split(u','))
            inUse.push_back(port(text));
        const QString round = cell(3) + u' ' + cell(3).section(u' ', 0, 0);
        for (const QString &serialNumber : cell(0).split(u',')) {
            sim::panel().set("machine.sn", serialNumber.toStdString());
            CommuniCation dialog(nullptr);
            dialog.show();
            dialog.prepare(port(cell(1)), inUse);
            auto *line = dialog.findChild<QLineEdit *>("line_Communication"_s);
            line->clear();
            QStringList offered;
            for (int i = 0; i <= round.count(u' '); ++i) {
                press(&dialog, "btn_Communication_R"_s);
                offered << line->text();
            }
            QCOMPARE(offered.join(u' '), round);
        }
    }

private:
    QString shown(const char *name) { return lineText(m_page.get(), QLatin1String(name)); }
    QString summaries()
    {
        return shown("line_SerialCommiation") + u' ' + shown("line_TimeCommiation");
    }
    // Nothing at all without a reason.
    bool saysWhyNotSaved(const QString &reason)
    {
        const auto *label = m_page->findChild<QLabel *>("lab_NotSaved"_s);
        return label->isVisible() ? !reason.isEmpty() && label->text().contains(reason)
                                  : reason.isEmpty();
    }

    ComParamLists m_lists;
    std::unique_ptr<CommSetting> m_page;
};

QTEST_MAIN(CommPagesTest)
#include "CommPagesTest.moc"
