// The interface of extension libraries. An extension is a shared library that defines init_ext; the IDE
// loads it (Extensions > Load..., or at start for every key of the settings section "autoloadext"), calls
// init_ext once with the executable's own module handle (as dlopen(nullptr) returns it) and never unloads
// it. Loading the same library again calls init_ext again.
//
// From then on the extension reaches the IDE through the three functions below, which the velkor
// executable exports and the dynamic loader resolves when the library is loaded. They hand out the IDE's
// own live objects: use them, never delete them, and do not keep the editor past the current call, since
// pages close. The objects are C++ and Qt objects, so an extension must be built with the same compiler
// family, C++ library and Qt 6 as the IDE.
#pragma once

#include "editor/syntax_edit.h"
#include "ide/main_window.h"

#include <QApplication>

#define VELKOR_EXTENSION_EXPORT __attribute__((visibility("default")))

extern "C" {

// The main window (a QMainWindow with the menus, pages and views); null only before it exists.
VELKOR_EXTENSION_EXPORT velkor::TfrmMain* extGetMainForm();
// The application object.
VELKOR_EXTENSION_EXPORT QApplication* extGetApplication();
// The editor control of the page in the selected tab, or null when no page is open.
VELKOR_EXTENSION_EXPORT velkor::TSyntaxEdit* extGetActiveEdit();

// Defined by the extension: its one entry, called right after loading.
VELKOR_EXTENSION_EXPORT void init_ext(void* hostModule);
}
