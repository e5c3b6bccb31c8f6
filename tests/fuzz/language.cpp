#include "app/Language.h"
#include "Fuzz.h"
#include "app/App.h"
#include "util/FileSystem.h"

namespace {

// A folder with this one language.
bool Prepare() {
    fuzz::MakeQuietParser();
    util::FileSystem& files = util::FileSystem::Instance();
    files.SetWorkDir(fuzz::MakeFolder());
    files.MakeDir(files.GetLanguageDir());
    return true;
}

}  // namespace

// Any bytes are a language file: its texts are read or not, and a look-up answers.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool s_ready = Prepare();
    fuzz::Require(s_ready, "ready");
    util::FileSystem& files = util::FileSystem::Instance();
    files.WriteFileAtomically(files.GetLanguageDir() + "Any.cfg", String(data, data + size));
    app::Language::Instance().Load("Any");
    fuzz::Require(!app::Language::Instance().Get("Save").empty() || size > 0, "an answer");
    fuzz::Tidy();
    return 0;
}
