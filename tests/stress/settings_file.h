// A settings file read with an eye of its own: neither through the library nor through the settings library.
#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace stress
{

/// What stands in a settings file: its values by their whole keys, both as UTF-16, or what is wrong with it. Only what
/// the settings library writes is right: sections, "key=value" lines, blank lines, each with its line end.
struct SettingsFile {
    using Values = std::map<std::u16string, std::u16string>;

    Values values;
    std::string fault; ///< Empty where the file is whole.

    [[nodiscard]] static SettingsFile read(const std::filesystem::path& file);
    [[nodiscard]] static SettingsFile parse(const std::string& bytes);
    /// The values below an item, by what their keys have behind "item/".
    [[nodiscard]] Values below(const std::u16string& item) const;
};

/// A file's bytes at one moment; nothing distinguishes an empty file from a missing one.
[[nodiscard]] std::string bytesOf(const std::filesystem::path& file);

} // namespace stress
