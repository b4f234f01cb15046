#pragma once

#include <unistd.h>

namespace vrosbase::internal
{

/// Owns an open file descriptor.
class FileDescriptor final
{
public:
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    FileDescriptor(FileDescriptor&&) = delete;
    FileDescriptor& operator=(FileDescriptor&&) = delete;
    ~FileDescriptor()
    {
        if (isOpen()) {
            ::close(m_descriptor);
        }
    }

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int get() const { return m_descriptor; }

private:
    const int m_descriptor;
};

} // namespace vrosbase::internal
