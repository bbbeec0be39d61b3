#pragma once
// Texts with places for values, as language libraries write them: "%d of %s".

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace NResources {

/// A value for a place. The text decides how it is shown, as printf would; length letters as in "%lu" are
/// read and change nothing that matters: the size of the value is known.
class PrintValue {
 public:
  template <std::integral Integer>
  PrintValue(Integer value) {  // implicit: every integer is one
    using Small = std::conditional_t<std::is_signed_v<Integer>, int, unsigned>;
    using Large = std::conditional_t<std::is_signed_v<Integer>, long long, unsigned long long>;
    if constexpr (sizeof(Integer) <= sizeof(int)) {
      mValue = static_cast<Small>(value);
    } else {
      mValue = static_cast<Large>(value);
    }
  }
  PrintValue(std::string_view text) : mValue(text) {}
  PrintValue(const std::string& text) : mValue(std::string_view(text)) {}
  PrintValue(const char* text) : mValue(std::string_view(text)) {}
  PrintValue(std::wstring_view text) : mValue(text) {}
  PrintValue(const std::wstring& text) : mValue(std::wstring_view(text)) {}
  PrintValue(const wchar_t* text) : mValue(std::wstring_view(text)) {}

  using Kinds =
      std::variant<int, unsigned, long long, unsigned long long, std::string_view, std::wstring_view>;
  const Kinds& Get() const { return mValue; }

 private:
  Kinds mValue;
};

/// The text with its values in their places. A text that asks for more values than there are, or a wide text
/// for a narrow one, is a programming error: fmt::format_error is thrown.
std::string PrintValues(std::string_view text, std::initializer_list<PrintValue> values);
std::wstring PrintValues(std::wstring_view text, std::initializer_list<PrintValue> values);

template <class... Values>
std::string Print(std::string_view text, const Values&... values) {
  return PrintValues(text, {PrintValue(values)...});
}
template <class... Values>
std::wstring Print(std::wstring_view text, const Values&... values) {
  return PrintValues(text, {PrintValue(values)...});
}

}  // namespace NResources
