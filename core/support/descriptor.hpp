#pragma once

#include <unistd.h>

namespace vorn {

/// Owns a file descriptor and closes it; a negative one owns nothing.
class Descriptor {
public:
    explicit Descriptor(int value) : m_value(value) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (m_value >= 0) {
            ::close(m_value);
        }
    }
    [[nodiscard]] int get() const { return m_value; }
    [[nodiscard]] bool isOpen() const { return m_value >= 0; }

private:
    int m_value;
};

}  // namespace vorn
