// The tool's repair, over a settings file that is cut at any byte or has any byte flipped: what the settings library
// calls damaged is repaired, what could be read can be read, and every line but the damaged one is there again.
//
// Every 5th or 7th damage; with VR_DAMAGE_STEP=1 every one.
#include <iostream>

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include "damaged_file.h"
#include "repair.h"
#include "rewritten.h"
#include "stored_value.h"

using namespace vrtest;
using vruinfo::tool::Repair;
using vruinfo::tool::repairBytes;
using vruinfo::tool::Result;
using vruinfo::tool::StoredValue;

namespace
{

class DamagedRepair : public testing::Test
{
protected:
    DamagedRepair() { silenceWarnings(); }

    PlainReading read(const std::string& bytes)
    {
        const std::filesystem::path file = m_directory.filePath(QString::number(m_count++)).toStdString() + ".conf";
        std::ofstream(file, std::ios::binary) << bytes;
        const PlainReading reading = PlainReading::of(file);
        std::filesystem::remove(file);
        return reading;
    }

private:
    const QTemporaryDir m_directory;
    int m_count = 0;
};

std::string wholeBytes(const Repair& repair, const std::string& damaged)
{
    return repair.isDamaged ? repair.lines.bytes.toStdString() : damaged;
}

bool isSame(const QVariant& one, const QVariant& other)
{
    return StoredValue::isSame(one, other);
}

/// How many values of the one are others, or none, in the other.
std::size_t differences(const PlainReading& before, const PlainReading& after)
{
    std::size_t count = 0;
    for (const auto& [key, value] : before.values) {
        const QVariant now = after.value(key);
        count += isSame(now, value) || isSame(now, rewritten(value)) ? 0 : 1;
    }
    return count;
}

/// The lines that a damage touches: that of the byte, and the next one when the byte is a line's end.
std::string touchedLines(std::size_t place)
{
    const std::size_t before = kWholeFile.rfind('\n', place == 0 ? 0 : place - 1);
    const std::size_t begin = before == std::string::npos || place == 0 ? 0 : before + 1;
    const std::size_t end = kWholeFile.find('\n', kWholeFile[place] == '\n' ? place + 1 : place);
    return kWholeFile.substr(begin, end - begin);
}

/// Whether the damage is one of a group's line, or makes one: then all lines below belong elsewhere.
bool touchesGroup(const Damage& damage)
{
    const std::string lines = touchedLines(damage.place);
    return lines.front() == '[' || lines.find("\n[") != std::string::npos || damage.applied()[damage.place] == '[';
}

TEST_F(DamagedRepair, RepairsWhatTheSettingsLibraryCallsDamagedAndLosesNothing)
{
    int repaired = 0;
    forEachDamage(numberFrom("VR_DAMAGE_STEP", 5), [&](const Damage& damage) {
        const std::string damaged = damage.applied();
        const PlainReading before = read(damaged);
        const Result<Repair> repair = repairBytes(QByteArray::fromStdString(damaged));
        ASSERT_TRUE(bool(repair)) << damage.words() << ": " << repair.problem().text.toStdString();
        EXPECT_TRUE(before.isWhole || repair->isDamaged) << damage.words();
        const PlainReading after = read(wholeBytes(*repair, damaged));
        EXPECT_TRUE(after.isWhole) << damage.words();
        EXPECT_LE(differences(before, after), repair->lines.closed.size()) << damage.words();
        repaired += repair->isDamaged ? 1 : 0;
    });
    std::cout << repaired << " damaged files were repaired\n";
    EXPECT_GT(repaired, 0);
}

TEST_F(DamagedRepair, BringsBackEveryLineButTheDamagedOne)
{
    const PlainReading whole = read(kWholeFile);
    int looked = 0;
    forEachDamage(numberFrom("VR_DAMAGE_STEP", 7), [&](const Damage& damage) {
        if (damage.kind == Damage::Kind::Cut || touchesGroup(damage))
            return;
        const std::string damaged = damage.applied();
        const Result<Repair> repair = repairBytes(QByteArray::fromStdString(damaged));
        ASSERT_TRUE(bool(repair)) << damage.words();
        const PlainReading after = read(wholeBytes(*repair, damaged));
        const std::size_t touched = touchedLines(damage.place).find('\n') == std::string::npos ? 1 : 2;
        EXPECT_LE(differences(whole, after), touched) << damage.words() << "\n" << wholeBytes(*repair, damaged);
        ++looked;
    });
    std::cout << looked << " flipped bytes\n";
    EXPECT_GT(looked, 100);
}

TEST_F(DamagedRepair, KeepsEveryLineBeforeACut)
{
    const PlainReading whole = read(kWholeFile);
    for (std::size_t place = 0; place <= kWholeFile.size(); ++place) {
        const Damage damage{Damage::Kind::Cut, place, 0};
        const std::string damaged = damage.applied();
        const Result<Repair> repair = repairBytes(QByteArray::fromStdString(damaged));
        ASSERT_TRUE(bool(repair)) << damage.words();
        const PlainReading left = read(damaged.substr(0, damaged.rfind('\n') + 1));
        EXPECT_EQ(differences(left, read(wholeBytes(*repair, damaged))), 0U) << damage.words();
    }
}

} // namespace
