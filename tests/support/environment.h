// A value of the environment that holds for a while.
#pragma once

#include <QByteArray>

#include <ctime>

namespace support {

/// Stands from its making on; what was there before comes back with its end. A null value takes the name away.
class EnvironmentValue {
  public:
    EnvironmentValue(const char *name, const QByteArray &value) : m_name(name), m_before(qgetenv(name)) { put(value); }
    ~EnvironmentValue() { put(m_before); }
    EnvironmentValue(const EnvironmentValue &) = delete;
    EnvironmentValue &operator=(const EnvironmentValue &) = delete;

  private:
    void put(const QByteArray &value) const {
        value.isNull() ? qunsetenv(m_name) : qputenv(m_name, value);
        // The clock's rules are read from the environment once.
        tzset();
    }

    const char *m_name;
    QByteArray m_before;
};

} // namespace support
