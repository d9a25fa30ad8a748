#pragma once

#include <string>
#include <string_view>

namespace Velora::Store {

// Values as JSON. Equal values have equal bytes, and different values have different bytes.

/// Appends a text. A byte that belongs to no character becomes "\udcXX"; only another program can have stored it.
void AppendText(std::string& json, std::string_view text);
/// Appends a whole number.
void AppendInteger(std::string& json, long long number);
/// Appends the shortest digits from which the same number is read; whole numbers below 2^53 without an exponent,
/// infinity as 1e999.
void AppendNumber(std::string& json, double number);
/// Appends a number that a PostgreSQL server reads as double precision: like AppendNumber(), but with the server's
/// words for infinity.
void AppendServerNumber(std::string& json, double number);
/// Appends bytes as {"blob":"..."} in hexadecimal digits. No host stores a blob, but another program can.
void AppendBlob(std::string& json, std::string_view bytes);
/// Appends a byte as two hexadecimal digits in lower case.
void AppendHex(std::string& json, char byte);

}  // namespace Velora::Store
