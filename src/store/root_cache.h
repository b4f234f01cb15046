// The roots of the tree as the settings object takes them, ready made: nearly every operation begins with one.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <set>
#include <string>

#include "VrUInfo/VornaConfig.h"

namespace vruinfo::internal
{

/// A root's UTF-16 units, and how many characters of wide text they stand for.
struct RootText {
    std::u16string units;
    std::size_t characters;

    bool operator<(const RootText& other) const { return units < other.units; }
};

/// Shared by all threads. A text handed out stays valid until the process ends, also when the identity changes: the
/// texts that ever were are kept, each once.
class RootCache final
{
public:
    /// Counts the changes of the identity; taken before a root is built, so that one built from a former identity is
    /// not kept.
    using Generation = unsigned int;

    [[nodiscard]] static RootCache& instance();

    /// Null when it has to be built.
    [[nodiscard]] const RootText* find(VornaConfig::Path root) const
    {
        return m_roots[root].load(std::memory_order_acquire);
    }
    [[nodiscard]] Generation generation() const { return m_generation.load(std::memory_order_acquire); }
    void keep(VornaConfig::Path root, RootText text, Generation builtIn);
    /// Company, product, language or profile changed: every root is built anew when it is next asked for.
    void identityChanged();

private:
    static constexpr std::size_t kRoots = VornaConfig::UserConfigRoot + 1;

    std::array<std::atomic<const RootText*>, kRoots> m_roots{};
    std::atomic<Generation> m_generation{0};
    std::mutex m_mutex; // guards m_texts, and every change of the two above
    std::set<RootText> m_texts;
};

} // namespace vruinfo::internal
