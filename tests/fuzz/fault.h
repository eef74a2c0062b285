// What a fuzz entry provides. Each *_fuzz.cpp defines faultOf for one reader of outside bytes; libfuzzer.cpp drives it
// with ever new inputs where ORVELLE_FUZZ is on, replay_test.cpp with kept and mutated ones in every build.
#pragma once

#include <QByteArray>

#include <string>

/// What is wrong with how the bytes were handled; empty when nothing is.
std::string faultOf(const QByteArray &bytes);
