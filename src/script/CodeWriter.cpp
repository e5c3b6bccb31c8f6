#include "script/CodeWriter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
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

void CodeWriter::SetApart(size_t from) {
    const String body = m_text.substr(from);
    ChargeBytes(body.size());
    m_text.resize(from);
    Append("\n");
    size_t begin = 0;
    while (begin < body.size()) {
        const size_t newline = std::min(body.find('\n', begin), body.size() - 1);
        Append(body.data() + begin, newline + 1 - begin);
        begin = newline + 1;
        if (begin < body.size()) Append("    ");
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
    const String text = Print("%.16g", value);
    if (std::isinf(value) || text.find('.') != String::npos) return text;
    return text + ".0";
}

}  // namespace script
