#pragma once

#include <string>

namespace core {

// The X library reads thousands of sequences of keys at each start, for letters that no font of this program
// has. Unless the user has a table of his own (XCOMPOSEFILE, ~/.XCompose), it is given the few that make
// letters of ISO 8859-1, where these are the same as in the table of the user's language. Before anything
// else talks to the display.
void ChooseComposeTable(const std::string& tablePath);

// Whether `locale` has the common table for UTF-8, by the list `folders` of the X library: a line
// "folder/Compose locale" for each, with or without a colon.
bool HasCommonComposeTable(const std::string& folders, const std::string& locale);

}  // namespace core
