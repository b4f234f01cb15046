// Key paths against a plain text that is joined by the rules' words. Texts that do not fit a path buffer end the
// process where they are taken as arguments; they are kept out, and the limits of joining are tried.
#include "store/key_path.h"
#include "fuzz_input.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

namespace
{

bool isSeparator(wchar_t c)
{
    return c == L'/' || c == L'\\';
}

std::wstring trimmed(std::wstring text)
{
    while (!text.empty() && isSeparator(text.back()))
        text.pop_back();
    while (!text.empty() && isSeparator(text.front()))
        text.erase(0, 1);
    return text;
}

std::wstring withSlashes(std::wstring text)
{
    std::replace(text.begin(), text.end(), L'\\', L'/');
    return text;
}

QString reference(const std::wstring& text)
{
    return toQString(std::wstring_view(text));
}

void checkText(const KeyPath& path, const std::wstring& text)
{
    VR_HOLDS(path.copy() == reference(text), "a path has the text that was joined");
    VR_HOLDS(path.transient() == path.copy(), "a path for one call is the same");
    VR_HOLDS(path.length() == text.size() && path.isEmpty() == text.empty(), "a path counts characters");
    VR_HOLDS(path.units().size() == static_cast<std::size_t>(path.copy().size()), "its units are its text's");
    VR_HOLDS(path.fitsAlone() == (text.size() < 1022), "a free path has at most 1021 characters");
    const KeyPath copy(path);
    VR_HOLDS(copy.copy() == path.copy() && copy.length() == path.length(), "a copy is the same");
    KeyPath assigned;
    assigned.assign(path.units(), path.length());
    VR_HOLDS(assigned.copy() == path.copy() && assigned.length() == path.length(), "an assigned path is the same");
}

void checkArguments(const std::wstring& text)
{
    const std::wstring inner = trimmed(text);
    VR_HOLDS(trimmedPath(text.c_str()) == inner, "separators at the ends go");
    const ValuePath value = ValuePath::split(text.c_str());
    VR_HOLDS(value.name.has_value() != inner.empty(), "what has a character has a name");
    if (!value.name)
        return;
    const std::size_t separator = inner.find_last_of(L"/\\");
    const bool hasItem = separator != std::wstring::npos;
    VR_HOLDS(*value.name == (hasItem ? inner.substr(separator + 1) : inner), "the name is the last part");
    VR_HOLDS(value.item == (hasItem ? inner.substr(0, separator) : std::wstring()), "the item is what is before it");
    VR_HOLDS(!value.name->empty(), "a name is not empty");
    std::wstring item(value.item);
    while (!item.empty() && isSeparator(item.back()))
        item.pop_back();
    VR_HOLDS(value.trimmedItem() == item, "an item has no separator at its end");
}

void checkJoining(const std::wstring& root, const std::wstring& part, KeyPath::Slack slack)
{
    KeyPath path(root);
    std::wstring text = withSlashes(root);
    checkText(path, text);
    const bool fits =
        part.empty() || (root.size() + part.size() + static_cast<std::size_t>(slack) <= KeyPath::kLongest &&
                         part.size() + 1 + root.size() < kPathCapacity);
    VR_HOLDS(path.join(part, slack) == fits, "what fits is joined");
    if (fits && !part.empty())
        text += L'/' + withSlashes(part);
    checkText(path, text);

    const bool fitsRaw = text.size() + 1 + part.size() < kPathCapacity;
    VR_HOLDS(path.appendComponent(part) == fitsRaw, "a component that fits is appended");
    if (fitsRaw)
        text += L'/' + part;
    checkText(path, text);
    const bool fitsMore = text.size() + part.size() < kPathCapacity;
    VR_HOLDS(path.append(part) == fitsMore, "a text that fits is appended");
    if (fitsMore)
        text += part;
    checkText(path, text);
    path.replaceBackslashes();
    checkText(path, withSlashes(text));
}

/// A text of the wanted length out of a short one.
std::wstring repeated(const std::wstring& text, std::size_t length)
{
    std::wstring result;
    while (!text.empty() && result.size() < length)
        result += text;
    return result.empty() ? result : result.substr(0, length);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vrfuzz::Input input(data, size);
    const unsigned int form = input.takeByte();
    const std::size_t stretch = input.takeByte() * 5U; // up to beyond the limits
    const std::wstring root = vrfuzz::wide(input.takeLine());
    const std::wstring part = input.wideRest((form & 1U) != 0);
    const std::wstring longRoot = (form & 2U) != 0 ? repeated(root, stretch) : root;
    const std::wstring longPart = (form & 4U) != 0 ? repeated(part, stretch) : part;
    if (longRoot.size() < kPathCapacity)
        checkJoining(longRoot, longPart, (form & 8U) != 0 ? KeyPath::Slack::One : KeyPath::Slack::Two);
    const std::wstring argument = vrfuzz::terminated(longPart);
    if (argument.size() < kPathCapacity)
        checkArguments(argument);
    return 0;
}
