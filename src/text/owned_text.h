// The pair that makes and frees the texts that public objects own through plain pointers (array new, array
// delete).
#pragma once

#include <cstddef>

namespace vruinfo::internal
{

[[nodiscard]] wchar_t* makeText(const wchar_t* text, std::size_t length); ///< A terminated copy.
[[nodiscard]] wchar_t* makeText(const wchar_t* text);
[[nodiscard]] wchar_t* makeTextBuffer(std::size_t capacity); ///< Holds an empty text.

/// Frees the text, if any, and sets the pointer to null.
void freeText(wchar_t*& text);
/// Puts `text`, which is owned from here on, in the place of what the pointer held.
void replaceText(wchar_t*& place, wchar_t* text);

[[nodiscard]] inline bool isEmpty(const wchar_t* text)
{
    return !text || text[0] == L'\0';
}

} // namespace vruinfo::internal
