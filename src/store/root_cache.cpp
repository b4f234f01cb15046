#include "store/root_cache.h"

#include <utility>

namespace vruinfo::internal
{

RootCache& RootCache::instance()
{
    static auto* const kCache = new RootCache; // never destroyed: roots are asked for until the very end of the process
    return *kCache;
}

void RootCache::keep(VornaConfig::Path root, RootText text, Generation builtIn)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (builtIn == m_generation.load(std::memory_order_relaxed))
        m_roots[root].store(&*m_texts.insert(std::move(text)).first, std::memory_order_release);
}

void RootCache::identityChanged()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_generation.fetch_add(1, std::memory_order_release);
    for (std::atomic<const RootText*>& root : m_roots)
        root.store(nullptr, std::memory_order_release);
}

} // namespace vruinfo::internal
