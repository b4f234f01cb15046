#include "doctor/isolated.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <utility>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vruinfo::tool::doctor
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLimit{10};
constexpr std::chrono::milliseconds kPause{2};
constexpr int kMostWords = 2000;

/// A descriptor, closed with the object.
class Descriptor final
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { shut(); }

    [[nodiscard]] int number() const { return m_number; }
    void shut()
    {
        if (m_number >= 0)
            close(m_number);
        m_number = -1;
    }

private:
    int m_number;
};

struct Pipe {
    explicit Pipe(std::array<int, 2> ends) : reading(ends[0]), writing(ends[1]) {}
    Pipe() : Pipe(made()) {}

    [[nodiscard]] static std::array<int, 2> made()
    {
        std::array<int, 2> ends{-1, -1};
        return pipe2(ends.data(), O_CLOEXEC) == 0 ? ends : std::array<int, 2>{-1, -1};
    }

    Descriptor reading;
    Descriptor writing;
};

void writeAll(int descriptor, const QByteArray& bytes)
{
    int written = 0;
    while (written < bytes.size()) {
        const ssize_t count =
            write(descriptor, bytes.constData() + written, static_cast<std::size_t>(bytes.size() - written));
        if (count < 0 && errno != EINTR)
            return;
        written += count > 0 ? static_cast<int>(count) : 0;
    }
}

/// What the child leaves behind: nothing. It goes when its parent goes, and writes no image of itself.
void becomeHarmless(int errors)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nowhere, STDIN_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
}

[[noreturn]] void work(const std::function<QByteArray()>& task, int answers, int errors)
{
    becomeHarmless(errors);
    writeAll(answers, task());
    std::_Exit(EXIT_SUCCESS);
}

/// Takes what a pipe holds. \return false at its end
bool take(const pollfd& state, QByteArray& bytes)
{
    if (state.revents == 0)
        return true;
    std::array<char, 65536> piece; // NOLINT(cppcoreguidelines-pro-type-member-init) filled by the call
    const ssize_t count = read(state.fd, piece.data(), piece.size());
    if (count > 0)
        bytes.append(piece.data(), static_cast<int>(count));
    return count > 0 || (count < 0 && (errno == EINTR || errno == EAGAIN));
}

int restOf(Clock::time_point end)
{
    const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    return rest > 0 ? static_cast<int>(rest) : 0;
}

/// Takes all that comes, up to the end of both pipes or of the time.
void listen(int answers, int errors, Clock::time_point end, QByteArray& answer, QByteArray& words)
{
    std::array<pollfd, 2> states{{{answers, POLLIN, 0}, {errors, POLLIN, 0}}};
    while (restOf(end) > 0 && (states[0].fd >= 0 || states[1].fd >= 0)) {
        if (poll(states.data(), states.size(), restOf(end)) <= 0)
            continue;
        if (states[0].fd >= 0 && !take(states[0], answer))
            states[0].fd = -1; // which poll passes over
        if (states[1].fd >= 0 && !take(states[1], words))
            states[1].fd = -1;
    }
}

/// The child's status; nothing when it had to be ended.
std::optional<int> statusOf(pid_t child, Clock::time_point end)
{
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (restOf(end) == 0) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return std::nullopt;
        }
        std::this_thread::sleep_for(kPause);
    }
    return status;
}

/// In one line, without the program's name before each of its lines.
QString wordsOf(const QByteArray& errors)
{
    QStringList lines;
    for (const QByteArray& line : errors.left(kMostWords).split('\n')) {
        QString words = QString::fromUtf8(line).trimmed();
        for (const char* const opening : {"vruinfo: ", "the start says: "}) {
            if (words.startsWith(QLatin1String(opening)))
                words.remove(0, QLatin1String(opening).size());
        }
        if (!words.isEmpty())
            lines.append(words);
    }
    return lines.join(QStringLiteral("; "));
}

Outcome outcomeOf(std::optional<int> status, const QByteArray& answer, const QByteArray& errors)
{
    const QString words = wordsOf(errors);
    if (!status)
        return {Outcome::End::TooLong, 0, {}, words};
    if (WIFSIGNALED(*status))
        return {Outcome::End::Killed, WTERMSIG(*status), {}, words};
    const int code = WEXITSTATUS(*status);
    return {code == EXIT_SUCCESS ? Outcome::End::Answered : Outcome::End::Exited, code, answer, words};
}

} // namespace

QString Outcome::ending() const
{
    switch (end) {
    case End::Exited:
        return QStringLiteral("ends the process with exit code %1").arg(code);
    case End::Killed:
        return QStringLiteral("ends the process with signal %1").arg(code);
    case End::TooLong:
        return QStringLiteral("does not come to an end within %1 seconds").arg(kLimit.count());
    default:
        return QStringLiteral("could not be begun: the system has no room for another process");
    }
}

Outcome runIsolated(const std::function<QByteArray()>& task)
{
    Pipe answers;
    Pipe errors;
    const pid_t child = answers.writing.number() < 0 || errors.writing.number() < 0 ? -1 : fork();
    if (child < 0)
        return {};
    if (child == 0)
        work(task, answers.writing.number(), errors.writing.number());
    answers.writing.shut();
    errors.writing.shut();
    const Clock::time_point end = Clock::now() + kLimit;
    QByteArray answer;
    QByteArray words;
    listen(answers.reading.number(), errors.reading.number(), end, answer, words);
    return outcomeOf(statusOf(child, end), answer, words);
}

Findings checkIsolated(const std::function<Findings()>& check, Finding broken)
{
    const Outcome outcome = runIsolated([&check] {
        QJsonArray array;
        for (const Finding& finding : check())
            array.append(finding.json());
        return QJsonDocument(array).toJson(QJsonDocument::Compact);
    });
    if (!outcome.isAnswered()) {
        broken.meaning += QLatin1Char(' ') + outcome.ending() + QLatin1Char('.');
        return {broken};
    }
    Findings findings;
    for (const auto& value : QJsonDocument::fromJson(outcome.answer).array())
        findings.push_back(Finding::fromJson(value.toObject()));
    return findings;
}

} // namespace vruinfo::tool::doctor
