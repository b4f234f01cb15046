#include "faulty_file.h"

namespace faults
{
namespace
{

Words joined(Words first, const Words& second, const Words& third)
{
    first.insert(first.end(), second.begin(), second.end());
    first.insert(first.end(), third.begin(), third.end());
    return first;
}

} // namespace

bool FaultyFile::hasHomeOfItsOwn() const
{
    constexpr std::size_t kRoom = std::size_t{256} * 1024;
    if (!mayMount())
        return false;
    mountSmall(m_site.home(), kRoom);
    m_site.writeFiles();
    return true;
}

void FaultyFile::replaceByLink(const fs::path& target) const
{
    fs::remove(file());
    fs::create_symlink(target, file());
    m_site.giveToUser();
}

void FaultyFile::replaceByPipe() const
{
    fs::remove(file());
    makePipe(file());
    m_site.giveToUser();
}

void FaultyFile::lockByLink(const fs::path& target) const
{
    fs::create_symlink(target, lock());
    m_site.giveToUser();
}

void FaultyFile::lockByAnotherHost() const
{
    writeText(lock(), "4242\nVorna\nelsewhere.example\n");
    m_site.giveToUser();
}

Words SettingsFile::stepsAfter(const Words& former) const
{
    return joined({"start"}, former, {"read", "write"});
}

Words ProductsList::stepsAfter(const Words& former) const
{
    return joined({"start"}, former, {"list"});
}

} // namespace faults
