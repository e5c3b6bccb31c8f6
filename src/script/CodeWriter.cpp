#include "script/CodeWriter.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "script/Exceptions.h"
#include "script/Limits.h"

namespace script {

CodeWriter& CodeWriter::Append(const char* text) {
    return Append(text, std::strlen(text));
}

CodeWriter& CodeWriter::Append(const char* text, size_t size) {
    if (m_text.size() + size > MAX_CODE_SIZE) THROW(ScriptException, "Text too long");
    m_text.append(text, size);
    return *this;
}

// Whether the character belongs to a run of operator characters, which ends before none of its kind.
static bool IsOperator(char c) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\0') return true;
    return std::isspace(byte) == 0 && std::isalnum(byte) == 0 && std::strchr("_\"{}()[],", c) == nullptr;
}

CodeWriter& CodeWriter::AppendName(const String& name) {
    Append(name);
    m_nameEnd = m_text.size();
    return *this;
}

CodeWriter& CodeWriter::AppendSeparator(const char* separator) {
    const char last = m_text.empty() ? ' ' : m_text.back();
    const bool endsInOperator = IsOperator(last) || (last == '"' && m_nameEnd == m_text.size());
    if (endsInOperator && IsOperator(separator[0])) Append(" ");
    return Append(separator);
}

CodeWriter& CodeWriter::AppendMember(const String& name) {
    AppendSeparator(".");
    if (!name.empty() && IsOperator(name[0])) Append(" ");
    return AppendName(name);
}

void CodeWriter::SetApart(size_t from) {
    const String body = m_text.substr(from);
    ChargeBytes(body.size());
    m_text.resize(from);
    Append("\n");
    bool inString = false, inName = false;  // of operator characters, which may hold a quote
    for (size_t i = 0; i < body.size(); ++i) {
        const char c = body[i];
        const bool escape = inString && c == '\\' && i + 1 < body.size();
        Append(body.data() + i, escape ? 2 : 1);
        if (escape) {
            ++i;
        } else if (c == '"' && !inName) {
            inString = !inString;
        } else if (c == '\n' && !inString && i + 1 < body.size()) {
            Append("    ");
        }
        inName = !inString && (IsOperator(c) || (c == '"' && inName));
    }
    Append("\n");
}

namespace {

String Print(const char* format, double value) {
    if (std::isinf(value)) return value > 0 ? "+inf" : "-inf";
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

}  // namespace

String DoubleToText(double value) {
    return Print("%g", value);
}

String DoubleToCode(double value) {
    String text = Print("%.16g", value);
    if (std::isinf(value)) return text;
    const bool isFloat = static_cast<double>(static_cast<float>(value)) == value;
    if (!isFloat && std::strtod(text.c_str(), nullptr) != value) text = Print("%.17g", value);
    if (text.find('.') == String::npos) text.insert(std::min(text.find('e'), text.size()), ".0");
    return text;
}

String StringToCode(const String& text) {
    String code = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') code += '\\';
        code += c;
    }
    return code + '"';
}

}  // namespace script
