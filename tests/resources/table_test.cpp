#include "resource_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using resources::test::languageLibrary;
using resources::test::languages;
using resources::test::partnerLibrary;
using resources::test::ResourceLibrary;
using resources::test::Texts;

namespace
{

constexpr std::uint32_t kFirstOwnName = 1001;
constexpr std::uint32_t kLastOwnName = 1015;
constexpr std::uint32_t kUnknownLanguage = 1103;
constexpr std::uint32_t kCompany = 4091;
constexpr std::uint32_t kProduct = 4092;
constexpr std::uint32_t kLegalName = 4095;

// Characters that the readers of these texts have room for, without the terminator.
constexpr std::size_t kLanguageNameLimit = 62;
constexpr std::size_t kBrandNameLimit = 1022;

bool isAscending(const std::vector<VrResourceString>& rows)
{
    const auto notAbove = [](const VrResourceString& a, const VrResourceString& b) { return a.id >= b.id; };
    return std::adjacent_find(rows.begin(), rows.end(), notAbove) == rows.end();
}

std::set<std::uint32_t> idsOf(const Texts& texts)
{
    std::set<std::uint32_t> ids;
    for (const auto& entry : texts) {
        ids.insert(entry.first);
    }
    return ids;
}

std::set<std::uint32_t> expectedIds()
{
    std::set<std::uint32_t> ids = {kUnknownLanguage, kCompany, kProduct, kLegalName};
    for (std::uint32_t id = kFirstOwnName; id <= kLastOwnName; ++id) {
        ids.insert(id);
    }
    return ids;
}

/// The ids of texts that are empty or longer than their readers have room for.
std::vector<std::uint32_t> misfits(const Texts& texts)
{
    std::vector<std::uint32_t> ids;
    for (const auto& [id, text] : texts) {
        const std::size_t limit = id <= kUnknownLanguage ? kLanguageNameLimit : kBrandNameLimit;
        if (text.empty() || text.size() > limit) {
            ids.push_back(id);
        }
    }
    return ids;
}

class LanguageTable : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override { ASSERT_EQ(m_library.loadError(), ""); }

    ResourceLibrary m_library{languageLibrary(GetParam())};
};

TEST_P(LanguageTable, RowsAscendById)
{
    const auto rows = m_library.rows();
    ASSERT_FALSE(rows.empty());
    EXPECT_TRUE(isAscending(rows));
}

TEST_P(LanguageTable, EveryTextIsThereAndNoOther)
{
    EXPECT_EQ(idsOf(m_library.texts()), expectedIds());
}

TEST_P(LanguageTable, EachLanguageHasItsOwnNameInItsOwnTongue)
{
    const std::vector<std::wstring> expected = {L"Čeština",   L"Deutsch",  L"English", L"Español",  L"Français",
                                                L"Magyar",    L"Italiano", L"日本語",  L"한국어",   L"Polski",
                                                L"Português", L"Русский",  L"Türkçe",  L"简体中文", L"繁體中文"};
    const Texts texts = m_library.texts();
    std::vector<std::wstring> names;
    for (std::uint32_t id = kFirstOwnName; id <= kLastOwnName && texts.count(id) > 0; ++id) {
        names.push_back(texts.at(id));
    }
    EXPECT_EQ(names, expected);
}

TEST_P(LanguageTable, BrandIsTheSameInEveryLanguage)
{
    const Texts texts = m_library.texts();
    EXPECT_EQ(texts.at(kCompany), L"HALVIK");
    EXPECT_EQ(texts.at(kProduct), L"VORNA");
    EXPECT_EQ(texts.at(kLegalName), L"HALVIK CO., LTD.(Eastport)");
}

TEST_P(LanguageTable, TextsFitTheBuffersOfTheirReaders)
{
    const Texts texts = m_library.texts();
    ASSERT_FALSE(texts.empty());
    EXPECT_EQ(misfits(texts), std::vector<std::uint32_t>());
}

INSTANTIATE_TEST_SUITE_P(All, LanguageTable, testing::ValuesIn(languages()),
                         [](const auto& instance) { return resources::test::testName(instance.param); });

TEST(ResourceTable, WordForAnUnknownLanguageIsThatOfTheLibrarysTongue)
{
    const std::vector<std::wstring> expected = {L"Neznámý",    L"Unbekannt",  L"Unknown",      L"Desconocido",
                                                L"Inconnue",   L"Ismeretlen", L"Sconosciuta",  L"不明",
                                                L"알 수 없음", L"Nieznany",   L"Desconhecido", L"Неизвестный",
                                                L"Bilinmeyen", L"未知",       L"不明"};
    std::vector<std::wstring> words;
    for (const std::string& language : languages()) {
        words.push_back(ResourceLibrary(languageLibrary(language)).texts().at(kUnknownLanguage));
    }
    EXPECT_EQ(words, expected);
}

TEST(ResourceTable, LibrariesLoadedTogetherKeepTheirOwnTexts)
{
    const ResourceLibrary german(languageLibrary("de-DE"));
    const ResourceLibrary polish(languageLibrary("pl-PL"));
    const ResourceLibrary partner(partnerLibrary());
    EXPECT_EQ(german.texts().at(kUnknownLanguage), L"Unbekannt");
    EXPECT_EQ(polish.texts().at(kUnknownLanguage), L"Nieznany");
    EXPECT_EQ(partner.texts().at(kProduct), L"Kestrel Draft");
}

TEST(ResourceTable, PartnerBrandHasItsOwnNamesAndTexts)
{
    const ResourceLibrary partner(partnerLibrary());
    ASSERT_EQ(partner.loadError(), "");
    EXPECT_TRUE(isAscending(partner.rows()));
    const Texts expected = {{kCompany, L"Northmoor"},
                            {kProduct, L"Kestrel Draft"},
                            {kLegalName, L"Northmoor Engineering Ltd."},
                            {5001, L"Welcome to Kestrel Draft"},
                            {5002, L"Drawing support: weekdays, 9–17 h"},
                            {5003, L"Kestrel Draft\nby Northmoor Engineering Ltd."},
                            {5004, L"Scale: "}};
    EXPECT_EQ(partner.texts(), expected);
}

} // namespace
