#include "doctor/value_fault.h"

#include <limits>

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include "VrUInfo/VornVariant.h"
#include "doctor/file_state.h"
#include "store/key_path.h"
#include "store/tagged_text.h"
#include "text.h"
#include "value_text.h"

namespace vruinfo::tool::doctor
{
namespace
{

using vruinfo::internal::TaggedText;

constexpr QLatin1Char kSeparator('/');
constexpr int kHexDigitsOfADouble = 16;
constexpr int kNoLimit = std::numeric_limits<int>::max();

/// A value that the library reads itself. "*" stands for any name.
struct Expected {
    const char* path;
    VornVariant::VarType type;
    int longest; ///< Characters of a text; a longer one ends the process.
};

constexpr Expected kExpected[] = {
    {"Software/*/CurProduct", VornVariant::kVarString, 255},
    {"Software/*/CurVer", VornVariant::kVarString, kNoLimit},
    {"Software/*/*/CurVer", VornVariant::kVarString, kNoLimit},
    {"Software/*/*/*/CurVer", VornVariant::kVarString, 7},
    {"Software/*/*/*/*/AutoMigrate", VornVariant::kVarInt32, kNoLimit},
    {"Software/*/*/*/*/Profiles/Profiles", VornVariant::kVarString, 1023},
    {"Software/*/*/*/*/Profiles/*/CommonSettings/CustomResFile", VornVariant::kVarString, kNoLimit},
    {"Software/*/*/*/*/Settings/UserConfig/Config/UIStyle", VornVariant::kVarString, kNoLimit},
};

/// What is wrong, in the middle of a sentence, and the type to write it anew with.
struct Fault {
    const char* id;
    QString words;
    VornVariant::VarType type;
};

bool isLike(const QStringList& names, const Expected& expected)
{
    const QStringList pattern = text(expected.path).split(kSeparator);
    bool isSame = pattern.size() == names.size();
    for (int i = 0; isSame && i < names.size(); ++i)
        isSame = pattern.at(i) == QLatin1String("*") || pattern.at(i) == names.at(i);
    return isSame;
}

const Expected* expectationOf(const QString& path)
{
    const QStringList names = path.split(kSeparator);
    for (const Expected& expected : kExpected) {
        if (isLike(names, expected))
            return &expected;
    }
    return nullptr;
}

bool isHex(const QString& digits)
{
    static const QRegularExpression kHex(QStringLiteral("\\A[0-9A-Fa-f]*\\z"));
    return kHex.match(digits).hasMatch();
}

bool isWhole(const QString& digits)
{
    static const QRegularExpression kWhole(QStringLiteral("\\A[+-]?[0-9]+\\z"));
    return kWhole.match(digits).hasMatch();
}

std::optional<Fault> integerFault(VornVariant::VarType type, const QString& digits)
{
    const QString said = quoted(digits);
    bool isNumber = false;
    const qlonglong number = digits.toLongLong(&isNumber);
    if (!isNumber && !isWhole(digits.trimmed()))
        return Fault{"value.no-number", QStringLiteral("%1 is no whole number and reads as 0").arg(said), type};
    if (!isNumber)
        return Fault{"value.out-of-range", QStringLiteral("%1 does not fit int64 and reads as 0").arg(said), type};
    const bool fits =
        number >= std::numeric_limits<std::int32_t>::min() && number <= std::numeric_limits<std::int32_t>::max();
    if (type == VornVariant::kVarInt32 && !fits)
        return Fault{"value.out-of-range",
                     QStringLiteral("%1 does not fit int32 and reads as its low 32 bits").arg(said), type};
    return std::nullopt;
}

std::optional<Fault> payloadFault(const TaggedText& tagged, const QString& payload)
{
    switch (vruinfo::internal::tagNumber(*tagged.tag)) {
    case VornVariant::kVarInt32:
        return integerFault(VornVariant::kVarInt32, payload);
    case VornVariant::kVarInt64:
        return integerFault(VornVariant::kVarInt64, payload);
    case VornVariant::kVarDouble:
        if (payload.size() == kHexDigitsOfADouble && isHex(payload))
            return std::nullopt;
        return Fault{"value.no-double",
                     QStringLiteral("a double has 16 hexadecimal digits, %1 is other").arg(quoted(payload)),
                     VornVariant::kVarDouble};
    case VornVariant::kVarBinary:
        if (payload.size() % 2 == 0 && isHex(payload))
            return std::nullopt;
        return Fault{"value.no-binary",
                     QStringLiteral("%1 is no even number of hexadecimal digits").arg(quoted(payload)),
                     VornVariant::kVarBinary};
    case VornVariant::kVarString:
        return std::nullopt;
    default:
        return Fault{"value.unknown-tag", QStringLiteral("its tag \"%1\" is that of no type").arg(*tagged.tag),
                     VornVariant::kVarString};
    }
}

std::optional<Fault> textFault(const QString& stored)
{
    const TaggedText tagged = TaggedText::parse(stored);
    return tagged.tag ? payloadFault(tagged, stored.mid(tagged.payloadBegin)) : std::nullopt;
}

std::optional<Fault> variantFault(const QVariant& stored)
{
    if (stored.isNull())
        return Fault{"value.invalid", QStringLiteral("it is an invalid value and counts as absent"),
                     VornVariant::kVarString};
    if (stored.userType() == QMetaType::QStringList)
        return Fault{"value.no-text",
                     QStringLiteral("it is a list, since commas stand outside quotes, and reads as an empty text"),
                     VornVariant::kVarString};
    if (stored.userType() != QMetaType::QString)
        return Fault{"value.no-text",
                     QStringLiteral("it is of the settings library's own type %1, where a text is expected")
                         .arg(text(stored.typeName())),
                     VornVariant::kVarString};
    return textFault(stored.toString());
}

VornVariant::VarType typeOf(const QString& stored)
{
    const TaggedText tagged = TaggedText::parse(stored);
    const int number = tagged.tag ? vruinfo::internal::tagNumber(*tagged.tag) : vruinfo::internal::kTextMark;
    return static_cast<VornVariant::VarType>(number);
}

std::optional<Fault> expectationFault(const Expected& expected, const QString& stored)
{
    const VornVariant::VarType type = typeOf(stored);
    if (type != expected.type)
        return Fault{"value.wrong-tag",
                     QStringLiteral("the library expects type %1 here and finds %2")
                         .arg(typeName(expected.type), typeName(type)),
                     expected.type};
    const QString payload = stored.mid(TaggedText::parse(stored).payloadBegin);
    const bool fits = expected.type != VornVariant::kVarString || payload.toUcs4().size() <= expected.longest;
    if (fits)
        return std::nullopt;
    return Fault{"value.too-long",
                 QStringLiteral("a name of more than %1 characters here ends the process").arg(expected.longest),
                 expected.type};
}

/// Why no operation of the library reaches a value there.
std::optional<QString> reachFault(const QString& path)
{
    if (path.toUcs4().size() > static_cast<int>(vruinfo::internal::KeyPath::kLongest))
        return QStringLiteral("Its path has more than %1 characters").arg(vruinfo::internal::KeyPath::kLongest);
    if (path.contains(QLatin1Char('\\')))
        return QStringLiteral("Its path has a backslash, which counts as a separator");
    const bool hasEmptyName =
        path.startsWith(kSeparator) || path.endsWith(kSeparator) || path.contains(QLatin1String("//"));
    return hasEmptyName ? std::optional<QString>(QStringLiteral("Its path has an empty name")) : std::nullopt;
}

Finding unreachable(const QString& path, const QString& why)
{
    return warning("value.unreachable", path, why + QStringLiteral(", so that no program can name it."),
                   QStringLiteral("Delete its line in a text editor."));
}

Finding findingOf(const Fault& fault, const QString& path)
{
    const QString anew = QStringLiteral("Write it anew: %1 VALUE --type %2, or remove it: %3")
                             .arg(toolLine("set", path), typeName(fault.type), toolLine("rm", path));
    const QString meaning = QStringLiteral("The value cannot be used as it stands: %1.").arg(fault.words);
    const bool isFatal = QLatin1String(fault.id) == QLatin1String("value.too-long");
    return isFatal ? error(fault.id, path, meaning, anew) : warning(fault.id, path, meaning, anew);
}

} // namespace

std::optional<Finding> faultOfValue(const QString& path, const QVariant& stored)
{
    if (const auto why = reachFault(path))
        return unreachable(path, *why);
    std::optional<Fault> fault = variantFault(stored);
    const Expected* const expected = expectationOf(path);
    if (!fault && expected)
        fault = expectationFault(*expected, stored.toString());
    return fault ? std::optional<Finding>(findingOf(*fault, path)) : std::nullopt;
}

} // namespace vruinfo::tool::doctor
