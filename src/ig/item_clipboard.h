#pragma once
// Items as they lie on the clipboard: lines of text, one per item, that carry every field of its kind.
//
//   PDO Enabled=1 COBID=385 Data=75696E743A31 ...
//
// Texts are written as the hexadecimal digits of their bytes. Whatever reads this trusts nothing: it may come
// from another program.

#include <span>
#include <string>
#include <string_view>

#include "canopen/item_kinds.h"

namespace NIg {

/// Bytes that are looked at, and items that are taken, at most.
inline constexpr std::size_t kMaxClipboardSize = 64u << 20;
inline constexpr std::size_t kMaxClipboardItems = 100'000;

std::string WriteItems(std::span<const NCanopen::ZMsgItemInfo* const> items);

/// Items of the lines that can be read. A field that is missing, unknown or does not fit keeps its default; a
/// line of no known kind is skipped.
NCanopen::ItemList ReadItems(std::string_view text, const bool* hexDisplay);

}  // namespace NIg
