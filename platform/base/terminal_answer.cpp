#include "terminal_answer.h"

#include <algorithm>

namespace vrplatformbase::internal
{

namespace
{

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimmed(std::string_view line) noexcept
{
    const std::size_t first = line.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return line.substr(first, line.find_last_not_of(kBlanks) - first + 1);
}

char lowerCase(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsWithoutCase(std::string_view a, std::string_view b) noexcept
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

bool names(std::string_view typed, std::string_view word) noexcept
{
    return equalsWithoutCase(typed, word) || equalsWithoutCase(typed, word.substr(0, 1));
}

} // namespace

std::string promptOf(const ButtonSet& buttons)
{
    std::string prompt = "[";
    for (std::size_t i = 0; i < buttons.count; ++i)
        prompt.append(i > 0 ? "/" : "").append(wordOf(buttons.answers.at(i)));
    return prompt + "] ";
}

std::optional<int> answerOf(const ButtonSet& buttons, std::string_view line)
{
    const std::string_view typed = trimmed(line);
    if (typed.empty() || buttons.count == 1)
        return buttons.cautious;
    for (std::size_t i = 0; i < buttons.count; ++i) {
        if (names(typed, wordOf(buttons.answers.at(i))))
            return buttons.answers.at(i);
    }
    return std::nullopt;
}

} // namespace vrplatformbase::internal
