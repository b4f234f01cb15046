#include "host_process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <iostream>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace stress
{
namespace
{

constexpr char kRoleOption[] = "--as";

struct PipeEnds {
    int reader;
    int writer;
};

PipeEnds newPipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    return {ends[0], ends[1]};
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentOf(const vrtest::Installation& installation)
{
    vrtest::Environment all = installation.environment();
    for (const char* const name :
         {"TSAN_OPTIONS", "ASAN_OPTIONS", "LD_LIBRARY_PATH", "LC_ALL", "LANG", "LOCPATH", "PATH"}) {
        if (const char* const value = std::getenv(name))
            all.emplace(name, value);
    }
    std::vector<std::string> lines;
    for (const auto& [name, value] : all) {
        if (!value.empty())
            lines.push_back(std::string(name).append("=").append(value));
    }
    return lines;
}

pid_t spawn(const vrtest::Installation& installation, Arguments command, int input, int output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    std::vector<std::string> variables = environmentOf(installation);
    pid_t process = 0;
    const int error = posix_spawn(&process, command.front().c_str(), &actions, nullptr, pointersTo(command).data(),
                                  pointersTo(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " + command.front());
    return process;
}

} // namespace

HostProcess::HostProcess(const vrtest::Installation& installation, const std::string& role, const Arguments& arguments)
{
    ::signal(SIGPIPE, SIG_IGN);
    Arguments command = {installation.executable(), kRoleOption, role};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const PipeEnds input = newPipe();
    const PipeEnds output = newPipe();
    m_process = spawn(installation, command, input.reader, output.writer);
    close(input.reader);
    close(output.writer);
    m_input = input.writer;
    m_output = output.reader;
}

HostProcess::~HostProcess()
{
    kill();
    close(m_input);
    close(m_output);
}

bool HostProcess::readMore(Milliseconds patience)
{
    pollfd wait = {m_output, POLLIN, 0};
    if (poll(&wait, 1, static_cast<int>(patience.count())) <= 0)
        return false;
    std::array<char, 4096> buffer{};
    const ssize_t count = read(m_output, buffer.data(), buffer.size());
    if (count > 0)
        m_unread.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

std::optional<std::string> HostProcess::line(Milliseconds patience)
{
    const auto end = Clock::now() + patience;
    std::size_t length = m_unread.find('\n');
    for (; length == std::string::npos; length = m_unread.find('\n')) {
        const auto left = std::chrono::duration_cast<Milliseconds>(end - Clock::now());
        if (!readMore(std::max(left, Milliseconds(0))))
            return std::nullopt;
    }
    std::string first = m_unread.substr(0, length);
    m_unread.erase(0, length + 1);
    return first;
}

void HostProcess::say(const std::string& line) const
{
    const std::string bytes = line + "\n";
    if (write(m_input, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        std::cerr << "the process cannot be told: " << line << "\n";
}

std::string HostProcess::ask(const std::string& question)
{
    say(question);
    return line().value_or(std::string());
}

void HostProcess::signal(int number) const
{
    ::kill(m_process, number);
}

std::vector<std::filesystem::path> HostProcess::openFiles() const
{
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    std::error_code error; // descriptors come and go meanwhile
    for (fs::directory_iterator entry("/proc/" + std::to_string(m_process) + "/fd", error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code isGone;
        files.push_back(fs::read_symlink(entry->path(), isGone));
    }
    return files;
}

bool HostProcess::kill()
{
    if (m_status)
        return false;
    ::kill(m_process, SIGKILL);
    return finish() == -1;
}

int HostProcess::finish()
{
    if (!m_status) {
        int status = 0;
        while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
        }
        m_status = status;
    }
    return WIFEXITED(*m_status) ? WEXITSTATUS(*m_status) : -1;
}

std::optional<int> playedRole(int count, char** values, const Roles& roles)
{
    if (count < 3 || std::string(values[1]) != kRoleOption)
        return std::nullopt;
    return roles.at(values[2])(Arguments(values + 3, values + count));
}

void tell(const std::string& line)
{
    const std::string bytes = line + "\n";
    if (write(STDOUT_FILENO, bytes.data(), bytes.size()) < 0)
        throw std::runtime_error("nobody listens");
}

std::optional<std::string> hear()
{
    std::string line;
    return std::getline(std::cin, line) ? std::optional<std::string>(line) : std::nullopt;
}

} // namespace stress
