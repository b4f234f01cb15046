// The words in which tests of the start speak: starting with names, the identity as one line, a probe that starts.
#pragma once

#include <array>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "VrPlatformBase/VrPlatformBase.h"
#include "VrUInfo/VornaConfig.h"
#include "installation.h"

namespace vrtest
{

/// `InitVornConfig` with company, product, language and profile; a missing one, or "-", is null.
inline unsigned int startWith(const std::vector<std::string>& names)
{
    std::array<std::wstring, 4> texts;
    std::array<const wchar_t*, 4> given{};
    for (std::size_t i = 0; i < given.size() && i < names.size(); ++i) {
        texts[i] = wide(names[i]);
        given[i] = names[i] == "-" ? nullptr : texts[i].c_str();
    }
    return InitVornConfig(given[0], given[1], given[2], given[3]);
}

/// Makes a file with its directories.
inline void writeFile(const std::filesystem::path& file, const std::string& bytes)
{
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

/// "company/product/language/profile"; "-" where there is no profile.
inline std::string identity()
{
    const VornaConfig& config = *vornConfig();
    const wchar_t* const profile = config.profileName();
    return utf8(config.companyName()) + "/" + utf8(config.productName()) + "/" + utf8(config.language().shortName()) +
           "/" + (profile ? utf8(profile) : "-");
}

/// A key path of the settings tree by its root.
inline std::string rootText(VornaConfig::Path root)
{
    std::array<wchar_t, kVornPathCapacity> path{};
    vornConfig()->getRegRootPath(root, path.data());
    return utf8(path.data());
}

/// Path of the settings file as the library tells it; empty when it tells none.
inline std::string configPath()
{
    std::array<char, 8192> path{};
    return getConfigPath(static_cast<int>(path.size()), path.data()) ? path.data() : "";
}

/// The message boxes that this process has shown; each gets the same answer.
class Boxes
{
public:
    struct Box {
        HWND owner;
        std::string text;
        std::string caption;
        unsigned int style;
    };

    static void answerWith(int answer)
    {
        s_answer = answer;
        VrSetMessageBoxHandler(record);
    }
    /// The same, and each box is printed: "box <style> <caption>: <text>".
    static void tellAndAnswerWith(int answer)
    {
        s_isTelling = true;
        answerWith(answer);
    }
    static const std::vector<Box>& shown() { return s_shown; }

private:
    static int record(HWND owner, const wchar_t* text, const wchar_t* caption, unsigned int style)
    {
        s_shown.push_back({owner, utf8(text), utf8(caption), style});
        if (s_isTelling)
            std::cout << "box " << style << " " << s_shown.back().caption << ": " << s_shown.back().text << "\n";
        return s_answer;
    }

    static inline std::vector<Box> s_shown;
    static inline int s_answer = 0;
    static inline bool s_isTelling = false;
};

} // namespace vrtest

/// Starts with the four names given and prints "<status> <identity>"; a fifth argument is the answer to all boxes.
PROBE(start)
{
    if (arguments.size() > 4)
        vrtest::Boxes::tellAndAnswerWith(std::stoi(arguments[4]));
    const unsigned int status = vrtest::startWith(arguments);
    std::cout << status << " " << vrtest::identity() << "\n";
    return 0;
}
