#include "app/Language.h"

#include <algorithm>
#include <cstdlib>

#include "logging/Log.h"
#include "script/Conversions.h"
#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Guest.h"
#include "script/Parser.h"
#include "util/Exception.h"
#include "util/FileSystem.h"
#include "util/Guarded.h"

namespace app {

namespace {

const String ENGLISH = "English";
const String ENDING = ".cfg";
const String HELP_ENDING = "_help.txt";

String GetFolder() {
    return util::FileSystem::Instance().GetLanguageDir();
}

String ReadHelp(const String& name) {
    const String path = GetFolder() + name + HELP_ENDING;
    try {
        return util::FileSystem::Instance().ReadFile(path);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Warning, "Missing help file: " + path);
        return String();
    }
}

}  // namespace

Language::Language() {
    Load(ENGLISH);
}

// ---- loading -----------------------------------------------------------------------------------------

void Language::Load(const String& name) {
    if (m_english.empty() && name != ENGLISH) Load(ENGLISH);
    Log(logging::Info, "Loading language " + name + "...");
    try {
        const String text = util::FileSystem::Instance().ReadFile(GetFolder() + name + ENDING);
        m_current.clear();
        ReadTexts(text, name, m_current);
        m_name = name;
        if (name == ENGLISH) m_english = m_current;
        CompareWithEnglish(name);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Warning, "Error loading language " + name + ": " + e.what());
    }
}

// Only assignments at the top count. Their right sides see the settings and the intrinsics; their names stay
// in this file.
void Language::ReadTexts(const String& text, const String& name, Texts& texts) {
    const script::GuestPtr guest = new script::Guest;
    script::Parser& parser = script::Parser::Instance();
    const script::ClosurePtr closure = parser.MakeGuestClosure(*guest, "Language_closure");
    const script::CodeBlockPtr code = parser.ParseGuest(text);
    if (!code) THROW(BadDataException, "The file has a syntax error");
    for (const script::ExpressionPtr& statement : code->GetExpressions()) {
        const auto assignment = util::DynamicCast<script::Assignment>(statement);
        if (!assignment) continue;
        const auto read = [&] {
            const script::GuestTurn turn(*guest);
            const script::ObjectPtr value = assignment->GetExpression()->Evaluate(closure);
            texts[assignment->GetIdentifier()->ToCode()] = script::ObjectToValue<String>(value);
        };
        util::Guarded(read, ("Error in language file " + name + ": ").c_str());
    }
}

void Language::CompareWithEnglish(const String& name) const {
    if (m_english.empty()) return;
    for (const auto& entry : m_english) {
        if (m_current.count(entry.first) > 0) continue;
        Log(logging::Warning, "Missing " + name + " translation for " + entry.first);
    }
    for (const auto& entry : m_current) {
        if (m_english.count(entry.first) > 0) continue;
        Log(logging::Warning,
            name + " had \"" + entry.first + "\" which was not found in the english original");
    }
}

// ---- texts -------------------------------------------------------------------------------------------

const String* Language::Find(const String& key) const {
    for (const Texts* const texts : {&m_current, &m_english}) {
        const auto found = texts->find(key);
        if (found != texts->end()) return &found->second;
    }
    return nullptr;
}

String Language::Get(const String& key) const {
    if (const String* const text = Find(key)) return *text;
    Log(logging::Warning, "English and " + m_name + " translation missing for " + key);
    return "[" + key + "]";
}

String Language::GetAboutText() const {
    return Get("AboutText") + "\n" + util::FileSystem::Version();
}

String Language::GetHelpText() const {
    for (const String& name : {m_name, ENGLISH}) {
        const String text = ReadHelp(name);
        if (!text.empty()) return text;
    }
    return "WARNING: Language file missing (see console and Logfile.txt for details)\n\n"
           "Play around a bit, you'll figure it out. Ctrl-Z undos.";
}

// ---- which languages there are -----------------------------------------------------------------------

util::StringList Language::List() {
    util::StringList names = util::FileSystem::Instance().ListFiles(GetFolder(), "*" + ENDING);
    for (String& name : names) name.resize(name.size() - ENDING.size());
    std::sort(names.begin(), names.end());
    return names;
}

String Language::ReadOne(const String& name, const char* key) {
    try {
        Texts texts;
        ReadTexts(util::FileSystem::Instance().ReadFile(GetFolder() + name + ENDING), name, texts);
        return texts[key];
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        return String();
    }
}

String Language::GetOwnName(const String& name) {
    const String own = ReadOne(name, "LanguageName");
    return own.empty() ? name : own;
}

// A locale starts with the two or three letters of its language: "de", "de_AT", "de_AT.UTF-8@euro".
String Language::FindForLocale(const String& locale) {
    const String code = locale.substr(0, locale.find_first_of("_.@"));
    if (code.empty()) return String();
    for (const String& name : List()) {
        if (ReadOne(name, "LanguageCode") == code) return name;
    }
    return String();
}

// The first that is set counts, also when it is the plain locale "C".
String Language::GetUserLocale() {
    for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return String();
}

}  // namespace app
