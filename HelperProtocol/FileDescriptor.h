#pragma once

#include <unistd.h>

#include <utility>

namespace vespra {

/// Owns an open descriptor, or none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    /// Negative: none.
    explicit FileDescriptor(int descriptor)
        : descriptor_{descriptor}
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor_{std::exchange(other.descriptor_, -1)}
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        other.reset();
        return *this;
    }
    ~FileDescriptor() { reset(); }

    int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }
    void reset()
    {
        if (descriptor_ >= 0)
            close(std::exchange(descriptor_, -1));
    }

private:
    int descriptor_ = -1;
};

} // namespace vespra
