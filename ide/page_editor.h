// The text control of an editor page: the language's syntax editor. The page reaches it only through
// this alias.
#pragma once

#include "editor/syntax_edit.h"

namespace velkor {

using TPageEditor = TSyntaxEdit;

} // namespace velkor
