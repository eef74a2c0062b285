/// The phrase table as the program carries it, in its fixed form: UTF-16, little-endian, with its byte order mark; rows
/// ended by a carriage return and a line feed, the last one too; 16 fields separated by a tab, the key and the phrase
/// in each of 15 languages.
#pragma once

#include <QByteArray>

/// The bytes; they live as long as the program.
QByteArray phraseTable();
