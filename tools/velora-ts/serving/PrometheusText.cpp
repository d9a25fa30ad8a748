#include "serving/PrometheusText.h"

#include "output/Terminal.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace Velora::Ts {

namespace {

constexpr std::size_t longestLabel = 128;  // columns

/// Eight digits that another text has hardly ever: FNV-1a.
std::string MarkOf(std::string_view text) {
  std::uint32_t hash = 2166136261U;
  for (const char byte : text) {
    hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
  }
  std::string mark;
  for (int shift = 28; shift >= 0; shift -= 4) {
    mark += "0123456789abcdef"[(hash >> shift) & 0xFU];
  }
  return mark;
}

/// A label that a person can read, and Prometheus.
std::string Legible(const std::string& text) {
  const std::string shown = Cut(Printable(text.substr(0, 4 * longestLabel)), longestLabel);
  return shown == text ? text : shown + '#' + MarkOf(text);
}

void AppendQuoted(std::string& line, std::string_view printable) {
  line += '"';
  for (const char sign : printable) {
    line += sign == '"' || sign == '\\' ? "\\" : "";
    line += sign;
  }
  line += '"';
}

std::string NumberOf(double value) {
  if (!std::isfinite(value)) {
    return std::isnan(value) ? "NaN" : value > 0 ? "+Inf" : "-Inf";
  }
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr};
}

}  // namespace

void PrometheusText::Begin(const std::string& metric, std::string_view help) {
  name = metric;
  samples.clear();
  text += "# HELP " + name + ' ' + std::string(help) + "\n# TYPE " + name + " gauge\n";
}

void PrometheusText::Add(const Labels& labels, double value) {
  std::string written;
  for (const auto& [label, content] : labels) {
    written += written.empty() ? "{" : ",";
    written += label + std::string("=");
    AppendQuoted(written, Legible(content));
  }
  written += written.empty() ? "" : "}";
  if (samples.size() == mostSamples || !samples.insert(written).second) {
    ++leftOut;
    return;
  }
  text += name + written + ' ' + NumberOf(value) + '\n';
}

}  // namespace Velora::Ts
