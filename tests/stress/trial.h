// What the stress programs share: numbers on the command line, and faults that are counted and told.
#pragma once

#include <map>
#include <mutex>
#include <string>

namespace stress
{

/// "--name=number" for each name that there is; the numbers that are not given are as they were. Says how the program
/// is used, and ends it, when there is anything else.
class Numbers
{
public:
    using Defaults = std::map<std::string, unsigned int>;

    Numbers(int count, char** values, Defaults defaults, const char* usage);
    [[nodiscard]] unsigned int operator[](const std::string& name) const { return m_numbers.at(name); }

private:
    Defaults m_numbers;
};

/// Faults, from any thread. The first ten are told when they are found.
class Faults
{
public:
    void add(const std::string& fault);
    void expect(bool condition, const std::string& fault)
    {
        if (!condition)
            add(fault);
    }
    [[nodiscard]] unsigned int count() const;
    /// Says whether all is well. \return the program's exit code
    [[nodiscard]] int verdict(const std::string& what) const;

private:
    mutable std::mutex m_mutex;
    unsigned int m_count = 0;
};

/// A number for --seed where none is given.
[[nodiscard]] unsigned int anySeed();

} // namespace stress
