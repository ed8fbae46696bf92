// SPDX-License-Identifier: MIT
// An open file that is closed with its owner, which leaves errno alone.
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    FileDescriptor(FileDescriptor &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor()
    {
        const int error = errno;
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
        errno = error;
    }

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }

private:
    int m_descriptor = -1;
};
