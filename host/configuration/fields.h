#pragma once
// Reads the fields of JSON objects and notes what is wrong with them.

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/configuration/fault.h"
#include "host/configuration/json_tree.h"

namespace NConfiguration {

enum class Need { Optional, Required };

/// A value with the place where it stands.
struct JsonPlace {
  const JsonValue* value;
  std::string place;  ///< empty: the whole text
};

/// One object. Each field is asked for by its key; what was not asked for is unknown and a fault. A function
/// that finds a fault leaves its output as it was.
class Fields {
 public:
  Fields(JsonPlace object, std::vector<Fault>& faults);

  bool IsObject() const { return mIsObject; }

  template <class Number>
  void ReadNumber(std::string_view key, std::int64_t low, std::int64_t high, Number& number,
                  Need need = Need::Required) {
    static_assert(std::numeric_limits<Number>::is_integer);
    if (const auto read = TakeNumber(key, low, high, need)) number = static_cast<Number>(*read);
  }
  /// The number may stand as text as well: hexadecimal behind 0x.
  template <class Number>
  void ReadHexNumber(std::string_view key, std::int64_t low, std::int64_t high, Number& number,
                     Need need = Need::Required) {
    if (const auto read = TakeHexNumber(key, low, high, need)) number = static_cast<Number>(*read);
  }
  /// Not empty.
  void ReadText(std::string_view key, std::size_t longest, std::string& text, Need need = Need::Required);
  void ReadFlag(std::string_view key, bool& flag, Need need = Need::Required);

  /// A value of any kind. Its value is null when it is not there.
  JsonPlace Take(std::string_view key, Need need = Need::Optional);
  /// The entries of a list; none when there is a fault.
  std::vector<JsonPlace> TakeList(std::string_view key, Need need = Need::Optional);
  /// An object; its value is null when it is not there or something else.
  JsonPlace TakeObject(std::string_view key, Need need = Need::Optional);

  /// Notes a fault of a field, or of the object when the key is empty.
  void Complain(std::string_view key, std::string text);
  /// Notes the fields that nobody has asked for.
  void Finish();

 private:
  std::optional<std::int64_t> TakeNumber(std::string_view key, std::int64_t low, std::int64_t high,
                                         Need need);
  std::optional<std::int64_t> TakeHexNumber(std::string_view key, std::int64_t low, std::int64_t high,
                                            Need need);
  JsonPlace TakeOf(JsonKind kind, std::string_view key, Need need);
  std::optional<std::int64_t> InRange(const JsonPlace& place, std::int64_t low, std::int64_t high);

  JsonPlace mObject;
  bool mIsObject;
  std::vector<Fault>& mFaults;
  std::vector<std::string> mKnown;
};

/// "a text is expected, not a number"
std::string Expected(std::string_view what, const JsonValue& instead);

}  // namespace NConfiguration
