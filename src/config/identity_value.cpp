#include "config/identity_value.h"

#include "config/start_record.h"
#include "store/store_group.h"
#include "text/wide_text.h"

namespace vruinfo::internal
{
namespace
{

const wchar_t* reasonOf(IdentityText::Fault fault)
{
    switch (fault) {
    case IdentityText::Fault::OtherMark:
        return L"its mark is not 5";
    case IdentityText::Fault::Empty:
        return L"it is empty";
    default:
        return L"not there";
    }
}

} // namespace

IdentityText IdentityValue::lookUp(Marks marks) const
{
    return IdentityText::parse(StoreGroup(toQString(m_group)).value(toQString(m_name)), marks);
}

std::optional<std::wstring> IdentityValue::read(Marks marks) const
{
    const IdentityText identity = lookUp(marks);
    return identity.fault == IdentityText::Fault::None ? std::make_optional(toWide(identity.text)) : std::nullopt;
}

std::optional<std::wstring> IdentityValue::resolve(Marks marks) const
{
    const IdentityText identity = lookUp(marks);
    if (identity.fault == IdentityText::Fault::None)
        return toWide(identity.text);
    StartRecord::instance().passOver(place(), reasonOf(identity.fault));
    return std::nullopt;
}

std::wstring IdentityValue::place() const
{
    return std::wstring(m_group) + L"/" + m_name;
}

void IdentityValue::write(const wchar_t* text) const
{
    StoreGroup(toQString(m_group)).setValue(toQString(m_name), taggedText(kTextMark, toQString(text)));
}

} // namespace vruinfo::internal
