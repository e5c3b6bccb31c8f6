#include "util/Assert.h"

#include <boost/format.hpp>

#include "logging/Log.h"
#include "util/Exception.h"

// "inf" stands where one expects "in"; the text is the same for all four.
void AssertionFailed(const char* expression, bool isAssertion, bool isCode, const char* function,
                     const char* file, long line) {
    const String text = boost::str(boost::format("%s %s failed: \"%s\" in function %s inf %s:%i") %
                                   (isCode ? "Code" : "Data") % (isAssertion ? "assertion" : "check") %
                                   expression % function % file % line);
    if (!isAssertion) {
        Log(isCode ? logging::CodeError : logging::DataError, text);
        return;
    }
    Log(logging::Trace, text);
    if (isCode) THROW(BadCoderException, text);
    THROW(BadDataException, text);
}
