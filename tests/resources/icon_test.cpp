#include "resource_library.h"
#include "tool_run.h"

#include <QFile>
#include <QImage>
#include <gtest/gtest.h>

using resources::test::languageLibrary;
using resources::test::languages;
using resources::test::partnerLibrary;
using resources::test::readFile;
using resources::test::ResourceLibrary;

namespace
{

QString languageIcon()
{
    return QStringLiteral(":/VrUInfoRes/VrUInfoRes/IDI_VORNA_OEM_APPLICATION_EXE");
}
QString partnerIcon()
{
    return QStringLiteral(":/VrCustomRes/VrCustomRes/IDI_VORNA_OEM_APPLICATION_EXE");
}

QByteArray languagePicture()
{
    return readFile(QStringLiteral(RESOURCE_SOURCES "/icons/vorna.png"));
}
QByteArray partnerPicture()
{
    return readFile(QStringLiteral(RESOURCE_SOURCES "/partner/icon.png"));
}

/// A picture of full size, with a sign in the middle and nothing in the corner.
bool isIcon(const QByteArray& bytes)
{
    constexpr int kSide = 256;
    const QImage image = QImage::fromData(bytes);
    return image.size() == QSize(kSide, kSide) && qAlpha(image.pixel(0, 0)) == 0 &&
           qAlpha(image.pixel(kSide / 2, kSide / 2)) == 255;
}

class LanguageIcon : public testing::TestWithParam<std::string>
{
};

TEST_P(LanguageIcon, StandsInTheResourcesWhileTheLibraryIsLoaded)
{
    ASSERT_FALSE(QFile::exists(languageIcon()));
    const ResourceLibrary library(languageLibrary(GetParam()));
    ASSERT_EQ(library.loadError(), "");
    EXPECT_EQ(readFile(languageIcon()), languagePicture());
    EXPECT_TRUE(isIcon(readFile(languageIcon())));
}

INSTANTIATE_TEST_SUITE_P(All, LanguageIcon, testing::ValuesIn(languages()),
                         [](const auto& instance) { return resources::test::testName(instance.param); });

TEST(ResourceIcon, PartnerIconStandsUnderThePartnersPrefix)
{
    const ResourceLibrary partner(partnerLibrary());
    ASSERT_EQ(partner.loadError(), "");
    EXPECT_EQ(readFile(partnerIcon()), partnerPicture());
    EXPECT_FALSE(QFile::exists(languageIcon()));
    EXPECT_TRUE(isIcon(readFile(partnerIcon())));
}

TEST(ResourceIcon, LanguageAndPartnerLoadedTogetherKeepTheirOwnIcons)
{
    const ResourceLibrary language(languageLibrary("en-US"));
    const ResourceLibrary partner(partnerLibrary());
    ASSERT_NE(languagePicture(), partnerPicture());
    EXPECT_EQ(readFile(languageIcon()), languagePicture());
    EXPECT_EQ(readFile(partnerIcon()), partnerPicture());
}

TEST(ResourceIcon, OneOfTwoLanguagesGoesAndTheIconStays)
{
    const ResourceLibrary stays(languageLibrary("fr-FR"));
    {
        const ResourceLibrary goes(languageLibrary("it-IT"));
        ASSERT_EQ(readFile(languageIcon()), languagePicture());
    }
    EXPECT_EQ(readFile(languageIcon()), languagePicture());
}

TEST(ResourceIcon, UnloadingTheLastLibraryTakesTheIconAway)
{
    {
        const ResourceLibrary library(languageLibrary("ja-JP"));
        ASSERT_TRUE(QFile::exists(languageIcon()));
    }
    EXPECT_FALSE(QFile::exists(languageIcon()));
}

} // namespace
