#pragma once

#include "util/String.h"

// Names of the files that carry state from one run to the next.

// In the Scenes/ folder:
extern const String SCENE_ENDING;    // of all scenes
extern const String WELCOME_SCENE;   // shown at a first start
extern const String AUTOSAVE_SCENE;  // written while running; found at start only after a crash
extern const String ONEXIT_SCENE;    // the scene of the last clean exit

// In the working directory:
extern const String CONFIG_FILE;           // settings, written at a clean exit
extern const String AUTOEXEC_FILE;         // the user's own start-up script; never written
extern const String AUTOSAVE_CONFIG_FILE;  // settings saved while running; its presence means a crash
extern const String CONSOLE_HISTORY_FILE;  // what was typed into the console
extern const String LOCK_FILE;             // held by the program that autosaves under these names

// In the Data/ folder:
extern const String DEFAULTS_FILE;  // settings that the program ships with

// While a file is being replaced; what a killed run left behind is swept at the next start.
extern const String TEMPORARY_ENDING;
