#pragma once

#include <unordered_map>

#include "util/FileSystem.h"
#include "util/Pointee.h"
#include "util/Singleton.h"
#include "util/String.h"

namespace app {

// Every word that the user reads on the screen, by key: "UndoErase" gives "erase" in the chosen language.
// The log, the console and exceptions speak English only.
//
// A language is two files in Data/Language/, in ISO 8859-1 as the font is: NAME.cfg with a line
// `Key = "Text";` for each key, and NAME_help.txt. English is always loaded as well: it stands in for what
// another language lacks, and is what the others are checked against. It starts with that; `App` loads
// what its attribute `language` asks for before it builds the interface.
//
// Labels look their text up once, when they are made; so a change of the language needs Load and a rebuilt
// interface.
class Language : public util::Pointee, public util::Singleton<Language> {
  public:
    Language();

    // Failures are logged; the language that was in force stays when the file cannot be read.
    void Load(const String& name);
    const String& GetName() const { return m_name; }

    // The text in the chosen language, else the English one, else "[key]" and a warning.
    String Get(const String& key) const;
    bool Has(const String& key) const { return Find(key) != nullptr; }

    String GetAboutText() const;  // with the program's version as its last line
    String GetHelpText() const;

    // The names of all languages that there are files for, sorted; each is a value for `App.language`.
    static util::StringList List();
    // What the language calls itself; its name if it does not say.
    static String GetOwnName(const String& name);
    // The language for a locale such as "de_AT.UTF-8", by the `LanguageCode` of the files; empty for none.
    static String FindForLocale(const String& locale);
    // The locale for messages that the user's desktop asks for; empty for none.
    static String GetUserLocale();

  private:
    using Texts = std::unordered_map<String, String>;

    static void ReadTexts(const String& text, const String& name, Texts& texts);
    static String ReadOne(const String& name, const char* key);
    void CompareWithEnglish(const String& name) const;
    const String* Find(const String& key) const;  // null for none

    Texts m_current;  // of the chosen language
    Texts m_english;
    String m_name;  // of the chosen language
};

// The text for a key in the chosen language.
inline String Translate(const char* key) {
    return Language::Instance().Get(key);
}

}  // namespace app
