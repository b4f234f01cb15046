#include "commands.h"

#include <chrono>
#include <cmath>
#include <csignal>

#include <QtCore/QDateTime>
#include <QtCore/QJsonArray>

#include "interruption.h"
#include "settings_watch.h"
#include "store.h"

namespace vruinfo::tool
{
namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kInterval(200);
constexpr double kLongestWatch = 1e9; // seconds; some thirty years, which the clock can hold

/// When to end by itself; nothing: not for that reason.
struct Limits {
    std::optional<milliseconds> time;
    std::optional<std::size_t> count;
};

Problem wrongNumber(const QString& text, const char* option, const char* wanted)
{
    return {Exit::Misuse, QStringLiteral("'%1' after --%2 is not %3")
                              .arg(text, vruinfo::tool::text(option), vruinfo::tool::text(wanted))};
}

Result<std::optional<milliseconds>> timeLimit(const Context& context)
{
    using Limit = std::optional<milliseconds>;
    const std::optional<QString> text = context.option("for");
    if (!text)
        return Limit();
    bool isNumber = false;
    const double seconds = text->toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0 && seconds <= kLongestWatch))
        return wrongNumber(*text, "for", "a number of seconds, such as 60 or 0.5");
    return Limit(milliseconds(std::llround(seconds * 1000)));
}

Result<std::optional<std::size_t>> countLimit(const Context& context)
{
    using Limit = std::optional<std::size_t>;
    const std::optional<QString> text = context.option("count");
    if (!text)
        return Limit();
    bool isNumber = false;
    const uint count = text->toUInt(&isNumber);
    if (!isNumber || count == 0)
        return wrongNumber(*text, "count", "a whole number from 1");
    return Limit(count);
}

Result<Limits> limitsOf(const Context& context)
{
    const auto time = timeLimit(context);
    if (!time)
        return time.problem();
    const auto count = countLimit(context);
    if (!count)
        return count.problem();
    return Limits{*time, *count};
}

/// Prints changes as they come, until one of the limits is reached or something else ends it.
class Watching final
{
public:
    Watching(const Context& context, const Place& place, const Limits& limits) :
        m_context(context), m_place(place), m_watch(settingsFile(), place), m_count(limits.count)
    {
        if (limits.time)
            m_end = Clock::now() + *limits.time;
    }

    [[nodiscard]] Interruption::Kind run()
    {
        const Interruption interruption;
        print(m_watch.look(m_context.printer()));
        for (bool isLast = false; !isLast && m_count != std::size_t{0};) {
            isLast = m_end && *m_end - Clock::now() <= kInterval;
            const Interruption::Kind kind = interruption.wait(isLast ? timeLeft() : kInterval);
            if (kind == Interruption::Kind::NoReader)
                return kind;
            // What happened until then is told before the end.
            print(m_watch.look(m_context.printer()));
            isLast = isLast || kind == Interruption::Kind::Asked;
        }
        return Interruption::Kind::None;
    }

private:
    [[nodiscard]] milliseconds timeLeft() const
    {
        return std::max(milliseconds(0), std::chrono::ceil<milliseconds>(*m_end - Clock::now()));
    }
    void print(Changes changes)
    {
        if (m_count && changes.size() > *m_count)
            changes.erase(changes.begin() + static_cast<Changes::difference_type>(*m_count), changes.end());
        if (m_count)
            *m_count -= changes.size();
        const QDateTime now = QDateTime::currentDateTime();
        if (m_context.wantsJson())
            return printJson(changes, now);
        printChanges(m_context.printer(), m_place, changes, now.toString(QStringLiteral("HH:mm:ss ")));
        m_context.printer().flush();
    }
    void printJson(const Changes& changes, const QDateTime& now) const
    {
        const QString time = now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate);
        for (const auto& row : changesJson(m_place, changes)) {
            QJsonObject line = row.toObject();
            line.insert(QStringLiteral("time"), time);
            m_context.printer().jsonLine(line);
        }
    }

    const Context& m_context;
    Place m_place;
    SettingsWatch m_watch;
    std::optional<std::size_t> m_count; ///< Changes that are still to come.
    std::optional<Clock::time_point> m_end;
};

} // namespace

Exit runWatch(Context& context)
{
    const Result<Limits> limits = limitsOf(context);
    if (!limits)
        return context.fail(limits.problem());
    const QString path = context.hasArgument(0) ? context.argument(0) : QStringLiteral("/");
    const Result<Place> place = placeOf(context, path, TreePath::Kind::Item, Purpose::Look);
    if (!place)
        return context.fail(place.problem());
    Watching watching(context, *place, *limits);
    if (watching.run() == Interruption::Kind::NoReader)
        std::raise(SIGPIPE); // the end that every other command comes to then
    return Exit::Done;
}

} // namespace vruinfo::tool
