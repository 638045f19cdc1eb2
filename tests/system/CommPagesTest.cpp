#include "system/CommSetting.h"
#include "system/CommuniCation.h"
#include "tests/support/PageTest.h"
#include "tests/system/PortWords.h"

namespace {

// Presses a widget, and sees that it clicks.
void press(const QWidget *window, const QString &name)
{
    const int clicks = sim::panel().get("buzzer.opens").get<int>();
    QTest::mouseClick(window->findChild<QWidget *>(name), Qt::LeftButton);
    QVERIFY(sim::panel().get("buzzer.opens").get<int>() > clicks);
}

// Works the dialog that opens next: presses "btn_Save", or types into "line_ByteSize 7\n".
void inDialog(const QStringList &steps)
{
    for (const QString &step : steps) {
        whenOpen("CommuniCation", [name = step.section(u' ', 0, 0)](const QWidget *dialog) {
            // Queued: the press on a field does not return before its keyboard has closed.
            QTimer::singleShot(0, dialog, [=] { press(dialog, name); });
            return true;
        });
        if (step.contains(u' '))
            typeOnKeyboard(step.section(u' ', 1));
    }
}

QLineEdit *lineOf(const QWidget *dialog, const QString &field)
{
    return dialog->findChild<QLineEdit *>("line_"_s + field);
}

constexpr unsigned int FIRST = 10061;

} // namespace

class CommPagesTest : public PageTest<CommSetting>
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
            setWords(base + COM_DEVICE_STATION, "1"_s);
        m_page->init(&m_lists);
        QString ports = text("line_ComNum");
        for (const QChar step : "LRRRRRRR"_s) {
            ::press(m_page.get(), "btn_Com"_s + step);
            ports += u' ' + text("line_ComNum");
        }
        QCOMPARE(ports, "COM1-1 COM3 COM1-1 COM1-2 COM1-3 COM2-1 COM3 COM1-1 COM1-2"_s);
        QCOMPARE(texts(SHOWN), "1|2|RS485_1,115200,8,1,EVEN|50,500,3,5"_s);

        setWords(FIRST, "0 0 0 0 0 0 0 0 0 0 0"_s);
        for (const auto &[button, port] :
             {std::pair{"btn_ComL", "COM3"_s}, {"btn_ComR", "COM1-2"_s}}) {
            m_page->init(&m_lists); // COM1-1 comes first, though not in use
            QCOMPARE(text("line_ComNum"), "COM1-1"_s);
            QVERIFY(!listSeralType.contains("COM1-1"_s));
            press(button);
            QCOMPARE(text("line_ComNum"), port);
        }
    }

    void isDisabledWithoutPorts()
    {
        sim::panel().fail("backstage.AddrRead", -1);
        m_page->init(&m_lists);
        QVERIFY(!m_page->isEnabled() && listSeralType.isEmpty());
        press("line_HmiStation"); // would not return from an open keyboard
        sim::panel().clearFailures();
        m_page->init(&m_lists);
        QVERIFY(m_page->isEnabled());
    }

    void showsNoFieldsBeforeItHasLists()
    {
        listSeralType << "COM3"_s;
        press("btn_ComR");
        QCOMPARE(text("line_ComNum"), "COM3"_s);
        QCOMPARE(texts(SHOWN), "||NULL,1200,0,0,NONE|"_s);
        press("btn_CommunIndetail"); // would not return from an open dialog
        typeOnKeyboard("7\n"_s);
        press("line_HmiStation");
        QCOMPARE(portWords(10083), "0 0 0 0 0 0 0 0 0 0 0"_s);
    }

    // field | keys | retry word when they are typed, 3 before | the port then
    void setsStation_data()
    {
        rows({"line_HmiStation | 255 | 3 | 2 3 8 1 0 20 100 3 2 255 1",
              "line_StandStation | 0 | 3 | 2 3 8 1 0 20 100 3 2 1 0",
              "line_HmiStation | 256 | 3 | 2 3 8 1 0 20 100 3 2 1 1",
              "line_HmiStation | 9 | 4 | 2 3 8 1 0 20 100 4 2 9 1",
              "line_HmiStation | 9 | x | 2 3 8 1 0 20 100 x 2 1 1"});
    }
    void setsStation()
    {
        m_page->init(&m_lists);
        setWords(FIRST + COM_RETRIES, cell(2));
        typeOnKeyboard(cell(1) + (cell(1) == "256"_s ? "\n\x1b"_s : "\n"_s));
        press(cell(0).toLatin1());
        QCOMPARE(portWords(FIRST), cell(3));
    }

    // button of the page | buttons of the dialog | the port then | the page then | what is told
    void writesWhatTheDialogSaves_data()
    {
        rows({"btn_CommunIndetail | btn_Communication_L btn_Parity_R btn_StopBits_R btn_Save | "
              "0 3 8 2 1 20 100 3 2 1 1 | 1/1/RS232,9600,8,2,ODD/20,100,3,2",
              "btn_TimeOutIndetail | btn_WaitTimeOut_R btn_Canl | "
              "2 3 8 1 0 20 100 3 2 1 1 | 1/1/RS422,9600,8,1,NONE/20,100,3,2",
              // Eighth behind 9600 stands the rate that the codec has with blanks alone.
              "btn_CommunIndetail | btn_Parity_R btn_BaudRate_R btn_BaudRate_R btn_BaudRate_R "
              "btn_BaudRate_R btn_BaudRate_R btn_BaudRate_R btn_BaudRate_R btn_BaudRate_R "
              "btn_Save | 2 3 8 1 0 20 100 3 2 1 1 | 1/1/RS422,9600,8,1,NONE/20,100,3,2 | "
              "baud rate"});
    }
    // On a page that is too narrow for its summaries.
    void writesWhatTheDialogSaves()
    {
        m_page->resize(300, 390);
        m_page->init(&m_lists);
        QVERIFY(text("line_SerialCommiation").endsWith(QChar(0x2026)));
        inDialog(cell(1).split(u' '));
        press(cell(0).toLatin1());
        QCOMPARE(portWords(FIRST), cell(2));
        QVERIFY(saysWhyNotSaved(cellOrEmpty(4)));
        m_page->resize(640, 390);
        QCOMPARE(texts(SHOWN), cell(3).replace(u'/', u'|'));
        press("btn_ComR");
        QVERIFY(saysWhyNotSaved(QString())); // another port is shown
    }

    // Words that the runtime gave too late would be overwritten with 0.
    void writesNothingThatItHasNotRead()
    {
        setWords(FIRST + COM_BAUD, "11"_s);
        setWords(FIRST + COM_WAIT_TIMEOUT, "x"_s);
        m_page->init(&m_lists);
        QCOMPARE(text("line_TimeCommiation"), "0,0,0,0"_s);
        setWords(FIRST + COM_WAIT_TIMEOUT, "20"_s);
        // The second time it has; the white space in front of the rate goes back with it.
        for (const auto &[port, parity, reason] :
             {std::tuple("2 11 8 1 0 20 100 3 2 1 1"_s, "NONE"_s, "not all settings were read"_s),
              {"2 11 8 1 1 20 100 3 2 1 1"_s, "ODD"_s, QString()}}) {
            inDialog({"btn_Parity_R"_s, "btn_Save"_s});
            press("btn_CommunIndetail");
            QCOMPARE(portWords(FIRST), port);
            QCOMPARE(texts(SHOWN), "1|1|RS422,500000,8,1,%1|20,100,3,2"_s.arg(parity));
            QVERIFY(saysWhyNotSaved(reason));
        }
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
            const QStringList values =
                QString(step).replace("BLANKS"_s, "\t\t\t\t\t\t  "_s).split(u'/');
            for (const int right : {0, 1}) {
                CommuniCation dialog(nullptr);
                dialog.prepare({"COM3"_s, QString(field, u',') + values[0]}, {});
                dialog.selectPage(field / COM_WAIT_TIMEOUT * 7); // all but 0 is the second page
                dialog.show();
                ::press(&dialog, "btn_"_s + cell(0) + (right == 0 ? "_L"_s : "_R"_s));
                QVERIFY(lineOf(&dialog, cell(0))->isVisible());
                QCOMPARE(lineOf(&dialog, cell(0))->text(), values[1 + right]);
            }
        }
    }

    // Each with a number out of its range first, which the keyboard does not give away.
    void fieldsTakeTheKeyboard()
    {
        m_page->init(&m_lists);
        inDialog({"line_ByteSize 9\n\b7\n"_s, "line_StopBits 3\n\b2\n"_s, "btn_Save"_s});
        press("btn_CommunIndetail");
        inDialog({"line_WaitTimeOut 1000\n"_s, "line_ReadTimeOut 1001\n\b0\n"_s,
                  "line_RetryTime 11\n\b0\n"_s, "line_RetryTimeOut 21\n\b0\n"_s, "btn_Save"_s});
        press("btn_TimeOutIndetail");
        QCOMPARE(portWords(FIRST), "2 3 7 2 0 1000 1000 10 20 1 1"_s);
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
        std::vector<ComPort> ports; // the first is the dialog's own
        for (const QString &port : (cell(1) + u',' + cell(2)).split(u','))
            ports.push_back({port.section(u' ', 0, 0), port.section(u' ', 1)});
        const QString round = cell(3) + u' ' + cell(3).section(u' ', 0, 0);
        for (const QString &serialNumber : cell(0).split(u',')) {
            sim::panel().set("machine.sn", serialNumber.toStdString());
            CommuniCation dialog(nullptr);
            dialog.show();
            dialog.prepare(ports[0], {ports.begin() + 1, ports.end()});
            QLineEdit *line = lineOf(&dialog, "Communication"_s);
            line->clear();
            QStringList offered;
            for (int i = 0; i <= round.count(u' '); ++i) {
                ::press(&dialog, "btn_Communication_R"_s);
                offered << line->text();
            }
            QCOMPARE(offered.join(u' '), round);
        }
    }

private:
    const QByteArrayList SHOWN = {"line_HmiStation", "line_StandStation", "line_SerialCommiation",
                                  "line_TimeCommiation"};

    // Nothing at all without a reason.
    bool saysWhyNotSaved(const QString &reason)
    {
        return shown("lab_NotSaved") ? !reason.isEmpty() && text("lab_NotSaved").contains(reason)
                                     : reason.isEmpty();
    }

    ComParamLists m_lists;
};

QTEST_MAIN(CommPagesTest)
#include "CommPagesTest.moc"
