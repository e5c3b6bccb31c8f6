#include "support/SourceDir.h"

String test::GetSourceDir() {
    return VEXA_SOURCE_DIR;
}
