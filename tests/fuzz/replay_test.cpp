// The short run of a fuzz entry: every kept input, and mutations of them and of the seeds from a fixed sequence.
#include "fault.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <random>

namespace {

struct Input {
    QString name;
    QByteArray bytes;
};

/// None for no folder.
QList<Input> filesIn(const char *folder) {
    QList<Input> inputs;
    if (*folder == '\0')
        return inputs;
    const QDir dir(folder);
    for (const QString &name : dir.entryList(QDir::Files, QDir::Name)) {
        QFile file(dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
        inputs += {name, file.readAll()};
    }
    return inputs;
}

class Mutator {
  public:
    explicit Mutator(const QList<Input> &inputs) : m_inputs(inputs) {}

    QByteArray mutate(QByteArray bytes) {
        const qsizetype changes = below(6) + 1;
        for (qsizetype i = 0; i < changes; ++i)
            change(bytes);
        return bytes;
    }

  private:
    qsizetype below(qsizetype limit) {
        return limit < 1 ? 0 : static_cast<qsizetype>(m_random() % static_cast<std::uint64_t>(limit));
    }

    void change(QByteArray &bytes) {
        const qsizetype at = below(bytes.size());
        const qsizetype length = below(std::min<qsizetype>(bytes.size() - at, 200));
        switch (below(6)) {
        case 0:
            bytes.insert(at, static_cast<char>(below(256)));
            break;
        case 1:
            bytes.remove(at, length);
            break;
        case 2:
            bytes.insert(below(bytes.size()), bytes.mid(at, length));
            break;
        case 3:
            bytes.truncate(at);
            break;
        case 4:
            if (!bytes.isEmpty())
                bytes[at] = static_cast<char>(below(256));
            break;
        default: {
            const QByteArray other = m_inputs.at(below(m_inputs.size())).bytes;
            bytes.insert(at, other.mid(below(other.size()), below(300)));
        }
        }
    }

    const QList<Input> &m_inputs;
    std::mt19937_64 m_random{20261116};
};

TEST(FuzzReplay, KeptInputsAreHandled) {
    const QList<Input> inputs = filesIn(ORVELLE_FUZZ_CORPUS);
    ASSERT_FALSE(inputs.isEmpty());
    for (const Input &input : inputs)
        EXPECT_EQ(faultOf(input.bytes), "") << qPrintable(input.name);
}

TEST(FuzzReplay, MutatedInputsAreHandled) {
    constexpr int rounds = 60;
    const QList<Input> inputs = filesIn(ORVELLE_FUZZ_CORPUS) + filesIn(ORVELLE_FUZZ_SEEDS);
    Mutator mutator(inputs);
    for (int round = 0; round < rounds; ++round) {
        for (const Input &input : inputs) {
            const QByteArray bytes = mutator.mutate(input.bytes);
            const std::string fault = faultOf(bytes);
            ASSERT_EQ(fault, "") << qPrintable(input.name) << ", round " << round << ":\n"
                                 << bytes.toPercentEncoding(" \r\n:;=<>@\"/,?").toStdString();
        }
    }
}

} // namespace
