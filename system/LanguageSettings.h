// The language of the program: which one, where it is kept, and its translation. GUI thread.
#pragma once

#include <QString>

// Ids of the language table; any other number stands for Chinese.
enum LanguageId {
    LANGUAGE_CHINESE = 0,
    LANGUAGE_ENGLISH = 1,
};

// Makes `id` the program's language: sets g_nLanguge, loads its translation into m_translator and
// installs that, and writes the id into the settings file. Texts that widgets show already stay
// until they are translated again. A translation that cannot be loaded leaves the old one in
// place; a settings file that cannot be written is reported on standard output.
void applyLanguage(int id);

// Reads the language and the allow-change setting at start-up and applies them; sets g_nLanguge,
// g_nChange and g_bChange. A settings file that is missing is made from the runtime project's.
void loadLanguageSettings();

// Loads the translation file `path` into m_translator and installs it. Returns false, with the
// translation in force untouched, if the file is no translation.
bool loadTranslation(const QString &path);
