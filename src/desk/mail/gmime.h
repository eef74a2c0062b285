/// Owners for what the MIME library hands out, and its start-up.
#pragma once

#include <gmime/gmime.h>

#include <QByteArray>

#include <memory>
#include <utility>

namespace desk {

/// Owns one reference to an object of the library.
template <class T>
class GRef {
  public:
    GRef() = default;
    /// Takes over the reference that the library gave.
    explicit GRef(T *object) : m_object(object) {}
    GRef(GRef &&other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    GRef &operator=(GRef &&other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    GRef(const GRef &) = delete;
    GRef &operator=(const GRef &) = delete;
    ~GRef() {
        if (m_object)
            g_object_unref(m_object);
    }

    [[nodiscard]] T *get() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

  private:
    T *m_object = nullptr;
};

/// Bytes as an array of the library, which neither copies nor frees them. REQUIRES: nobody writes to it, and the bytes
/// outlive it.
class BorrowedBytes {
  public:
    BorrowedBytes(const QByteArray &bytes, qsizetype length)
        : m_array(g_byte_array_new_take(const_cast<guint8 *>(reinterpret_cast<const guint8 *>(bytes.constData())),
                                        static_cast<gsize>(length))) {}
    BorrowedBytes(const BorrowedBytes &) = delete;
    BorrowedBytes &operator=(const BorrowedBytes &) = delete;
    ~BorrowedBytes() { g_byte_array_free(m_array, FALSE); }

    [[nodiscard]] GByteArray *get() const { return m_array; }

  private:
    GByteArray *m_array;
};

struct GFree {
    void operator()(void *memory) const { g_free(memory); }
};
/// A text that the library allocated.
using GText = std::unique_ptr<char, GFree>;

struct FreeOptions {
    void operator()(GMimeParserOptions *options) const { g_mime_parser_options_free(options); }
};
using ParserOptions = std::unique_ptr<GMimeParserOptions, FreeOptions>;

struct FreeDate {
    void operator()(GDateTime *date) const { g_date_time_unref(date); }
};
using GDate = std::unique_ptr<GDateTime, FreeDate>;

/// Starts the library once for the process. Embedded messages stay closed: they are parts whose content is the
/// message's own bytes, whatever their transfer encoding.
void startGMime();

/// Options that take what real mail has: addresses without a domain, encoded words where none may be, 8-bit headers.
ParserOptions tolerantOptions();

} // namespace desk
