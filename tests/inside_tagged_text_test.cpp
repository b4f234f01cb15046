// The text form of values: tag, "$", payload; and what identity values make of it.
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include "store/tagged_text.h"

using namespace vruinfo::internal;

namespace
{

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QVariant stored(const char* utf8)
{
    return QVariant(text(utf8));
}

/// Name of the fault, or the text in quotes.
std::string outcome(const QVariant& value, Marks marks)
{
    const IdentityText identity = IdentityText::parse(value, marks);
    switch (identity.fault) {
    case IdentityText::Fault::Absent:
        return "absent";
    case IdentityText::Fault::OtherMark:
        return "other mark";
    case IdentityText::Fault::Empty:
        return "empty";
    default:
        return "'" + identity.text.toStdString() + "'";
    }
}

} // namespace

TEST(TaggedText, HasATagWhenItsFirstDollarIsItsSecondCharacter)
{
    for (const char* const tagged : {"1$", "5$text", "a$b", "1$2$3", "\u00FC$", " $", "5$$"}) {
        const TaggedText parsed = TaggedText::parse(text(tagged));
        EXPECT_EQ(parsed.tag, text(tagged).at(0)) << tagged;
        EXPECT_EQ(parsed.payloadBegin, 2) << tagged;
    }
}

TEST(TaggedText, OfAnotherShapeIsPayloadAsAWhole)
{
    for (const char* const plain : {"", "5", "$", "$$", "$5$", "12$5", "text", "text$", "\U0001F600$5"}) {
        const TaggedText parsed = TaggedText::parse(text(plain));
        EXPECT_FALSE(parsed.tag) << plain;
        EXPECT_EQ(parsed.payloadBegin, 0) << plain;
    }
}

TEST(TagNumber, IsTheDigitOrZero)
{
    for (int digit = 0; digit <= 9; ++digit)
        EXPECT_EQ(tagNumber(QChar(static_cast<ushort>('0' + digit))), digit);
    for (const ushort other :
         {ushort('/'), ushort(':'), ushort('a'), ushort(' '), ushort(0), ushort(0x665), ushort(0xFF15)})
        EXPECT_EQ(tagNumber(QChar(other)), 0) << other;
}

TEST(TaggedTextForm, IsTagDollarPayload)
{
    EXPECT_EQ(taggedText(5, text("Default")), text("5$Default"));
    EXPECT_EQ(taggedText(4, QString()), text("4$"));
    EXPECT_EQ(taggedText(5, text("%1$%2 %1")), text("5$%1$%2 %1"));
}

TEST(TaggedTextForm, TakesWideText)
{
    EXPECT_EQ(taggedText(5, L"a\U0001F600"), text("5$a\U0001F600"));
    EXPECT_EQ(taggedText(5, L""), text("5$"));
}

TEST(TaggedTextForm, OfNumbersIsWhatTheSettingsLibraryWouldPrint)
{
    using Limits = std::numeric_limits<std::int64_t>;
    std::vector<std::int64_t> numbers = {0, 1, -1, 9, 10, -10, 42, Limits::max(), Limits::min(), Limits::min() + 1};
    for (std::int64_t power = 1; power < Limits::max() / 10; power *= 10)
        numbers.insert(numbers.end(), {power - 1, power, power + 1, -power});
    for (const std::int64_t number : numbers)
        EXPECT_EQ(taggedNumber(2, number), QStringLiteral("%1$%2").arg(2).arg(qlonglong(number))) << number;
}

TEST(IdentityText, IsThePayloadOfAMarkedText)
{
    for (const Marks marks : {Marks::TextOnly, Marks::Any}) {
        EXPECT_EQ(outcome(stored("5$Default"), marks), "'Default'");
        EXPECT_EQ(outcome(stored("5$a$b"), marks), "'a$b'");
    }
}

TEST(IdentityText, WithoutAMarkIsTheWholeText)
{
    for (const Marks marks : {Marks::TextOnly, Marks::Any}) {
        EXPECT_EQ(outcome(stored("Default"), marks), "'Default'");
        EXPECT_EQ(outcome(stored("12$5"), marks), "'12$5'");
        EXPECT_EQ(outcome(stored("$5$x"), marks), "'$5$x'");
    }
}

TEST(IdentityText, OfAnotherMarkIsReadOnlyWhereAnyMarkMayStand)
{
    for (const char* const marked : {"7$Work", "1$Work", "0$Work", "a$Work", "\u0665$Work"}) {
        EXPECT_EQ(outcome(stored(marked), Marks::TextOnly), "other mark") << marked;
        EXPECT_EQ(outcome(stored(marked), Marks::Any), "'Work'") << marked;
    }
}

TEST(IdentityText, OfNothingIsAbsent)
{
    EXPECT_EQ(outcome(QVariant(), Marks::Any), "absent");
    EXPECT_EQ(outcome(QVariant(QString()), Marks::TextOnly), "absent");
}

TEST(IdentityText, OfAnEmptyPayloadIsEmpty)
{
    EXPECT_EQ(outcome(stored("5$"), Marks::TextOnly), "empty");
    EXPECT_EQ(outcome(stored("7$"), Marks::Any), "empty");
    EXPECT_EQ(outcome(stored(""), Marks::Any), "empty");
    EXPECT_EQ(outcome(QVariant(QStringList{text("5$a"), text("b")}), Marks::Any), "empty");
}
