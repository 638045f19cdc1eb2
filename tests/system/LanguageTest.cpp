#include "system/Language.h"

#include "app/look/FontStyle.h"
#include "platform/paths.h"
#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "system/LanguageSettings.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QSignalSpy>

namespace {

QString panelFile(const char *path)
{
    return QString::fromStdString(panelPath(path));
}

QString settingsFile()
{
    return panelFile("/mnt/data/prj/LangugeSet.cof");
}

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.flush();
    // QSettings takes a file of the same size and time for the one that it knows.
    static int seconds = 0;
    file.setFileTime(QDateTime::currentDateTime().addSecs(++seconds),
                     QFileDevice::FileModificationTime);
}

QString setting(const char *key)
{
    return QSettings(settingsFile(), QSettings::IniFormat).value(QLatin1String(key)).toString();
}

QString sampleText()
{
    return QCoreApplication::translate("Qt_MainWin", "Network");
}

} // namespace

class LanguageTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void init()
    {
        m_root.clear();
        g_bChange = true;
        g_nChange = -1;
    }

    // file | language | whether it may change, as a bool and as kept in g_nChange | stored then
    void startsWith_data()
    {
        rows({"LANGUAGEID=0 ALLOWSCHANGE=1 | 0 | 1 1 | 1",
              "LANGUAGEID=1 ALLOWSCHANGE=1 | 1 | 1 1 | 1",
              "LANGUAGEID=1 ALLOWSCHANGE=0 | 1 | 0 0 | 0", "ALLOWSCHANGE=1 | 0 | 1 1 | 1",
              "LANGUAGEID=0 | 0 | 1 0 | 1", "LANGUAGEID=1 | 1 | 0 0 | 0",
              "LANGUAGEID=7 | 0 | 1 0 | 1", "LANGUAGEID=-1 | 0 | 1 0 | 1",
              "LANGUAGEID=abc | 0 | 1 0 | 1", "LANGUAGEID=1 ALLOWSCHANGE=abc | 1 | 0 0 | abc",
              "garbage | 0 | 1 0 | 1", "empty | 0 | 1 0 | 1"});
    }
    void startsWith()
    {
        QByteArray content = "[HMI]\n" + cell(0).toLatin1().replace(' ', '\n') + '\n';
        if (cell(0) == "garbage"_s)
            content = QByteArray("\x00\xff\x1b[[[\n=\n]]\0\0", 14);
        else if (cell(0) == "empty"_s)
            content.clear();
        writeFile(settingsFile(), content);

        loadLanguageSettings();

        QCOMPARE(g_nLanguge, number(1));
        QCOMPARE("%1 %2"_s.arg(g_bChange).arg(g_nChange), cell(2));
        QCOMPARE(setting("HMI/LANGUAGEID"), cell(1));
        QCOMPARE(setting("HMI/ALLOWSCHANGE"), cell(3));
    }

    void takesProjectLanguage()
    {
        writeFile(panelFile("/tarni/run/project/SoftLang.INI"),
                  "[HMI]\nLANGUAGEID=1\nALLOWSCHANGE=1\n[Runtime]\nFont=3\n");
        loadLanguageSettings();
        QCOMPARE(g_nLanguge, 1);
        QVERIFY(g_bChange);
        QCOMPARE(setting("Runtime/Font"), "3"_s);
    }

    void changesTextsEachTime()
    {
        for (int round = 0; round < 3; ++round) {
            applyLanguage(LANGUAGE_ENGLISH);
            QCOMPARE(sampleText(), "Network"_s);
            QCOMPARE(setting("HMI/LANGUAGEID"), "1"_s);
            applyLanguage(LANGUAGE_CHINESE);
            QCOMPARE(sampleText(), "网络"_s);
        }
        const QString garbage = panelFile("/tmp/garbage.qm");
        writeFile(garbage, QByteArray(300, 'x'));
        QVERIFY(!loadTranslation(garbage));
        QVERIFY(!loadTranslation(panelFile("/tmp/missing.qm")));
        QCOMPARE(sampleText(), "网络"_s);
    }

    void survivesUnwritableSettings()
    {
        // A file where the folder should be stops every user, root included.
        writeFile(panelFile("/mnt/data/prj"), "not a folder");
        loadLanguageSettings();
        QCOMPARE(g_nLanguge, 0);
        applyLanguage(LANGUAGE_ENGLISH);
        QCOMPARE(sampleText(), "Network"_s);
    }

    void pageReportsThePick_data()
    {
        rows({"CHBtn | 0", "ENBtn | 1", "radio_1 | 0", "radio_2 | 1"});
    }
    void pageReportsThePick()
    {
        const int language = number(1);
        Language page;
        const auto *english = page.findChild<QRadioButton *>("radio_2"_s);
        page.checkLanguage(1 - language);
        page.checkLanguage(7); // checks nothing
        QCOMPARE(english->isChecked(), language == 0);
        QSignalSpy picked(&page, &Language::sgl_LanguageChange);
        const int clicks = sim::panel().get("buzzer.opens").get<int>();

        for (int again = 1; again <= 2; ++again) { // picking the current one is reported too
            page.findChild<QAbstractButton *>(cell(0))->click();
            QCOMPARE(picked.count(), again);
            QCOMPARE(picked.last().first().toInt(), language);
            QCOMPARE(english->isChecked(), language == 1);
            QCOMPARE(sim::panel().get("buzzer.opens").get<int>(), clicks + again);
        }
    }

private:
    PanelRoot m_root;
};

QTEST_MAIN(LanguageTest)
#include "LanguageTest.moc"
