#include "system/LanguageSettings.h"

#include "app/look/FontStyle.h"
#include "platform/cos_file.h"
#include "platform/paths.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTranslator>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr const char *SETTINGS_DIRECTORY = "/mnt/data/prj";
constexpr const char *SETTINGS_NAME = "LangugeSet.cof";
constexpr const char *PROJECT_LANGUAGE = "/tarni/run/project/SoftLang.INI";
constexpr const char *TRANSLATIONS = ":/Language/LangugePackage/";
const char *const TRANSLATION_FILES[] = {"en_ch.qm", "ch_en.qm"};

QString languageKey()
{
    return QStringLiteral("/HMI/LANGUAGEID");
}

QString allowChangeKey()
{
    return QStringLiteral("/HMI/ALLOWSCHANGE");
}

std::string settingsPath()
{
    return panelPath(SETTINGS_DIRECTORY) + "/" + SETTINGS_NAME;
}

QString toQString(const std::string &path)
{
    return QString::fromLocal8Bit(path.data(), static_cast<int>(path.size()));
}

// QSettings renames a synced file over the old one; panels are switched off by their main switch,
// and until its folder is synced too the old one may come back.
void syncSettingsFolder()
{
    const int folder =
        ::open(panelPath(SETTINGS_DIRECTORY).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder == -1)
        return;
    fsync(folder);
    ::close(folder);
}

// Once, however often the language changes.
void tellOfFailure()
{
    static bool told = false;
    if (!std::exchange(told, true))
        std::fprintf(stderr, "sysset: the language is not kept: %s\n", settingsPath().c_str());
}

// An unknown id, of a damaged file, counts as Chinese, so that it does not lock the language.
int knownLanguage(int id)
{
    return id == LANGUAGE_ENGLISH ? LANGUAGE_ENGLISH : LANGUAGE_CHINESE;
}

void readAllowChange(QSettings &settings)
{
    const QString allowed = settings.value(allowChangeKey()).toString();
    if (allowed.isEmpty()) {
        const bool chinese = g_nLanguge == LANGUAGE_CHINESE;
        settings.setValue(allowChangeKey(), chinese ? QStringLiteral("1") : QStringLiteral("0"));
        if (!chinese)
            g_bChange = false;
        return;
    }
    g_nChange = allowed.toInt();
    if (g_nChange == 0)
        g_bChange = false;
}

} // namespace

bool loadTranslation(const QString &path)
{
    // A failed load empties a translator, so it is tried on another one first.
    if (!QTranslator().load(path))
        return false;
    if (m_translator == nullptr)
        m_translator = new QTranslator(QCoreApplication::instance());
    const bool installed = !m_translator->isEmpty();
    if (!m_translator->load(path))
        return false;
    // Once installed, a translator announces a new load by itself; a second installation would
    // make every look-up pass through it twice.
    return installed || QCoreApplication::installTranslator(m_translator);
}

void applyLanguage(int id)
{
    g_nLanguge = knownLanguage(id);
    loadTranslation(QString::fromLatin1(TRANSLATIONS) +
                    QString::fromLatin1(TRANSLATION_FILES[g_nLanguge]));

    QSettings settings(toQString(settingsPath()), QSettings::IniFormat);
    const QString number = QString::number(g_nLanguge);
    if (settings.value(languageKey()).toString() == number)
        return; // as at most starts: a file that is not written cannot be lost
    settings.setValue(languageKey(), number);
    settings.sync();
    if (settings.status() != QSettings::NoError) {
        std::printf("write [%s] error\n", SETTINGS_NAME);
        tellOfFailure();
    }
    syncSettingsFolder();
}

void loadLanguageSettings()
{
    const std::string path = settingsPath();
    if (!COS::CosFile::ExistFile(path))
        COS::CosFile::CopyWithMakeDir(panelPath(PROJECT_LANGUAGE), path);
    g_nChange = 0;
    g_nLanguge = LANGUAGE_ENGLISH;
    {
        QSettings settings(toQString(path), QSettings::IniFormat);
        g_nLanguge = knownLanguage(settings.value(languageKey()).toString().toInt());
        readAllowChange(settings);
    }
    applyLanguage(g_nLanguge);
}
