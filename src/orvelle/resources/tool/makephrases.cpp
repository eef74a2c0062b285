// Turns the phrase table that people edit (UTF-8, a line feed behind each row) into the form that the program carries,
// and lists its keys as variables. Called by the build: makephrases TABLE TABLE.cpp VARIABLES.h

#include <QFile>
#include <QSaveFile>
#include <QStringEncoder>

#include <cstdio>

namespace {

constexpr int fieldsInRow = 16;

QStringList readRows(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The phrase table %s can't be read.", qPrintable(path));
    QStringList rows = QString::fromUtf8(file.readAll()).split(u'\n');
    if (rows.last().isEmpty())
        rows.removeLast();
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (rows.at(i).count(u'\t') + 1 != fieldsInRow)
            qFatal("Row %d of the phrase table has not %d fields.", int(i + 1), fieldsInRow);
    }
    return rows;
}

/// The bytes as a text literal, in lines of a readable length.
QByteArray literal(const QByteArray &bytes) {
    QByteArray text;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        text += i % 32 == 0 ? "\n    \"" : "";
        const auto byte = static_cast<unsigned char>(bytes.at(i));
        text += '\\' + QByteArray::number(byte, 8).rightJustified(3, '0');
        text += i % 32 == 31 || i + 1 == bytes.size() ? "\"" : "";
    }
    return text;
}

QByteArray tableSource(const QStringList &rows) {
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    const QByteArray bytes = encoder(rows.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n"));
    return "#include \"orvelle/resources/phrasetable.h\"\n\nstatic constexpr char table[] =" + literal(bytes) +
           ";\n\nQByteArray phraseTable() { return QByteArray::fromRawData(table, sizeof table - 1); }\n";
}

QByteArray variablesHeader(const QStringList &rows) {
    QByteArray variables;
    QByteArray keys;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const QByteArray key = rows.at(i).section(u'\t', 0, 0).toLatin1();
        variables += "inline constexpr Phrase " + key + "{" + QByteArray::number(i) + "};\n";
        keys += "\n    \"" + key + "\",";
    }
    return "// Made from the phrase table by the build. Included by core/phrases.h.\n#pragma once\n\n" + variables +
           "\ninline constexpr const char *strPhraseKeys[] = {" + keys + "\n};\n";
}

void write(const QString &path, const QByteArray &content) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        qFatal("%s can't be written.", qPrintable(path));
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 4) {
        std::fputs("usage: makephrases TABLE TABLE.cpp VARIABLES.h\n", stderr);
        return 2;
    }
    const QStringList rows = readRows(QString::fromLocal8Bit(argv[1]));
    write(QString::fromLocal8Bit(argv[2]), tableSource(rows));
    write(QString::fromLocal8Bit(argv[3]), variablesHeader(rows));
}
