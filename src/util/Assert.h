#pragma once

// Tests that stay in every build. An assertion throws, a check reports and goes on; "code" blames the
// program (BadCoderException), "data" blames a file, a script or a user's value (BadDataException).

// The single target of the four macros. Logs "<Code|Data> <assertion|check> failed: ..." and, for an
// assertion, throws.
void AssertionFailed(const char* expression, bool isAssertion, bool isCode, const char* function,
                     const char* file, long line);

#define VEXA_TEST(expression, text, isAssertion, isCode) \
    (static_cast<bool>(expression)                       \
         ? static_cast<void>(0)                          \
         : AssertionFailed(text, isAssertion, isCode, __PRETTY_FUNCTION__, __FILE__, __LINE__))

#define CODE_ASSERTION(expression) VEXA_TEST(expression, #expression, true, true)
#define DATA_ASSERTION(expression) VEXA_TEST(expression, #expression, true, false)
#define CODE_CHECK(expression) VEXA_TEST(expression, #expression, false, true)
#define DATA_CHECK(expression) VEXA_TEST(expression, #expression, false, false)

// With a text of its own in place of the expression: messages are an interface, and a shorter or clearer
// expression must not change them.
#define CODE_ASSERTION_TEXT(expression, text) VEXA_TEST(expression, text, true, true)
#define DATA_ASSERTION_TEXT(expression, text) VEXA_TEST(expression, text, true, false)
#define CODE_CHECK_TEXT(expression, text) VEXA_TEST(expression, text, false, true)
