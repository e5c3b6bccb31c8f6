#include "util/FileNames.h"

const String SCENE_ENDING = ".vxa";
const String WELCOME_SCENE = "welcome.vxa";
const String AUTOSAVE_SCENE = "_AUTOSAVE.vxa";
const String ONEXIT_SCENE = "_ONEXITSAVE.vxa";
const String CONFIG_FILE = "config.cfg";
const String AUTOEXEC_FILE = "autoexec.cfg";
const String DEFAULTS_FILE = "defaults.cfg";
const String AUTOSAVE_CONFIG_FILE = "config.autosave.cfg";
const String TEMPORARY_ENDING = ".tmp";
const String CONSOLE_HISTORY_FILE = "console.history";
const String LOCK_FILE = ".vexa.lock";
