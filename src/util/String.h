#pragma once

#include <string>

// The program's one text type: 8-bit text, one byte per glyph (ISO 8859-1 on screen).
using String = std::string;
