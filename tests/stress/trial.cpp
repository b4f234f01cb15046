#include "trial.h"

#include <cstdlib>
#include <iostream>
#include <optional>
#include <random>

namespace stress
{
namespace
{

constexpr unsigned int kToldFaults = 10;
constexpr int kMisuse = 2;

std::optional<unsigned int> numberIn(const std::string& text)
{
    const bool isNumber = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::optional(static_cast<unsigned int>(std::stoul(text))) : std::nullopt;
}

} // namespace

Numbers::Numbers(int count, char** values, Defaults defaults, const char* usage) : m_numbers(std::move(defaults))
{
    for (int i = 1; i < count; ++i) {
        const std::string argument = values[i];
        const std::size_t equals = argument.find('=');
        const auto place = m_numbers.find(argument.rfind("--", 0) == 0 ? argument.substr(2, equals - 2) : "");
        const auto number = numberIn(equals == std::string::npos ? "" : argument.substr(equals + 1));
        if (place == m_numbers.end() || !number) {
            std::cerr << usage;
            std::exit(kMisuse);
        }
        place->second = *number;
    }
}

void Faults::add(const std::string& fault)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (++m_count <= kToldFaults)
        std::cout << "FAULT: " << fault << std::endl;
}

unsigned int Faults::count() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_count;
}

int Faults::verdict(const std::string& what) const
{
    const unsigned int found = count();
    std::cout << what << ": " << (found == 0 ? "passed" : std::to_string(found) + " faults") << std::endl;
    return found == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

unsigned int anySeed()
{
    return std::random_device()();
}

} // namespace stress
