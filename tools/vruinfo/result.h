// A value, or what stands against it.
#pragma once

#include <utility>
#include <variant>

#include <QtCore/QString>

#include "command.h"

namespace vruinfo::tool
{

struct Problem {
    Exit exit;
    QString text;
};

template <typename Value>
class [[nodiscard]] Result final
{
public:
    Result(Value value) : m_content(std::move(value)) {}       // NOLINT(google-explicit-constructor)
    Result(Problem problem) : m_content(std::move(problem)) {} // NOLINT(google-explicit-constructor)

    explicit operator bool() const { return std::holds_alternative<Value>(m_content); }
    const Value& operator*() const { return std::get<Value>(m_content); }
    const Value* operator->() const { return &std::get<Value>(m_content); }
    [[nodiscard]] const Problem& problem() const { return std::get<Problem>(m_content); }

private:
    std::variant<Value, Problem> m_content;
};

} // namespace vruinfo::tool
