/// \file doctor_patient.h
/// An installation that nothing is wrong with, to be broken and looked at. Every look also sees that it changed
/// nothing.
#pragma once

#include <fstream>
#include <map>
#include <set>

#include <QJsonDocument>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "installation.h"

namespace clitest
{

namespace fs = std::filesystem;

/// Kind, rights, time of the last change, size, and of a file that is not large the bytes.
inline std::string contentOf(const fs::path& path)
{
    struct stat status {
    };
    lstat(path.c_str(), &status);
    constexpr long kMostCompared = 1 << 20;
    const bool isCompared = S_ISREG(status.st_mode) && status.st_size < kMostCompared;
    return std::to_string(status.st_mode) + " " + std::to_string(status.st_mtim.tv_sec) + "." +
           std::to_string(status.st_mtim.tv_nsec) + " " + std::to_string(status.st_size) + " " +
           (isCompared ? readFile(path) : std::string());
}

/// Everything below a directory.
inline std::map<std::string, std::string> treeOf(const fs::path& root)
{
    std::map<std::string, std::string> tree;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(root, fs::directory_options::skip_permission_denied, error)) {
        tree[entry.path()] = contentOf(entry.path());
        if (fs::is_directory(entry.symlink_status()))
            tree.merge(treeOf(entry.path()));
    }
    return tree;
}

struct Expected {
    std::string severity;
    std::string thing; ///< How it ends.
    std::string words; ///< In its meaning.
};

class Patient : public Installation
{
public:
    Patient()
    {
        write("product.ini", "[Product]\nMajorVer=26\nProductId=1\n");
        write("vruinfo.ini", "[Product]\nPreStr=Vr\n");
        for (const char* const language : {"en-US", "de-DE"})
            write(std::string(language) + "/Help/VrHelp.pdf", "%PDF");
    }

    fs::path in(const std::string& name) const { return programDir() / name; }
    fs::path productsList() const { return home() / ".local/share/HALVIK/VR2D.conf"; }
    fs::path lock() const { return settingsFile().string() + ".lock"; }

    /// What the settings file has, byte for byte.
    void settings(const std::string& bytes) const
    {
        fs::remove(settingsFile());
        appendToFile(settingsFile(), bytes);
    }
    void products(const std::string& bytes) const
    {
        fs::remove(productsList());
        appendToFile(productsList(), bytes);
    }

    /// The program files, too, so that a user without rights has them; the home is that user's.
    void giveToNobody() const
    {
        giveEverybodyAccess(*this);
        for (const char* const name : {"libVrUInfoIcons.so", "libVrMessageBoxUi.so", "VrMessageBox"})
            fs::copy_file(fs::path(TOOL_LIBRARIES) / name, in(name));
        if (geteuid() != 0)
            return;
        EXPECT_EQ(chown(home().c_str(), kNobody, kNobody), 0);
        for (const auto& entry : fs::recursive_directory_iterator(home()))
            EXPECT_EQ(lchown(entry.path().c_str(), kNobody, kNobody), 0);
    }

    void look(int exitCode, const Arguments& options = {}, const Environment& changes = {})
    {
        Arguments arguments{"doctor", "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto before = treeOf(root());
        const ProcessResult result = run(arguments, changes);
        EXPECT_EQ(treeOf(root()), before);
        take(result, exitCode);
    }
    void lookAsNobody(int exitCode)
    {
        const auto before = treeOf(root());
        const ProcessResult result = runUnprivileged({"doctor", "--json"});
        EXPECT_EQ(treeOf(root()), before);
        take(result, exitCode);
    }

    /// The last look found this.
    void expectFound(const std::string& id, const Expected& expected) const
    {
        for (const auto& value : m_report.value(QStringLiteral("findings")).toArray()) {
            if (matches(value.toObject(), id, expected))
                return;
        }
        ADD_FAILURE() << id << " " << expected.thing << " is not in:\n" << reportText();
    }
    void expectNotFound(const std::string& id) const { EXPECT_EQ(ids().count(id), 0U) << id << "\n" << reportText(); }
    /// The ids of all warnings and errors that the last look found.
    std::set<std::string> complaints() const
    {
        std::set<std::string> all;
        for (const auto& value : m_report.value(QStringLiteral("findings")).toArray()) {
            const QJsonObject finding = value.toObject();
            if (textIn(finding, "severity") != "note")
                all.insert(textIn(finding, "id"));
        }
        return all;
    }
    std::multiset<std::string> ids() const
    {
        std::multiset<std::string> all;
        for (const auto& value : m_report.value(QStringLiteral("findings")).toArray())
            all.insert(textIn(value.toObject(), "id"));
        return all;
    }
    std::string worst() const { return textIn(m_report, "worst"); }
    std::string reportText() const { return QJsonDocument(m_report).toJson().toStdString(); }

    static std::string textIn(const QJsonObject& object, const char* key)
    {
        return object.value(QLatin1String(key)).toString().toStdString();
    }

private:
    static constexpr unsigned int kNobody = 65534;

    void take(const ProcessResult& result, int exitCode)
    {
        m_report = QJsonDocument::fromJson(QByteArray::fromStdString(result.out)).object();
        EXPECT_EQ(result.exitCode, exitCode) << reportText();
        EXPECT_EQ(result.err, "");
        expectShape("doctor", result.out);
    }
    static bool endsWith(const std::string& text, const std::string& end)
    {
        return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
    }
    static bool matches(const QJsonObject& finding, const std::string& id, const Expected& expected)
    {
        return textIn(finding, "id") == id && textIn(finding, "severity") == expected.severity &&
               endsWith(textIn(finding, "thing"), expected.thing) &&
               textIn(finding, "meaning").find(expected.words) != std::string::npos;
    }

    QJsonObject m_report;
};

using Complaints = std::set<std::string>;

} // namespace clitest
