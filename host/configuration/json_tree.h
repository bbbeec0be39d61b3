#pragma once
// JSON as a tree that knows its lines. Nothing is lost on the way: a key that stands twice is a fault. Size
// and depth are limited, whatever the text is.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/configuration/fault.h"

namespace NConfiguration {

enum class JsonKind { Null, Boolean, Number, Text, List, Object };

struct JsonValue {
  JsonKind kind = JsonKind::Null;
  std::uint32_t line = 1;
  bool boolean = false;
  std::optional<std::int64_t> number{};  ///< empty: not whole, or beyond 64 bits
  std::string text{};
  std::vector<std::string> keys{};  ///< of an object: one for each value, all different
  std::vector<JsonValue> values{};  ///< of an object or list
};

struct JsonTree {
  JsonValue root;
  std::optional<Fault> fault;  ///< then the root is empty
};

inline constexpr std::size_t kDeepestNesting = 8;
inline constexpr std::size_t kMostEntries = 1000;       ///< of one object or list
inline constexpr std::size_t kLongestText = 32 * 1024;  ///< bytes in UTF-8

JsonTree ReadJson(std::string_view text);

/// "a text", for messages.
std::string_view NameOf(JsonKind kind);

}  // namespace NConfiguration
