#pragma once

#include <utility>

#include <unistd.h>

namespace vorn {

/// Owns an open file descriptor, or none (-1).
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int value) : m_value(value) {}
    Descriptor(Descriptor&& other) noexcept : m_value(std::exchange(other.m_value, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_value, other.m_value);
        return *this;
    }
    ~Descriptor() { reset(); }

    [[nodiscard]] int get() const { return m_value; }
    [[nodiscard]] bool isOpen() const { return m_value >= 0; }
    void reset() {
        if (m_value >= 0) {
            ::close(std::exchange(m_value, -1));
        }
    }

private:
    int m_value = -1;
};

}  // namespace vorn
