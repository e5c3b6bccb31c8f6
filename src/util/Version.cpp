#include "util/Version.h"

const char* const util::VERSION_TEXT = "Vexa beta " VEXA_VERSION;
