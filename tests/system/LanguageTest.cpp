#include "system/Language.h"

#include "app/look/FontStyle.h"
#include "platform/paths.h"
#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "system/LanguageSettings.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QAbstractButton>
#include <QSettings>
#include <QSignalSpy>

#include <optional>

namespace {

const QString SETTINGS = "/mnt/data/prj/LangugeSet.cof"_s;
const QString PROJECT = "/tarni/run/project/SoftLang.INI"_s;

QString panelFile(const QString &path)
{
    return QString::fromStdString(panelPath(path.toStdString()));
}

QString setting(const char *key)
{
    return QSettings(panelFile(SETTINGS), QSettings::IniFormat)
        .value(QLatin1String(key))
        .toString();
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
        m_root.emplace(); // another path each time: QSettings remembers files that it has read
        g_bChange = true;
        g_nChange = -1;
    }

    // file, of the project if it says so | language | whether it may change, as a bool and as kept
    // in g_nChange | stored then
    void startsWith_data()
    {
        rows({"LANGUAGEID=0 ALLOWSCHANGE=1 | 0 | 1 1 | 1",
              "LANGUAGEID=1 ALLOWSCHANGE=1 | 1 | 1 1 | 1",
              "LANGUAGEID=1 ALLOWSCHANGE=0 | 1 | 0 0 | 0", "ALLOWSCHANGE=1 | 0 | 1 1 | 1",
              "LANGUAGEID=0 | 0 | 1 0 | 1", "LANGUAGEID=1 | 1 | 0 0 | 0",
              "LANGUAGEID=7 | 0 | 1 0 | 1", "LANGUAGEID=-1 | 0 | 1 0 | 1",
              "LANGUAGEID=abc | 0 | 1 0 | 1", "LANGUAGEID=1 ALLOWSCHANGE=abc | 1 | 0 0 | abc",
              "\xff [[[ = ]] | 0 | 1 0 | 1", " | 0 | 1 0 | 1",
              "LANGUAGEID=1 ALLOWSCHANGE=1 ;/tarni/run/project/SoftLang.INI | 1 | 1 1 | 1"});
    }
    void startsWith()
    {
        m_root->write(cell(0).endsWith(PROJECT) ? PROJECT : SETTINGS,
                      "[HMI]\n" + cell(0).toLatin1().replace(' ', '\n') + '\n');
        loadLanguageSettings();
        QCOMPARE(g_nLanguge, number(1));
        QCOMPARE("%1 %2"_s.arg(g_bChange).arg(g_nChange), cell(2));
        QCOMPARE(setting("HMI/LANGUAGEID"), cell(1));
        QCOMPARE(setting("HMI/ALLOWSCHANGE"), cell(3));
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
        m_root->write("/garbage.qm"_s, QByteArray(300, 'x'));
        QVERIFY(!loadTranslation(panelFile("/garbage.qm"_s)));
        QVERIFY(!loadTranslation(panelFile("/missing.qm"_s)));
        QCOMPARE(sampleText(), "网络"_s);
    }

    void survivesUnwritableSettings()
    {
        m_root->write("/mnt/data/prj"_s, "a file, which stops every user, root included");
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
        const auto *english = page.findChild<QAbstractButton *>("radio_2"_s);
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
    std::optional<PanelRoot> m_root;
};

QTEST_MAIN(LanguageTest)
#include "LanguageTest.moc"
