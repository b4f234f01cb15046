// The text form of a value in the settings file: a tag in decimal, "$", the payload. The one place that knows
// it.
#pragma once

#include <cstdint>
#include <optional>

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace vruinfo::internal
{

/// Tag of texts, and the mark of the identity values.
constexpr int kTextMark = 5;

/// A stored text taken apart: the tag, when the first "$" of the text is its second character, and where the
/// payload begins. A text of another shape has no tag and is payload as a whole.
struct TaggedText {
    std::optional<QChar> tag;
    int payloadBegin = 0;

    [[nodiscard]] static TaggedText parse(const QString& text);
};

/// Number of a tag character; 0 for what is no decimal digit.
[[nodiscard]] int tagNumber(QChar tag);

/// The text form of a payload that is text already.
[[nodiscard]] QString taggedText(int tag, const QString& payload);
/// The same for wide text.
[[nodiscard]] QString taggedText(int tag, const wchar_t* payload);
/// The text form of an integer.
[[nodiscard]] QString taggedNumber(int tag, std::int64_t number);

/// Which marks an identity value ("CurProduct", "CurVer", "Profiles") may carry to be read.
enum class Marks { TextOnly, Any };

/// The payload of an identity value, or why there is none. No mark counts as 5.
struct IdentityText {
    enum class Fault { None, Absent, OtherMark, Empty };

    Fault fault = Fault::None;
    QString text;

    [[nodiscard]] static IdentityText parse(const QVariant& stored, Marks marks);
};

} // namespace vruinfo::internal
