// Layout of the exported classes and values of the exported enumerations: modules are compiled against them.
#include <cstddef>
#include <type_traits>

#include <gtest/gtest.h>

#include "VrUInfo/VrUInfo.h"

// The classes' friend: sees their fields.
struct VornaLayout {
    using Config = VornaConfig;
    using Items = VornaConfig::ItemIterator;
    using Values = VornaConfig::ValueIterator;

    // Field orders; offsetof of these classes is what every compiler for this platform gives.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
    static constexpr std::size_t kConfig[] = {
        offsetof(Config, m_productName),       offsetof(Config, m_companyName),     offsetof(Config, m_profileName),
        offsetof(Config, m_language),          offsetof(Config, m_companyRootPath), offsetof(Config, m_productRootPath),
        offsetof(Config, m_initialized),       offsetof(Config, m_oemProductName),  offsetof(Config, m_oemCompanyName),
        offsetof(Config, m_oemCompanyLtdName), offsetof(Config, m_largeIcon),       offsetof(Config, m_smallIcon),
        offsetof(Config, m_oemAppIconPath),    offsetof(Config, m_version),         offsetof(Config, m_oemResourceDll)};

    static_assert(sizeof(VornaLanguage) == 16 && alignof(VornaLanguage) == 8);
    static_assert(offsetof(VornaLanguage, m_id) == 0 && offsetof(VornaLanguage, m_localName) == 8);
    static_assert(std::is_same_v<decltype(VornaLanguage::m_id), std::int32_t>);

    static_assert(sizeof(Items) == 16 && alignof(Items) == 8);
    static_assert(offsetof(Items, m_list) == 0 && offsetof(Items, m_index) == 8 && offsetof(Items, m_count) == 12);
    static_assert(sizeof(Values) == 16 && alignof(Values) == 8);
    static_assert(offsetof(Values, m_list) == 0 && offsetof(Values, m_index) == 8 && offsetof(Values, m_count) == 12);

    static_assert(offsetof(VornaProduct, m_edition) == sizeof(void*));
    static_assert(offsetof(VornaProduct, m_helpFile) == sizeof(void*) + 4);
    static_assert(offsetof(VornaProduct, m_userDataCacheDir) == sizeof(void*) + 4 + 512 * sizeof(wchar_t));
    static_assert(sizeof(VornaProduct::m_helpFile) == 512 * sizeof(wchar_t));
    static_assert(sizeof(VornaProduct::m_userDataCacheDir) == 1024 * sizeof(wchar_t));
#pragma GCC diagnostic pop
};

static_assert(sizeof(wchar_t) == 4);

static_assert(sizeof(VornVariant) == 12, "packed: the pointer follows the tag at once");
static_assert(offsetof(VornVariant, type) == 0 && offsetof(VornVariant, data) == 4);
static_assert(std::is_same_v<std::underlying_type_t<VornVariant::VarType>, std::int32_t>);
static_assert(VornVariant::kVarNone == 0 && VornVariant::kVarInt32 == 1 && VornVariant::kVarInt64 == 2);
static_assert(VornVariant::kVarDouble == 3 && VornVariant::kVarBinary == 4 && VornVariant::kVarString == 5);
static_assert(VornVariant::kVarText6 == 6 && VornVariant::kVarText7 == 7 && VornVariant::kVarText8 == 8);

static_assert(VornaConfig::ProductNameRoot == 0 && VornaConfig::VersionRoot == 1 && VornaConfig::LanguageRoot == 2);
static_assert(VornaConfig::ProfilesRoot == 3 && VornaConfig::CurrentProfileRoot == 4);
static_assert(VornaConfig::ApplicationsRoot == 5 && VornaConfig::RecentFileListRoot == 6);
static_assert(VornaConfig::SettingsRoot == 7 && VornaConfig::UserConfigRoot == 8);
static_assert(sizeof(VornaConfig::Path) == 4);

static_assert(Vorn::eOk == 0 && Vorn::eNotFound == 1 && Vorn::eUnsupportedType == 2 && Vorn::eBadSize == 3);
static_assert(Vorn::eBadPosition == 4 && Vorn::eMissing == 5 && Vorn::eBufferTooSmall == 6);
static_assert(Vorn::eFailed == 7 && Vorn::eNotBareName == 8);
static_assert(std::is_same_v<std::underlying_type_t<Vorn::ErrorStatus>, unsigned int>);

static_assert(!std::has_virtual_destructor_v<VornaProduct> && std::is_polymorphic_v<VornaProduct>);
static_assert(std::is_abstract_v<IVornaProduct> && std::is_base_of_v<IVornaProduct, VornaProduct>);
static_assert(!std::is_polymorphic_v<VornaConfig> && !std::is_polymorphic_v<VornaLanguage>);
static_assert(!std::is_polymorphic_v<VornaConfig::ItemIterator> && !std::is_polymorphic_v<VornaConfig::ValueIterator>);
static_assert(std::has_virtual_destructor_v<VornaConfigException>);
static_assert(std::is_base_of_v<VrExceptionWithMsg, VornaConfigException>);

namespace
{

// How the Itanium C++ ABI lays a virtual table out: the object begins with a pointer to its slots.
using Slot = void (*)();

const Slot* slotsOf(const void* object)
{
    return *static_cast<const Slot* const*>(object);
}

template <typename Result>
Result callSlot(const void* object, std::size_t slot)
{
    return reinterpret_cast<Result (*)(const void*)>(slotsOf(object)[slot])(object);
}

} // namespace

TEST(LayoutTest, FieldsOfTheConfigurationStandInTheirOrder)
{
    std::size_t former = 0;
    for (const std::size_t offset : VornaLayout::kConfig) {
        EXPECT_TRUE(offset == 0 || offset > former);
        former = offset;
    }
    EXPECT_EQ(sizeof(VornaConfig), 128U);
}

TEST(LayoutTest, SlotsOfTheExceptionAreDestructorsDescriptionCodeClassName)
{
    const VornaConfigException exception(L"message", true, L"file.cpp", 7);
    const VrException base;
    EXPECT_STREQ(callSlot<const wchar_t*>(&exception, 2), L"message");
    EXPECT_EQ(callSlot<int>(&exception, 3), 0);
    EXPECT_STREQ(callSlot<const wchar_t*>(&exception, 4), L"VrException");
    // Both destructors and the description are its own; code and class name are those of the base.
    EXPECT_NE(slotsOf(&exception)[0], slotsOf(&base)[0]);
    EXPECT_NE(slotsOf(&exception)[1], slotsOf(&base)[1]);
    EXPECT_NE(slotsOf(&exception)[2], slotsOf(&base)[2]);
    EXPECT_EQ(slotsOf(&exception)[3], slotsOf(&base)[3]);
    EXPECT_EQ(slotsOf(&exception)[4], slotsOf(&base)[4]);
}

TEST(LayoutTest, ExceptionCarriesMessageFlagFileAndLine)
{
    const VornaConfigException exception(L"message", true, L"file.cpp", 7);
    EXPECT_TRUE(exception.isExitProcess());
    EXPECT_STREQ(exception.file(), L"file.cpp");
    EXPECT_EQ(exception.line(), 7);
    EXPECT_FALSE(VornaConfigException(L"", false, L"", 0).isExitProcess());
}
