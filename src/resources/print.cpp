#include "resources/print.h"

#include <fmt/args.h>
#include <fmt/printf.h>
#include <fmt/xchar.h>

namespace NResources {
namespace {

// The only place that instantiates the formatting library, which takes a compiler several seconds.
template <class Context, class Character>
std::basic_string<Character> Format(std::basic_string_view<Character> text,
                                    std::initializer_list<PrintValue> values) {
  fmt::dynamic_format_arg_store<Context> store;
  for (const PrintValue& value : values) {
    std::visit(
        [&](const auto& known) {
          using Known = std::remove_cvref_t<decltype(known)>;
          if constexpr (std::is_integral_v<Known> ||
                        std::is_same_v<Known, std::basic_string_view<Character>>) {
            store.push_back(known);
          } else {
            throw fmt::format_error("a text of the other width");
          }
        },
        value.Get());
  }
  return fmt::vsprintf(fmt::basic_string_view<Character>(text.data(), text.size()),
                       fmt::basic_format_args<Context>(store));
}

}  // namespace

std::string PrintValues(std::string_view text, std::initializer_list<PrintValue> values) {
  return Format<fmt::printf_context>(text, values);
}
std::wstring PrintValues(std::wstring_view text, std::initializer_list<PrintValue> values) {
  return Format<fmt::wprintf_context>(text, values);
}

}  // namespace NResources
