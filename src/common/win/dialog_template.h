#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <vector>

namespace NCommon {

/// A dialog template (DIALOGEX) as it lies in the resources, with another font: the dialog's units, and so
/// the sizes of all its controls, follow it. Empty: `resource` is no such template, or one without a font.
std::vector<std::byte> WithFont(std::span<const std::byte> resource, const std::wstring& face, int points);

/// Template of the resources by its number, with the font that the system uses for messages. Empty: there is
/// no such template.
std::vector<std::byte> LoadDialogTemplate(int id);

}  // namespace NCommon
