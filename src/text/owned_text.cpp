#include "text/owned_text.h"

#include <cwchar>

namespace vruinfo::internal
{

wchar_t* makeText(const wchar_t* text, std::size_t length)
{
    wchar_t* const copy = makeTextBuffer(length + 1);
    std::wmemcpy(copy, text, length);
    copy[length] = L'\0';
    return copy;
}

wchar_t* makeText(const wchar_t* text)
{
    return makeText(text, std::wcslen(text));
}

wchar_t* makeTextBuffer(std::size_t capacity)
{
    auto* const buffer = new wchar_t[capacity];
    buffer[0] = L'\0';
    return buffer;
}

void freeText(wchar_t*& text)
{
    delete[] text;
    text = nullptr;
}

void replaceText(wchar_t*& place, wchar_t* text)
{
    freeText(place);
    place = text;
}

} // namespace vruinfo::internal
