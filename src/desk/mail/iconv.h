/// The converter of the machine's library.
#pragma once

#include <QByteArrayView>

#include <iconv.h>

#include <cstdint>

namespace desk {

/// Owns one converter to UTF-16, lowest byte first.
class Iconv {
  public:
    explicit Iconv(const char *from) : m_handle(iconv_open("UTF-16LE", from)) {}
    Iconv(const Iconv &) = delete;
    Iconv &operator=(const Iconv &) = delete;
    ~Iconv() {
        if (isOpen())
            iconv_close(m_handle);
    }

    // iconv_open says "none" with (iconv_t)-1.
    [[nodiscard]] bool isOpen() const { return reinterpret_cast<std::intptr_t>(m_handle) != -1; }
    [[nodiscard]] iconv_t get() const { return m_handle; }

  private:
    iconv_t m_handle;
};

} // namespace desk
