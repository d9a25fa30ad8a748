#pragma once

#include <string>
#include <string_view>

namespace Velora::Store {

// One way to write each value as JSON, so that equal values are equal bytes, and different ones never look the same.

/// A text. A byte that is no part of a character, which only another program can have stored, becomes "\udcXX".
void AppendText(std::string& json, std::string_view text);
/// The shortest number that reads back the same; whole ones below 2^53 without an exponent, infinity as 1e999.
void AppendNumber(std::string& json, double number);
/// A number for a PostgreSQL server to take as a double precision: as AppendNumber writes it, but infinity in the
/// server's own words.
void AppendServerNumber(std::string& json, double number);
/// Appends bytes as {"blob":"..."} in hexadecimal digits. No host stores a blob, but another program can.
void AppendBlob(std::string& json, std::string_view bytes);
/// Two hexadecimal digits, in lower case.
void AppendHex(std::string& json, char byte);

}  // namespace Velora::Store
