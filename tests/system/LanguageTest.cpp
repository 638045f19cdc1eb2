#include "system/Language.h"

#include "app/look/FontStyle.h"
#include "platform/paths.h"
#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "system/LanguageSettings.h"
#include "tests/support/PanelRoot.h"

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QSignalSpy>
#include <QtTest>

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
    void init();
    void startsWith_data();
    void startsWith();
    void takesProjectLanguage();
    void keepsTextsWhenTranslationIsGarbage();
    void survivesUnwritableSettings();
    void changesTextsEachTime();
    void pageReportsThePick_data();
    void pageReportsThePick();

private:
    PanelRoot m_root;
};

void LanguageTest::init()
{
    m_root.clear();
    g_bChange = true;
    g_nChange = -1;
}

void LanguageTest::startsWith_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("language");
    QTest::addColumn<bool>("mayChange");
    QTest::addColumn<int>("allowChange"); // as kept in g_nChange
    QTest::addColumn<QString>("storedAllow");

    const auto row = [](const char *name, const QByteArray &lines, int language, bool mayChange,
                        int allowChange, const char *stored) {
        QTest::newRow(name) << lines << language << mayChange << allowChange
                            << QString::fromLatin1(stored);
    };
    row("Chinese, free", "[HMI]\nLANGUAGEID=0\nALLOWSCHANGE=1\n", 0, true, 1, "1");
    row("English, free", "[HMI]\nLANGUAGEID=1\nALLOWSCHANGE=1\n", 1, true, 1, "1");
    row("English, locked", "[HMI]\nLANGUAGEID=1\nALLOWSCHANGE=0\n", 1, false, 0, "0");
    row("no id is Chinese", "[HMI]\nALLOWSCHANGE=1\n", 0, true, 1, "1");
    row("Chinese without the key stays free", "[HMI]\nLANGUAGEID=0\n", 0, true, 0, "1");
    row("English without the key is locked", "[HMI]\nLANGUAGEID=1\n", 1, false, 0, "0");
    row("id 7", "[HMI]\nLANGUAGEID=7\n", 0, true, 0, "1");
    row("id -1", "[HMI]\nLANGUAGEID=-1\n", 0, true, 0, "1");
    row("id abc", "[HMI]\nLANGUAGEID=abc\n", 0, true, 0, "1");
    row("allow abc locks", "[HMI]\nLANGUAGEID=1\nALLOWSCHANGE=abc\n", 1, false, 0, "abc");
    row("garbage", QByteArray("\x00\xff\x1b[[[\n=\n]]\0\0", 14), 0, true, 0, "1");
    row("empty", "", 0, true, 0, "1");
}

void LanguageTest::startsWith()
{
    QFETCH(QByteArray, content);
    QFETCH(int, language);
    writeFile(settingsFile(), content);

    loadLanguageSettings();

    QCOMPARE(g_nLanguge, language);
    QTEST(g_bChange, "mayChange");
    QTEST(g_nChange, "allowChange");
    QCOMPARE(setting("HMI/LANGUAGEID"), QString::number(language));
    QTEST(setting("HMI/ALLOWSCHANGE"), "storedAllow");
}

void LanguageTest::takesProjectLanguage()
{
    writeFile(panelFile("/tarni/run/project/SoftLang.INI"),
              "[HMI]\nLANGUAGEID=1\nALLOWSCHANGE=1\n[Runtime]\nFont=3\n");
    loadLanguageSettings();
    QCOMPARE(g_nLanguge, 1);
    QVERIFY(g_bChange);
    QCOMPARE(setting("Runtime/Font"), QStringLiteral("3"));
}

void LanguageTest::keepsTextsWhenTranslationIsGarbage()
{
    applyLanguage(LANGUAGE_CHINESE);
    const QString before = sampleText();
    QVERIFY(before != QStringLiteral("Network"));

    const QString garbage = panelFile("/tmp/garbage.qm");
    writeFile(garbage, QByteArray(300, 'x'));
    QVERIFY(!loadTranslation(garbage));
    QVERIFY(!loadTranslation(panelFile("/tmp/missing.qm")));
    QCOMPARE(sampleText(), before);
}

void LanguageTest::survivesUnwritableSettings()
{
    // A file where the folder should be stops every user, root included.
    writeFile(panelFile("/mnt/data/prj"), "not a folder");
    loadLanguageSettings();
    QCOMPARE(g_nLanguge, 0);
    applyLanguage(LANGUAGE_ENGLISH);
    QCOMPARE(sampleText(), QStringLiteral("Network"));
}

void LanguageTest::changesTextsEachTime()
{
    for (int round = 0; round < 3; ++round) {
        applyLanguage(LANGUAGE_CHINESE);
        QCOMPARE(sampleText(), QStringLiteral("网络"));
        applyLanguage(LANGUAGE_ENGLISH);
        QCOMPARE(sampleText(), QStringLiteral("Network"));
    }
    QCOMPARE(setting("HMI/LANGUAGEID"), QStringLiteral("1"));
}

void LanguageTest::pageReportsThePick_data()
{
    QTest::addColumn<QString>("pressed");
    QTest::addColumn<int>("language");
    QTest::newRow("Chinese button") << QStringLiteral("CHBtn") << 0;
    QTest::newRow("English button") << QStringLiteral("ENBtn") << 1;
    QTest::newRow("Chinese radio") << QStringLiteral("radio_1") << 0;
    QTest::newRow("English radio") << QStringLiteral("radio_2") << 1;
}

void LanguageTest::pageReportsThePick()
{
    QFETCH(QString, pressed);
    QFETCH(int, language);
    Language page;
    const auto *english = page.findChild<QRadioButton *>(QStringLiteral("radio_2"));
    page.checkLanguage(1 - language);
    page.checkLanguage(7); // checks nothing
    QCOMPARE(english->isChecked(), language == 0);
    QSignalSpy picked(&page, &Language::sgl_LanguageChange);
    const int clicks = sim::panel().get("buzzer.opens").get<int>();

    for (int again = 1; again <= 2; ++again) { // picking the current one is reported too
        page.findChild<QAbstractButton *>(pressed)->click();
        QCOMPARE(picked.count(), again);
        QCOMPARE(picked.last().first().toInt(), language);
        QCOMPARE(english->isChecked(), language == 1);
        QCOMPARE(sim::panel().get("buzzer.opens").get<int>(), clicks + again);
    }
}

QTEST_MAIN(LanguageTest)
#include "LanguageTest.moc"
