/// \file faulty_file.h
/// The two files of a user that faults are done to, seen alike: what is done to one can be done to the other.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "fault_site.h"

namespace faults
{

class FaultyFile : public testing::Test
{
public:
    [[nodiscard]] virtual fs::path file() const = 0;
    /// What the host calls while the fault is there, behind the start and these steps.
    [[nodiscard]] virtual Words stepsAfter(const Words& former) const = 0;
    /// Compares with the row of the running test.
    virtual void expectRow(const Words& steps) const = 0;

    [[nodiscard]] fs::path lock() const { return file().string() + ".lock"; }
    [[nodiscard]] fs::path directory() const { return file().parent_path(); }
    [[nodiscard]] const Site& site() const { return m_site; }
    [[nodiscard]] Site& site() { return m_site; }

    /// Whether the home is a file system of its own from now on, which takes a mount.
    [[nodiscard]] bool hasHomeOfItsOwn() const;
    void replaceByLink(const fs::path& target) const;
    void replaceByPipe() const;
    void lockByLink(const fs::path& target) const;
    void lockByAnotherHost() const;

protected:
    explicit FaultyFile(bool listsRelease) : m_site(listsRelease) {}

private:
    Site m_site;
};

class SettingsFile : public FaultyFile
{
public:
    [[nodiscard]] fs::path file() const override { return site().settings(); }
    [[nodiscard]] Words stepsAfter(const Words& former) const override;
    void expectRow(const Words& steps = kReadAndWrite) const override { expectSettingsRow(site(), steps); }

protected:
    SettingsFile() : FaultyFile(true) {}
};

class ProductsList : public FaultyFile
{
public:
    [[nodiscard]] fs::path file() const override { return site().list(); }
    [[nodiscard]] Words stepsAfter(const Words& former) const override;
    void expectRow(const Words& steps = {"start", "list"}) const override { expectListRow(site(), steps); }

protected:
    ProductsList() : FaultyFile(false) {}
};

constexpr char kNeedsMount[] = "mounting a file system takes the rights of root";
constexpr char kNeedsRoot[] = "giving a file to somebody else takes the rights of root";

} // namespace faults
