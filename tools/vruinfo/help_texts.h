// What help and the manual page say besides the table of commands. Lines end in newlines; the first of a text may be a
// heading.
#pragma once

namespace vruinfo::tool
{

[[nodiscard]] const char* aboutText();
[[nodiscard]] const char* treePathsText();
[[nodiscard]] const char* exitCodesText();

} // namespace vruinfo::tool
