#include "installation.h"

#include <fstream>
#include <iterator>

#include <QJsonDocument>
#include <QSettings>
#include <QTextCodec>

#include <gtest/gtest.h>
#include <unistd.h>

#include "sanitizers.h"

namespace fs = std::filesystem;

namespace clitest
{
namespace
{

void linkOrCopy(const fs::path& from, const fs::path& to)
{
    std::error_code error;
    fs::create_hard_link(from, to, error);
    if (error)
        fs::copy_file(from, to);
}

/// Tests take permissions away; so that everything can go, they come back.
void giveOwnerAccess(const fs::path& directory)
{
    fs::permissions(directory, fs::perms(0755));
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        if (!entry.is_symlink() && entry.is_directory())
            giveOwnerAccess(entry.path());
    }
}

} // namespace

Installation::Installation()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    fs::create_directories(programDir());
    fs::create_directories(home());
    linkOrCopy(TOOL_PROGRAM, tool());
    installLanguage("en-US");
    installLanguage("de-DE");
    write("VORNA.ini", "[Product]\nLocaleId=1033\n[LocaleIdLangName]\n1033=en-US\n");
}

Installation::~Installation()
{
    giveOwnerAccess(root());
}

fs::path Installation::root() const
{
    return m_root.path().toStdString();
}

fs::path Installation::settingsFile() const
{
    return home() / ".config/HALVIK/VORNA/2026/VORNA.conf";
}

void Installation::installLanguage(const std::string& shortName) const
{
    fs::create_directories(programDir() / shortName);
    fs::copy_file(fs::path(TOOL_RESOURCES) / shortName / "libVrUInfoRes.so",
                  programDir() / shortName / "libVrUInfoRes.so");
}

void Installation::write(const std::string& name, const std::string& bytes) const
{
    fs::create_directories((programDir() / name).parent_path());
    std::ofstream(programDir() / name, std::ios::binary) << bytes;
}

Environment Installation::environment(const Environment& changes) const
{
    Environment all = {
        {"HOME", home()}, {"XDG_CONFIG_HOME", ""}, {"XDG_DATA_HOME", ""}, {"XDG_CONFIG_DIRS", "/nonexistent"},
        {"DISPLAY", ""},  {"WAYLAND_DISPLAY", ""}, {"LC_ALL", "C"}};
    for (const auto& [name, value] : changes)
        all[name] = value;
    return all;
}

ProcessResult Installation::run(const Arguments& arguments, const Environment& changes) const
{
    Arguments command{tool()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return vrtest::runProcess(command, environment(changes));
}

ProcessResult Installation::runUnprivileged(const Arguments& arguments) const
{
    if (geteuid() != 0)
        return run(arguments);
    Arguments command{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", tool()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return vrtest::runProcess(command, environment({}));
}

ProcessResult Installation::runShell(const std::string& command, const Environment& changes) const
{
    Environment all = environment(changes);
    all["PATH"] = programDir().string() + ":/usr/local/bin:/usr/bin:/bin";
    return vrtest::runProcess({"sh", "-c", command}, all);
}

QByteArray Installation::json(Arguments arguments, int exitCode) const
{
    const std::string command = arguments.front();
    arguments.emplace_back("--json");
    const ProcessResult result = run(arguments);
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
    EXPECT_EQ(result.err, "");
    expectShape(command, result.out);
    return QByteArray::fromStdString(result.out);
}

QJsonObject Installation::object(Arguments arguments, int exitCode) const
{
    const QByteArray text = json(std::move(arguments), exitCode);
    const QJsonDocument document = QJsonDocument::fromJson(text);
    EXPECT_TRUE(document.isObject()) << text.toStdString();
    return document.object();
}

QJsonArray Installation::array(Arguments arguments, int exitCode) const
{
    const QByteArray text = json(std::move(arguments), exitCode);
    const QJsonDocument document = QJsonDocument::fromJson(text);
    EXPECT_TRUE(document.isArray()) << text.toStdString();
    return document.array();
}

QString Installation::stored(const std::string& key) const
{
    const QSettings settings(QString::fromStdString(settingsFile()), QSettings::NativeFormat);
    return settings.value(QString::fromStdString(key)).toString();
}

void Installation::store(const std::string& key, const std::string& text) const
{
    QSettings settings(QString::fromStdString(settingsFile()), QSettings::NativeFormat);
    settings.setValue(QString::fromStdString(key), QString::fromStdString(text));
}

void giveEverybodyAccess(const Installation& installation)
{
    // The tool's own libraries go along: where they were built may be closed to others.
    for (const char* const name : {"libVrUInfo.so", "libVrOsBase.so", "libVrPlatformBase.so"})
        fs::copy_file(fs::path(TOOL_LIBRARIES) / name, installation.programDir() / name);
    fs::permissions(installation.root(), fs::perms(0755));
}

std::string readFile(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void appendToFile(const fs::path& file, const std::string& bytes)
{
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary | std::ios::app) << bytes;
}

void expectShape(const std::string& command, const std::string& json)
{
    // The same answers are looked at in the build without a sanitizer; with one that would take as long as all the
    // rest.
    EXPECT_FALSE(QJsonDocument::fromJson(QByteArray::fromStdString(json)).isNull()) << command << ": " << json;
    if (vrtest::kHasSanitizerAllocator)
        return;
    const QTemporaryDir directory;
    const fs::path answer = directory.path().toStdString() + "/answer.json";
    std::ofstream(answer, std::ios::binary) << json;
    const fs::path schema = fs::path(TOOL_SCHEMAS) / (command + ".json");
    const ProcessResult check = vrtest::runProcess({"python3", CHECK_SHAPE, schema, answer});
    EXPECT_EQ(check.exitCode, 0) << check.out << check.err << json;
}

void expectContains(const std::string& text, const std::string& words)
{
    EXPECT_NE(text.find(words), std::string::npos) << "'" << words << "' is not in:\n" << text;
}

std::string answerOf(const ProcessResult& result)
{
    EXPECT_EQ(result.exitCode, kDone);
    EXPECT_EQ(result.err, "");
    return result.out;
}

void expectAnswer(const ProcessResult& result, const std::string& line)
{
    EXPECT_EQ(answerOf(result), line + "\n");
}

void expectError(const ProcessResult& result, ExitCode code, const std::string& words)
{
    EXPECT_EQ(result.exitCode, code);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.substr(0, 9), "vruinfo: ");
    expectContains(result.err, words);
}

} // namespace clitest
