#include "store/tagged_text.h"

#include <array>
#include <cwchar>
#include <limits>

#include "text/wide_text.h"

namespace vruinfo::internal
{
namespace
{

constexpr QLatin1Char kSeparator('$');

char digitOf(int number)
{
    return static_cast<char>('0' + number);
}

} // namespace

TaggedText TaggedText::parse(const QString& text)
{
    const bool isTagged = text.size() >= 2 && text.at(1) == kSeparator && text.at(0) != kSeparator;
    if (!isTagged)
        return {};
    return {text.at(0), 2};
}

int tagNumber(QChar tag)
{
    const ushort unit = tag.unicode();
    return unit >= '0' && unit <= '9' ? unit - '0' : 0;
}

QString taggedText(int tag, const QString& payload)
{
    return QString(QLatin1Char(digitOf(tag))) + kSeparator + payload;
}

QString taggedText(int tag, const wchar_t* payload)
{
    const char prefix[] = {digitOf(tag), kSeparator.toLatin1()};
    return toQString(QLatin1String(prefix, sizeof prefix), payload);
}

QString taggedNumber(int tag, std::int64_t number)
{
    constexpr std::size_t kMost = std::numeric_limits<std::int64_t>::digits10 + 4; // digits, sign, tag and "$"
    std::array<QChar, kMost> units;
    std::size_t begin = units.size();
    auto rest = static_cast<std::uint64_t>(number);
    if (number < 0)
        rest = 0 - rest;
    do {
        units[--begin] = QLatin1Char(digitOf(static_cast<int>(rest % 10)));
        rest /= 10;
    } while (rest != 0);
    if (number < 0)
        units[--begin] = QLatin1Char('-');
    units[--begin] = kSeparator;
    units[--begin] = QLatin1Char(digitOf(tag));
    return QString(units.data() + begin, static_cast<int>(units.size() - begin));
}

IdentityText IdentityText::parse(const QVariant& stored, Marks marks)
{
    if (stored.isNull())
        return {Fault::Absent, {}};
    const QString text = stored.toString();
    const TaggedText tagged = TaggedText::parse(text);
    if (marks == Marks::TextOnly && tagged.tag && tagNumber(*tagged.tag) != kTextMark)
        return {Fault::OtherMark, {}};
    const QString payload = text.mid(tagged.payloadBegin);
    return {payload.isEmpty() ? Fault::Empty : Fault::None, payload};
}

} // namespace vruinfo::internal
